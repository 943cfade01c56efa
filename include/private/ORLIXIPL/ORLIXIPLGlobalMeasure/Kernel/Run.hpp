#pragma once

#include <cstddef>

namespace orlix::imaproc::glbmsr
{

/// Holds any sum of pixels or of their squares.
__extension__ using Int128 = __int128;

/// Pixels that lie gapless in memory.
template <class T>
struct Run
{
    const T* pixels;
    std::size_t size;
};

} // namespace orlix::imaproc::glbmsr
