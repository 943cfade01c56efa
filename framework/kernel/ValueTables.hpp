#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix::imaproc
{

/// What a kernel counts into: one, two or eight tables, so that equal neighbours need not wait for each other. Each has
/// an entry `size` for what does not count.
struct ValueTables
{
    /// Where there are eight, they lie this far apart.
    static constexpr std::size_t stride = 2048 + 32;

    std::uint32_t* tables;
    bool eight;
    std::size_t distance; ///< between two tables; 0 where there is one
    std::uint32_t size;
    /// Entry i counts the pixels of value first + i. Pixels of 8 bits are always counted in eight tables, by their
    /// byte, with 256 entries more for what a mask excludes.
    std::int64_t first;
};

} // namespace orlix::imaproc
