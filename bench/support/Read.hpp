#pragma once

#include <cstddef>

namespace orlix::bench
{

/// Reads bytes as fast as one core can, 32 at a time, and returns a sum of them that nobody needs.
long readBytes(const void* bytes, std::size_t size);

} // namespace orlix::bench
