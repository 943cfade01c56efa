#pragma once

#include <framework/kernel/Prefetch.hpp>
#include <framework/kernel/ValueTables.hpp>

/// Counting integer pixels by value.
namespace orlix::imaproc
{

namespace
{

/// The table that pixel k of a block counts into.
template <bool Eight>
ORLIX_KERNEL std::uint32_t* tableOf(std::size_t k, const ValueTables& c)
{
    return Eight ? c.tables + k % 8 * ValueTables::stride : c.tables + k % 2 * c.distance;
}

/// The entry of a pixel that is counted by value.
template <class T>
ORLIX_KERNEL std::uint32_t entryOf(T pixel, const ValueTables& counts)
{
    const std::uint64_t entry = std::uint64_t(std::int64_t(pixel) - counts.first);
    return entry < counts.size ? std::uint32_t(entry) : counts.size;
}

/// Pixels of 8 bits: eight at a time, each in a table of its own.
template <class R>
ORLIX_KERNEL void countBytes(R run, const ValueTables& c)
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(run.pixels);
    const auto entry = [&](std::size_t i, std::uint8_t byte) __attribute__((always_inline))
    {
        return isSelected(run, i) ? byte : 256u + byte;
    };
    const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
    std::size_t i = 0;
    for (; i + 16 <= run.size; i += 16) {
        prefetch.stepOf<16>(run, i);
        std::uint64_t eight[2];
        __builtin_memcpy(eight, bytes + i, sizeof eight);
#pragma GCC unroll 16
        for (std::size_t k = 0; k < 16; ++k) {
            ++tableOf<true>(k, c)[entry(i + k, std::uint8_t(eight[k / 8] >> (8 * (k % 8))))];
        }
    }
    for (; i < run.size; ++i) {
        ++c.tables[entry(i, bytes[i])];
    }
}

template <std::size_t Count, bool Eight, class Entry>
ORLIX_KERNEL void addEntriesTo(const Entry* entries, const ValueTables& c)
{
    constexpr std::size_t perWord = 8 / sizeof(Entry);
#pragma GCC unroll 1
    for (std::size_t i = 0; i < Count; i += 8) { // not unrolled, lest the compiler hoist every entry out of the choice
#pragma GCC unroll 8
        for (std::size_t k = 0; k < 8; k += perWord) {
            std::uint64_t word; // to take several at a time spares loads
            __builtin_memcpy(&word, entries + i + k, sizeof word);
#pragma GCC unroll 4
            for (std::size_t e = 0; e < perWord; ++e) {
                ++tableOf<Eight>(k + e, c)[Entry(word >> (8 * sizeof(Entry) * e))];
            }
        }
    }
}

/// Adds one to each of `Count` entries, which are 16 or 32 bits wide.
template <std::size_t Count, class Entry>
ORLIX_KERNEL void addEntries(const Entry* entries, const ValueTables& c)
{
    if (c.eight) {
        addEntriesTo<Count, true>(entries, c);
    } else {
        addEntriesTo<Count, false>(entries, c);
    }
}

/// Bit i tells whether pixels i and i + 1 of 33 differ.
template <Domain::domain D, class T>
ORLIX_KERNEL std::uint32_t findChanges(const T* pixels)
{
    using P = Pack<T, D>;
    std::uint32_t changes = 0;
#pragma GCC unroll 8
    for (std::size_t i = 0; i < 32; i += lanes<T, D>) {
        const P here = load<P>(pixels + i);
        const P next = load<P>(pixels + i + 1);
        std::uint32_t equal;
        if constexpr (D == Domain::eIS_AVX512 && sizeof(T) == 2) {
            equal = _mm512_cmpeq_epi16_mask((__m512i)here, (__m512i)next);
        } else if constexpr (D == Domain::eIS_AVX512) {
            equal = _mm512_cmpeq_epi32_mask((__m512i)here, (__m512i)next);
        } else if constexpr (D == Domain::eIS_AVX2 && sizeof(T) == 2) {
            const __m256i words = _mm256_cmpeq_epi16((__m256i)here, (__m256i)next);
            equal =
                _mm_movemask_epi8(_mm_packs_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1)));
        } else if constexpr (D == Domain::eIS_AVX2) {
            equal = _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32((__m256i)here, (__m256i)next)));
        } else if constexpr (sizeof(T) == 2) {
            const __m128i words = _mm_cmpeq_epi16((__m128i)here, (__m128i)next);
            equal = _mm_movemask_epi8(_mm_packs_epi16(words, words)) & 0xff;
        } else {
            equal = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32((__m128i)here, (__m128i)next)));
        }
        changes |= equal << i;
    }
    return ~changes;
}

/// Counts 32 pixels of few runs run by run, and tells whether it did.
template <Domain::domain D, class T>
ORLIX_KERNEL bool countFewRuns(const T* pixels, const ValueTables& c)
{
    std::uint32_t ends = findChanges<D>(pixels) | 0x80000000u;
    std::uint32_t more = ends & (ends - 1);
    more &= more - 1;
    more &= more - 1;
    if ((more & (more - 1)) != 0) { // more than four
        return false;
    }
    int begin = 0;
    do {
        const int end = __builtin_ctz(ends) + 1;
        c.tables[entryOf(pixels[begin], c)] += std::uint32_t(end - begin);
        begin = end;
        ends &= ends - 1;
    } while (ends != 0);
    return true;
}

/// Integer pixels by value. Labels come in runs; what does not goes to the tables a block later than it was looked at,
/// so that neither waits.
template <Domain::domain D, class R>
ORLIX_KERNEL void countValues(R run, const ValueTables& c)
{
    using T = typename R::Pixel;
    using Entry = Unsigned<T>;
    using P = Pack<Entry, D>;
    constexpr std::size_t block = 32;
    // Where all 65536 values have their entries, no pixel is out of range.
    const P none = splat<P>(Entry(sizeof(T) == 2 && c.size > 0xffff ? 0xffff : c.size));
    const P first = splat<P>(Entry(c.first));

    alignas(64) Entry entries[2][block];
    bool pending = false; // the other block's entries are not counted yet
    std::size_t turn = 0;
    const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
    std::size_t i = 0;
    for (; i + block < run.size; i += block) {
        prefetch.stepOf<block>(run, i);
        if constexpr (!R::isMasked) {
            if (countFewRuns<D>(run.pixels + i, c)) {
                continue;
            }
        }
#pragma GCC unroll 8
        for (std::size_t k = 0; k < block; k += lanes<T, D>) {
            P entry = minimum(load<P>(run.pixels + i + k) - first, none);
            if constexpr (R::isMasked) {
                entry = loadLaneMask<T, D>(run.mask + i + k) ? entry : none;
            }
            __builtin_memcpy(entries[turn] + k, &entry, sizeof entry);
        }
        if (pending) {
            addEntries<block>(entries[1 - turn], c);
        }
        pending = true;
        turn = 1 - turn;
    }
    if (pending) {
        addEntries<block>(entries[1 - turn], c);
    }
    for (; i < run.size; ++i) {
        if (isSelected(run, i)) {
            ++c.tables[entryOf(run.pixels[i], c)];
        }
    }
}

} // namespace

} // namespace orlix::imaproc
