#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlix::imaproc::glbmsr
{

/// Bit i tells whether byte i of 64 is not 0.
inline std::uint64_t setBytes(const std::uint8_t* bytes)
{
    std::uint64_t set = 0;
    for (unsigned k = 0; k < 4; ++k) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 16 * k));
        const auto zeros = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(sixteen, _mm_setzero_si128())));
        set |= static_cast<std::uint64_t>(~zeros & 0xffffu) << (16 * k);
    }
    return set;
}

/// The same for fewer than 64 bytes.
inline std::uint64_t setBytes(const std::uint8_t* bytes, std::size_t size)
{
    std::uint64_t set = 0;
    for (std::size_t i = 0; i < size; ++i) {
        set |= std::uint64_t{bytes[i] != 0} << i;
    }
    return set;
}

/// The number of bytes that are not 0.
inline std::size_t countSetBytes(const std::uint8_t* bytes, std::size_t size)
{
    std::size_t set = 0;
    std::size_t i = 0;
    for (; i + 64 <= size; i += 64) {
        set += static_cast<std::size_t>(std::popcount(setBytes(bytes + i)));
    }
    return set + static_cast<std::size_t>(std::popcount(setBytes(bytes + i, size - i)));
}

/// Appends coords(x) for every byte x that is not 0, until the list, which has room for them, has `limit` elements.
template <class Coords, class MakeCoords>
void appendSetBytes(const std::uint8_t* bytes, std::size_t size, std::size_t limit, std::vector<Coords>& list,
                    MakeCoords coords)
{
    Coords found[64]; // in which a block waits, so that the list need not look for room at every element
    for (std::size_t i = 0; i < size && list.size() < limit; i += 64) {
        std::uint64_t set = i + 64 <= size ? setBytes(bytes + i) : setBytes(bytes + i, size - i);
        const auto count = static_cast<std::size_t>(std::popcount(set));
        for (std::size_t k = 0; k < count; ++k) {
            found[k] = coords(static_cast<double>(i + static_cast<std::size_t>(std::countr_zero(set))));
            set &= set - 1;
        }
        list.insert(list.end(), found, found + std::min(count, limit - list.size()));
    }
}

} // namespace orlix::imaproc::glbmsr
