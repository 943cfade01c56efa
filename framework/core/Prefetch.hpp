#pragma once

#include <framework/core/Api.hpp>

#include <cstddef>

namespace orlix::core
{

/// How many bytes ahead of what they read kernels ask for memory: 4096 on processors whose own prefetcher leaves a loop
/// that computes behind one that only reads, 0 on others, where more requests get in its way.
ORLIX_API extern const std::ptrdiff_t prefetchDistance;

} // namespace orlix::core
