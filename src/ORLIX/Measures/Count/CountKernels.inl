// Counting pixels by their place in the order of values, once for every pixel type and instruction set, and for runs
// with a mask and without.

#include <ORLIX/Measures/Count/CountKernels.hpp>
#include <framework/kernel/CountValues.hpp>

namespace orlix::measures
{

namespace
{

/// The upper half of a number that grows with the pixel; `none` for a NaN.
template <class T>
ORLIX_KERNEL std::uint32_t upperHalf(T pixel, std::uint32_t none)
{
    std::uint32_t bits;
    if constexpr (isFloat<T>) {
        if (pixel != pixel) {
            return none;
        }
        const float canonical = pixel + 0.f; // of both zeros one
        __builtin_memcpy(&bits, &canonical, sizeof bits);
        bits ^= std::uint32_t(std::int32_t(bits) >> 31) | 0x80000000u;
    } else {
        bits = std::uint32_t(pixel) ^ std::uint32_t(lowestOf<T>);
    }
    return bits >> 16;
}

template <class R>
ORLIX_KERNEL void countOneByOne(R run, const ValueTables& c)
{
    using T = typename R::Pixel;
    for (std::size_t i = 0; i < run.size; ++i) {
        if (isSelected(run, i)) {
            if constexpr (sizeof(T) == 4) {
                ++c.tables[upperHalf(run.pixels[i], c.size)];
            } else {
                ++c.tables[entryOf(run.pixels[i], c)];
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
    using Signed = Pack<std::int32_t, D>;
    constexpr std::size_t block = 64;
    const Bits none = splat<Bits>(c.size);
    const Prefetch prefetch{run.size * sizeof(T)};
    std::size_t i = 0;
    for (; i + block <= run.size; i += block) {
        prefetch.stepOf<block>(run, i);
        alignas(64) std::uint32_t entries[block]; // or stores would lie across cache lines
#pragma GCC unroll 4
        for (std::size_t k = 0; k < block; k += lanes<T, D>) {
            Bits entry;
            if constexpr (isFloat<T>) {
                const auto canonical = load<Pack<float, D>>(run.pixels + i + k) + 0.f;
                const Bits bits = (Bits)canonical;
                entry = (bits ^ ((Bits)((Signed)bits >> 31) | 0x80000000u)) >> 16;
                entry = (Signed)(bits & 0x7fffffffu) > 0x7f800000 ? none : entry;
            } else {
                entry = (load<Bits>(run.pixels + i + k) ^ std::uint32_t(lowestOf<T>)) >> 16;
            }
            if constexpr (R::isMasked) {
                entry = loadLaneMask<T, D>(run.mask + i + k) ? entry : none;
            }
            __builtin_memcpy(entries + k, &entry, sizeof entry);
        }
        addEntries<block>(entries, c);
    }
    countOneByOne(imaproc::part(run, i, run.size - i), c);
}

template <class R, Domain::domain D>
void countRun(R run, const ValueTables& c)
{
    using T = typename R::Pixel;
    if constexpr (sizeof(T) == 1) {
        countBytes(run, c);
    } else if constexpr (D == Domain::eIS_Generic || (sizeof(T) == 2 && R::isMasked)) {
        countOneByOne(run, c); // all values of 16 bits count, so that an entry has no room for none
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

} // namespace

} // namespace orlix::measures
