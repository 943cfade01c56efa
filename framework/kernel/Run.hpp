#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix::imaproc
{

/// Holds any sum of pixels or of their squares.
__extension__ using Int128 = __int128;

/// Pixels that lie gapless in memory.
template <class T>
struct Run
{
    using Pixel = T;
    static constexpr bool isMasked = false;

    const T* pixels;
    std::size_t size;
};

/// What the median of a run needs for its work: room for the keys of the pixels and their bytes, filled up to whole
/// groups of at most 64.
template <class T>
constexpr std::size_t rowScratchBytes(std::size_t size)
{
    return (size + 64) * (sizeof(T) + 1) + 64;
}

/// Pixels of which those count whose mask byte is not 0.
template <class T>
struct MaskedRun
{
    using Pixel = T;
    static constexpr bool isMasked = true;

    const T* pixels;
    std::size_t size;
    const std::uint8_t* mask;
};

namespace
{

/// The mask from pixel i on; null where there is none.
template <class T>
[[gnu::always_inline]] inline const std::uint8_t* maskAt(const Run<T>&, std::size_t)
{
    return nullptr;
}
template <class T>
[[gnu::always_inline]] inline const std::uint8_t* maskAt(const MaskedRun<T>& run, std::size_t i)
{
    return run.mask + i;
}

/// Whether the mask, if there is one, selects pixel i.
template <class R>
[[gnu::always_inline]] inline bool isSelected(const R& run, std::size_t i)
{
    return !R::isMasked || *maskAt(run, i) != 0;
}

template <class T>
[[gnu::always_inline]] inline Run<T> part(const Run<T>& run, std::size_t first, std::size_t size)
{
    return {run.pixels + first, size};
}
template <class T>
[[gnu::always_inline]] inline MaskedRun<T> part(const MaskedRun<T>& run, std::size_t first, std::size_t size)
{
    return {run.pixels + first, size, run.mask + first};
}

} // namespace

} // namespace orlix::imaproc
