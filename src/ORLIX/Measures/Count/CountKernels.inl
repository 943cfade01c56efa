// Counting pixels by their place in the order of values, once for every pixel type and instruction set, and for runs
// with a mask and without.

#include <ORLIX/Measures/Count/CountKernels.hpp>
#include <framework/kernel/CountValues.hpp>

namespace orlix::measures
{

namespace
{

/// A number that grows with the pixel; of both zeros one.
template <class T>
ORLIX_KERNEL std::uint32_t orderedOf(T pixel)
{
    std::uint32_t bits;
    if constexpr (isFloat<T>) {
        const float canonical = pixel + 0.f;
        __builtin_memcpy(&bits, &canonical, sizeof bits);
        return bits ^ (std::uint32_t(std::int32_t(bits) >> 31) | 0x80000000u);
    } else {
        return std::uint32_t(pixel) ^ std::uint32_t(lowestOf<T>);
    }
}

/// The same of a pack, and which pixels have one: those that a mask selects and that are no NaN.
template <Domain::domain D, class R>
ORLIX_KERNEL Pack<std::uint32_t, D> loadOrdered(const R& run, std::size_t i, LaneMask<std::uint32_t, D>& counts)
{
    using T = typename R::Pixel;
    using Bits = Pack<std::uint32_t, D>;
    using Signed = LaneMask<std::uint32_t, D>;
    counts = ~Signed{};
    if constexpr (R::isMasked) {
        counts = loadLaneMask<T, D>(run.mask + i);
    }
    if constexpr (isFloat<T>) {
        const Bits bits = (Bits)(load<Pack<float, D>>(run.pixels + i) + 0.f);
        counts &= (Signed)(bits & 0x7fffffffu) <= 0x7f800000;
        return bits ^ ((Bits)((Signed)bits >> 31) | 0x80000000u);
    } else {
        return load<Bits>(run.pixels + i) ^ std::uint32_t(lowestOf<T>);
    }
}

template <class R>
ORLIX_KERNEL void countOneByOne(R run, const ValueTables& c)
{
    using T = typename R::Pixel;
    for (std::size_t i = 0; i < run.size; ++i) {
        const T pixel = run.pixels[i];
        if (isSelected(run, i) && pixel == pixel) {
            if constexpr (sizeof(T) == 4) {
                ++c.tables[entryOf(orderedOf(pixel) >> 16, c)];
            } else {
                ++c.tables[entryOf(pixel, c)];
            }
        }
    }
}

/// The entries of a whole block are found before the tables are touched, so that neither waits.
template <Domain::domain D, class R>
void countUpperHalves(R run, const ValueTables& c)
{
    using T = typename R::Pixel;
    using Bits = Pack<std::uint32_t, D>;
    constexpr std::size_t block = 64;
    const Bits none = splat<Bits>(c.size);
    const Prefetch prefetch{run.size * sizeof(T)};
    std::size_t i = 0;
    for (; i + block <= run.size; i += block) {
        prefetch.stepOf<block>(run, i);
        alignas(64) std::uint32_t entries[block]; // or stores would lie across cache lines
#pragma GCC unroll 4
        for (std::size_t k = 0; k < block; k += lanes<T, D>) {
            LaneMask<std::uint32_t, D> counts;
            const Bits ordered = loadOrdered<D>(run, i + k, counts);
            const Bits entry = counts ? minimum((ordered >> 16) - std::uint32_t(c.first), none) : none;
            __builtin_memcpy(entries + k, &entry, sizeof entry);
        }
        addEntries<block>(entries, c);
    }
    countOneByOne(imaproc::part(run, i, run.size - i), c);
}

template <class R, Domain::domain D>
std::size_t find(R run, const Prefixes& p, std::uint32_t* found)
{
    using T = typename R::Pixel;
    std::size_t size = 0;
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using Bits = Pack<std::uint32_t, D>;
        constexpr std::size_t lane = lanes<T, D>;
        Bits prefix[Prefixes::most];
#pragma GCC unroll 16
        for (std::size_t j = 0; j < Prefixes::most; ++j) {
            prefix[j] = splat<Bits>(p.prefix[j]);
        }
        const Prefetch prefetch{run.size * sizeof(T)};
        for (; i + lane <= run.size; i += lane) {
            prefetch.stepOf<lane>(run, i);
            LaneMask<std::uint32_t, D> counts;
            const Bits ordered = loadOrdered<D>(run, i, counts);
            const Bits start = ordered >> p.shift;
            LaneMask<std::uint32_t, D> isWanted{};
#pragma GCC unroll 8
            for (std::size_t j = 0; j < Prefixes::most / 2; ++j) {
                isWanted |= start == prefix[j];
            }
            if (p.size > Prefixes::most / 2) {
#pragma GCC unroll 8
                for (std::size_t j = Prefixes::most / 2; j < Prefixes::most; ++j) {
                    isWanted |= start == prefix[j];
                }
            }
            size += storeSelected<D>(isWanted & counts, ordered, found + size);
        }
    }
    for (; i < run.size; ++i) {
        const T pixel = run.pixels[i];
        if (isSelected(run, i) && pixel == pixel) {
            const std::uint32_t ordered = orderedOf(pixel);
            bool isWanted = false;
            for (std::size_t j = 0; j < p.size; ++j) {
                isWanted |= ordered >> p.shift == p.prefix[j];
            }
            found[size] = ordered;
            size += isWanted;
        }
    }
    return size;
}

template <class R, Domain::domain D>
void countRun(R run, const ValueTables& c)
{
    using T = typename R::Pixel;
    if constexpr (sizeof(T) == 1) {
        countBytes(run, c);
    } else if constexpr (D == Domain::eIS_Generic || (sizeof(T) == 2 && R::isMasked)) {
        countOneByOne(run, c); // where all values of 16 bits count, an entry has no room for none
    } else if constexpr (sizeof(T) == 2) {
        countValues<D>(run, c);
    } else {
        countUpperHalves<D>(run, c);
    }
}

template <Domain::domain D>
constexpr CountKernels countKernels = makeKernels<CountKernel, D>([]<class T>(std::type_identity<T>) {
    return &countRun<Run<T>, D>;
});

template <Domain::domain D>
constexpr CountMaskKernels countMaskKernels = makeKernels<CountMaskKernel, D>([]<class T>(std::type_identity<T>) {
    return &countRun<MaskedRun<T>, D>;
});

template <template <class> class Kernel, template <class> class R, Domain::domain D>
constexpr KernelsByType<Kernel> findersOf = makeKernels<Kernel, D>([]<class T>(std::type_identity<T>) -> Kernel<T> {
    if constexpr (sizeof(T) == 4) {
        return &find<R<T>, D>;
    } else {
        return nullptr;
    }
});

template <Domain::domain D>
constexpr FindKernels findKernels = findersOf<FindKernel, Run, D>;
template <Domain::domain D>
constexpr FindMaskKernels findMaskKernels = findersOf<FindMaskKernel, MaskedRun, D>;

} // namespace

} // namespace orlix::measures
