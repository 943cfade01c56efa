// The histogram kernels, once for every pixel type and instruction set, and for runs with a mask and without.
//
// Every set finds the same class for every pixel. Integers of few values are counted by value. Elsewhere the vector
// kernels multiply by the reciprocal of the width in single precision, and where the product is so close to a class
// border that rounding might decide, ask the rule, which divides in double.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Pack.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramKernels.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

constexpr std::size_t nbTables = ClassCounts::nbTables;

/// The entry of a pixel that is counted by value.
template <class T>
ORLIX_KERNEL std::uint32_t entryOf(T pixel, const ClassCounts& counts)
{
    const std::uint64_t entry = std::uint64_t(std::int64_t(pixel) - counts.first);
    return entry < counts.size ? std::uint32_t(entry) : counts.size;
}

/// One pixel after the other.
template <class R>
ORLIX_KERNEL void countOneByOne(R run, const ClassCounts& c)
{
    using T = typename R::Pixel;
    for (std::size_t i = 0; i < run.size; ++i) {
        if (counts(run, i)) {
            const T pixel = run.pixels[i];
            if constexpr (isFloat<T>) {
                ++c.tables[i % nbTables][classOf(pixel, c.rule)];
            } else {
                ++c.tables[i % nbTables][c.byValue ? entryOf(pixel, c) : classOf(float(pixel), c.rule)];
            }
        }
    }
}

/// Pixels of 8 bits: eight at a time, each in a table of its own.
template <class R>
ORLIX_KERNEL void countBytes(R run, const ClassCounts& c)
{
    std::uint32_t* table[nbTables];
    __builtin_memcpy(table, c.tables, sizeof table);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(run.pixels);
    const auto entry = [&](std::size_t i, std::uint8_t byte) __attribute__((always_inline))
    {
        return counts(run, i) ? byte : 256u + byte;
    };
    std::size_t i = 0;
    for (; i + 8 <= run.size; i += 8) {
        std::uint64_t eight;
        __builtin_memcpy(&eight, bytes + i, sizeof eight);
#pragma GCC unroll 8
        for (std::size_t k = 0; k < 8; ++k) {
            ++table[k][entry(i + k, std::uint8_t(eight >> (8 * k)))];
        }
    }
    for (; i < run.size; ++i) {
        ++table[0][entry(i, bytes[i])];
    }
}

/// Adds one to each of `Count` entries, which are 16 or 32 bits wide. (Taking a word at a time spares loads.)
template <std::size_t Count, class Entry>
ORLIX_KERNEL void addEntries(const Entry* entries, std::uint32_t* const* table)
{
    constexpr std::size_t perWord = 8 / sizeof(Entry);
#pragma GCC unroll 16
    for (std::size_t w = 0; w < Count / perWord; ++w) {
        std::uint64_t word;
        __builtin_memcpy(&word, entries + w * perWord, sizeof word);
#pragma GCC unroll 4
        for (std::size_t k = 0; k < perWord; ++k) {
            ++table[(w * perWord + k) % nbTables][Entry(word >> (8 * sizeof(Entry) * k))];
        }
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

/// Integer pixels by value. Labels come in runs: a block of few runs is counted run by run.
template <Domain::domain D, class R>
ORLIX_KERNEL void countValues(R run, const ClassCounts& c)
{
    using T = typename R::Pixel;
    using Entry = Unsigned<T>;
    using P = Pack<Entry, D>;
    constexpr std::size_t block = 32;
    std::uint32_t* table[nbTables];
    __builtin_memcpy(table, c.tables, sizeof table);
    // Where all 65536 values have their entries, no pixel is out of range.
    const P none = splat<P>(Entry(sizeof(T) == 2 && c.size > 0xffff ? 0xffff : c.size));
    const P first = splat<P>(Entry(c.first));

    std::size_t i = 0;
    for (; i + block < run.size; i += block) {
        const T* const pixels = run.pixels + i;
        if constexpr (!R::isMasked) {
            std::uint32_t ends = findChanges<D>(pixels) | 0x80000000u;
            std::uint32_t more = ends & (ends - 1);
            more &= more - 1;
            more &= more - 1;
            if ((more & (more - 1)) == 0) { // four runs at most
                int begin = 0;
                do {
                    const int end = __builtin_ctz(ends) + 1;
                    table[0][entryOf(pixels[begin], c)] += std::uint32_t(end - begin);
                    begin = end;
                    ends &= ends - 1;
                } while (ends != 0);
                continue;
            }
        }
        Entry entries[block];
#pragma GCC unroll 8
        for (std::size_t k = 0; k < block; k += lanes<T, D>) {
            P entry = least(load<P>(pixels + k) - first, none);
            if constexpr (R::isMasked) {
                entry = loadSelection<T, D>(run.mask + i + k) ? entry : none;
            }
            __builtin_memcpy(entries + k, &entry, sizeof entry);
        }
        addEntries<block>(entries, table);
    }
    countOneByOne(part(run, i, run.size - i), c);
}

/// Pixels by class.
template <Domain::domain D, class R>
ORLIX_KERNEL void countClasses(R run, const ClassCounts& c)
{
    using Floats = Pack<float, D>;
    using Entries = Pack<std::uint32_t, D>;
    using Selected = Selection<float, D>;
    constexpr std::size_t block = 16;
    std::uint32_t* table[nbTables];
    __builtin_memcpy(table, c.tables, sizeof table);
    const Floats minF = splat<Floats>(c.rule.minF);
    const Floats maxF = splat<Floats>(c.rule.maxF);
    const Floats base = splat<Floats>(c.base);
    const Floats inverse = splat<Floats>(c.inverse);
    const Floats slack = splat<Floats>(c.slack);
    const Entries last = splat<Entries>(c.rule.size - 2);
    const Entries none = splat<Entries>(c.rule.size);
    const Floats toInteger = splat<Floats>(0x1.8p23f); // adding and taking it away rounds to the nearest integer
    const Floats error = splat<Floats>(0x1.4p-22f);    // five roundings, relative

    std::size_t i = c.approximate ? 0 : run.size;
    for (; i + block <= run.size; i += block) {
        std::uint32_t entries[block];
        Selected doubtful{};
#pragma GCC unroll 4
        for (std::size_t k = 0; k < block; k += lanes<float, D>) {
            const Floats pixel = loadAsFloats<D>(run.pixels + i + k);
            const Floats quotient = (pixel - base) * inverse;
            const Floats off = quotient - ((quotient + toInteger) - toInteger);
            doubtful |= magnitude(off) < quotient * error + slack;
            Entries entry = least((Entries)truncate<D>(quotient), none);
            const Selected isLast = pixel == maxF;
            Selected counted = ((pixel >= minF) & (pixel < maxF)) | isLast;
            if constexpr (R::isMasked) {
                counted &= loadSelection<float, D>(run.mask + i + k);
            }
            entry = isLast ? last : entry;
            entry = counted ? entry : none;
            __builtin_memcpy(entries + k, &entry, sizeof entry);
        }
        if (anyOf<D>(doubtful)) {
            countOneByOne(part(run, i, block), c);
        } else {
            addEntries<block>(entries, table);
        }
    }
    const std::size_t done = c.approximate ? i : 0;
    countOneByOne(part(run, done, run.size - done), c);
}

template <class R, Domain::domain D>
void count(R run, const ClassCounts& c)
{
    using T = typename R::Pixel;
    if constexpr (sizeof(T) == 1) {
        countBytes(run, c);
    } else if constexpr (D == Domain::eIS_Generic) {
        countOneByOne(run, c);
    } else {
        if constexpr (!isFloat<T>) {
            if (c.byValue) {
                countValues<D>(run, c);
                return;
            }
        }
        countClasses<D>(run, c);
    }
}

/// The kernels of a domain; R is Run or MaskedRun, Kernels the table of its kernels.
template <template <class> class R, class Kernels, Domain::domain D>
constexpr Kernels everyType{{&count<R<unsigned char>, D>}, {&count<R<signed char>, D>},  {&count<R<unsigned short>, D>},
                            {&count<R<short>, D>},         {&count<R<unsigned int>, D>}, {&count<R<int>, D>},
                            {&count<R<float>, D>}};

template <template <class> class R, class Kernels, Domain::domain D>
constexpr Kernels floatAlone{{nullptr}, {nullptr}, {nullptr}, {nullptr}, {nullptr}, {nullptr}, {&count<R<float>, D>}};

} // namespace

} // namespace orlix::imaproc::glbmsr
