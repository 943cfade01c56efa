#pragma once

#include <cstddef>

namespace orlix::imaproc::glbmsr
{

/// Pixels that lie gapless in memory.
template <class T>
struct Run
{
    const T* pixels;
    std::size_t size;
};

} // namespace orlix::imaproc::glbmsr
