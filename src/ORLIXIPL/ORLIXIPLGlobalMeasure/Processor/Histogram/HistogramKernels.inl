// The histogram kernels, once for every pixel type and instruction set, and for runs with a mask and without.
//
// Every set finds the same bin for every pixel. Integers of few values are counted by value. Elsewhere the vector
// kernels multiply by the reciprocal of the width in single precision, and where the product is so close to a bin
// border that rounding might decide, ask the rule, which divides in double.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramKernels.hpp>
#include <framework/kernel/CountValues.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// One pixel after the other.
template <class R>
ORLIX_KERNEL void countOneByOne(R run, const BinCounts& c)
{
    using T = typename R::Pixel;
    for (std::size_t i = 0; i < run.size; ++i) {
        if (isSelected(run, i)) {
            const T pixel = run.pixels[i];
            if constexpr (isFloat<T>) {
                ++c.tables[binOf(pixel, c.rule)];
            } else {
                ++c.tables[c.byValue ? entryOf(pixel, c) : binOf(float(pixel), c.rule)];
            }
        }
    }
}

/// The entries of as many pixels as there are lanes for floats, and which of them the rule must decide.
template <Domain::domain D>
struct ApproximateClass
{
    using Floats = Pack<float, D>;
    using Entries = Pack<std::uint32_t, D>;
    using Selected = LaneMask<float, D>;

    ORLIX_KERNEL explicit ApproximateClass(const BinCounts& c)
        : minF{splat<Floats>(c.rule.minF)}, maxF{splat<Floats>(c.rule.maxF)}, base{splat<Floats>(c.base)},
          inverse{splat<Floats>(c.inverse)}, slack{splat<Floats>(c.slack)}, last{splat<Entries>(c.rule.size - 2)},
          none{splat<Entries>(c.rule.size)}
    {}

    ORLIX_KERNEL Entries find(Floats pixel, Selected counts, Selected& isDoubtful) const
    {
        const Floats toInteger = splat<Floats>(0x1.8p23f); // adding and taking it away rounds to the nearest integer
        const Floats error = splat<Floats>(0x1.4p-22f);    // five roundings, relative
        const Floats quotient = (pixel - base) * inverse;
        const Floats off = quotient - ((quotient + toInteger) - toInteger);
        isDoubtful = magnitude(off) < quotient * error + slack;
        const Selected isLast = pixel == maxF;
        const Selected isInside = (pixel >= minF) & (pixel < maxF);
        const Entries entry = isLast ? last : minimum((Entries)truncate<D>(quotient), none);
        return (isInside | isLast) & counts ? entry : none;
    }

    Floats minF, maxF, base, inverse, slack;
    Entries last, none;
};

/// Pixels by bin. The entries of a whole block are found before the tables are touched, so that neither waits.
template <Domain::domain D, class R>
ORLIX_KERNEL void countIntoBins(R run, const BinCounts& c)
{
    using Class = ApproximateClass<D>;
    using Selected = typename Class::Selected;
    constexpr std::size_t block = 64;
    const Class approximateClass{c};

    const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
    std::size_t i = 0;
    for (; c.approximate && i + block <= run.size; i += block) {
        prefetch.stepOf<block>(run, i);
        alignas(64) std::uint32_t entries[block]; // or stores would lie across cache lines
        std::uint64_t doubtful = 0;
#pragma GCC unroll 4
        for (std::size_t k = 0; k < block; k += lanes<float, D>) {
            Selected selected = ~Selected{};
            if constexpr (R::isMasked) {
                selected = loadLaneMask<float, D>(run.mask + i + k);
            }
            Selected isDoubtful;
            const auto entry = approximateClass.find(loadAsFloats<D>(run.pixels + i + k), selected, isDoubtful);
            __builtin_memcpy(entries + k, &entry, sizeof entry);
            doubtful |= std::uint64_t{laneBits<D>(isDoubtful)} << k;
        }
        for (; doubtful != 0; doubtful &= doubtful - 1) {
            const auto k = std::size_t(__builtin_ctzll(doubtful));
            if (isSelected(run, i + k)) {
                entries[k] = binOf(float(run.pixels[i + k]), c.rule);
            }
        }
        addEntries<block>(entries, c);
    }
    countOneByOne(imaproc::part(run, i, run.size - i), c);
}

template <class R, Domain::domain D>
void count(R run, const BinCounts& c)
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
        countIntoBins<D>(run, c);
    }
}

template <Domain::domain D>
constexpr HistogramKernels histogramKernels = makeKernels<HistogramKernel, D>([]<class T>(std::type_identity<T>) {
    return &count<Run<T>, D>;
});

template <Domain::domain D>
constexpr HistogramMaskKernels histogramMaskKernels =
    makeKernels<HistogramMaskKernel, D>([]<class T>(std::type_identity<T>) { return &count<MaskedRun<T>, D>; });

} // namespace

} // namespace orlix::imaproc::glbmsr
