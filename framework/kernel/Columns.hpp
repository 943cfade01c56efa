#pragma once

#include <cstddef>

namespace orlix::imaproc
{

/// Columns of pixels side by side: those of a plan, or the pixels of a row at all times of a sequence.
template <class T>
struct Columns
{
    const T* pixels; ///< the first pixel of the first column
    std::size_t width;
    std::size_t count;     ///< pixels of a column
    std::ptrdiff_t stride; ///< bytes from one pixel of a column to the next

    [[gnu::always_inline]] const T* row(std::size_t i) const
    {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(pixels) +
                                          static_cast<std::ptrdiff_t>(i) * stride);
    }
    /// Columns [x, x + newWidth), pixels [y, y + newCount).
    [[gnu::always_inline]] Columns part(std::size_t x, std::size_t newWidth, std::size_t y, std::size_t newCount) const
    {
        return {row(y) + x, newWidth, newCount, stride};
    }
};

} // namespace orlix::imaproc
