#pragma once

#include <framework/core/Prefetch.hpp>

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

namespace orlix::imaproc::glbmsr
{

/// Bit i tells whether byte i of 64 is not 0.
inline std::uint64_t setBytes(const std::uint8_t* bytes)
{
    std::uint64_t set = 0;
    for (std::size_t k = 0; k < 4; ++k) {
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
    const __m128i zero = _mm_setzero_si128();
    std::size_t zeros = 0;
    std::size_t i = 0;
    while (i + 16 <= size) {
        constexpr std::size_t limit = std::size_t{255} * 16; // that lanes of bytes can count
        const std::size_t end = i + (size - i < limit ? size - i : limit) / 16 * 16;
        __m128i counts = zero;
        const auto add = [&](const std::uint8_t* at) {
            const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
            counts = _mm_sub_epi8(counts, _mm_cmpeq_epi8(sixteen, zero));
        };
        for (; i + 64 <= end; i += 64) {
            __builtin_prefetch(bytes + i + core::prefetchDistance);
            for (std::size_t k = 0; k < 64; k += 16) {
                add(bytes + i + k);
            }
        }
        for (; i < end; i += 16) {
            add(bytes + i);
        }
        const __m128i sums = _mm_sad_epu8(counts, zero);
        zeros += static_cast<std::size_t>(_mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_srli_si128(sums, 8)));
    }
    for (; i < size; ++i) {
        zeros += bytes[i] == 0;
    }
    return size - zeros;
}

/// Writes coords(x) for every byte x that is not 0 from `to` on, but not beyond `end`, and returns where it stopped.
template <class Coords, class MakeCoords>
Coords* listSetBytes(const std::uint8_t* bytes, std::size_t size, Coords* to, Coords* end, MakeCoords coords)
{
    for (std::size_t i = 0; i < size && to != end; i += 64) {
        __builtin_prefetch(bytes + i + core::prefetchDistance);
        std::uint64_t set = i + 64 <= size ? setBytes(bytes + i) : setBytes(bytes + i, size - i);
        const auto at = [&](std::uint64_t rest) {
            return coords(
                static_cast<double>(static_cast<std::ptrdiff_t>(i) + std::countr_zero(rest))); // converts faster
        };
        if (end - to >= 2) {
            // Two are written whether they are there or not: with few set bytes, a branch would often guess wrong.
            const std::uint64_t second = set & (set - 1);
            to[0] = at(set);
            to[1] = at(second);
            to += (set != 0) + (second != 0);
            set = second & (second - 1);
        }
        for (; set != 0 && to != end; set &= set - 1) {
            *to++ = at(set);
        }
    }
    return to;
}

} // namespace orlix::imaproc::glbmsr
