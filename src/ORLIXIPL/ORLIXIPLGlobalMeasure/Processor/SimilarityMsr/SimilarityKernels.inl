// Sums of squared differences, once for every pixel type and instruction set.
//
// Integers: the differences' magnitudes are pixels of the unsigned type; their squares are added exactly, and rounded
// to double once, at the end of the strip. Float: in double, in 16 lanes; so all vector sets give the same bits.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityKernels.hpp>
#include <framework/kernel/ExactSums.hpp>
#include <framework/kernel/Prefetch.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

template <class T, Domain::domain D>
void addIntegers(Run<T> a, Run<T> b, SquaredDifferences& differences)
{
    using U = Unsigned<T>;
    using UPack = Pack<U, D>;
    using Y = Canonical<U>;
    using Sums = ExactSums<Y, D>;
    constexpr std::size_t step = lanes<T, D>;
    // The differences of signed pixels are those of pixels moved into the unsigned range.
    constexpr U flip = isSigned<T> ? U(U(1) << (8 * sizeof(T) - 1)) : U(0);
    constexpr U toCanonical = bias<U> != 0 ? U(U(1) << (8 * sizeof(T) - 1)) : U(0);
    const auto difference = [](const T* x, const T* y) __attribute__((always_inline))
    {
        const UPack p = load<UPack>(x) ^ splat<UPack>(flip);
        const UPack q = load<UPack>(y) ^ splat<UPack>(flip);
        return (Pack<Y, D>)((maximum(p, q) - minimum(p, q)) ^ splat<UPack>(toCanonical));
    };
    const std::size_t packs = a.size / step;
    const Prefetch prefetch{a.size * sizeof(a.pixels[0])};
    Totals totals;
    Sums sums[2];
    std::size_t i = 0;
    while (i < packs) {
        const std::size_t end = packs - i < Sums::block ? packs : i + Sums::block;
        for (; i + 2 <= end; i += 2) {
            prefetch.stepOf<2 * step>(a, i * step);
            prefetch.stepOf<2 * step>(b, i * step);
            sums[0].add(difference(a.pixels + i * step, b.pixels + i * step));
            sums[1].add(difference(a.pixels + (i + 1) * step, b.pixels + (i + 1) * step));
        }
        for (; i < end; ++i) {
            sums[0].add(difference(a.pixels + i * step, b.pixels + i * step));
        }
        sums[0].flush(totals);
        sums[1].flush(totals);
    }
    const Int128 n = packs * step;
    Int128 sum = totals.sumSq + 2 * Int128{bias<U>} * totals.sum + n * bias<U> * bias<U>;
    for (std::size_t k = packs * step; k < a.size; ++k) {
        const std::int64_t d = std::int64_t{a.pixels[k]} - b.pixels[k];
        sum += std::uint64_t(d) * std::uint64_t(d); // right for negative ones, too
    }
    differences.sum += sum;
}

template <Domain::domain D>
void addFloats(Run<float> a, Run<float> b, SquaredDifferences& differences)
{
    using Doubles = Pack<double, D>;
    constexpr std::size_t lanesAll = SquaredDifferences::lanes;
    constexpr std::size_t packs = lanesAll / lanes<double, D>;
    const auto addOne = [&](std::size_t i) __attribute__((always_inline))
    {
        const double d = double(a.pixels[i]) - double(b.pixels[i]);
        differences.laneSums[differences.position++ % lanesAll] += d * d;
    };
    std::size_t i = 0;
    while (i < a.size && differences.position % lanesAll != 0) {
        addOne(i++);
    }
    Doubles sums[packs];
    loadAll(sums, differences.laneSums);
    const Prefetch prefetch{a.size * sizeof(a.pixels[0])};
    const std::size_t first = i;
    for (; i + lanesAll <= a.size; i += lanesAll) {
        prefetch.stepOf<lanesAll>(a, i);
        prefetch.stepOf<lanesAll>(b, i);
#pragma GCC unroll 8
        for (std::size_t k = 0; k < packs; ++k) {
            const Doubles d = loadAsDoubles<D>(a.pixels + i + k * lanes<double, D>) -
                              loadAsDoubles<D>(b.pixels + i + k * lanes<double, D>);
            sums[k] += d * d;
        }
    }
    storeAll(sums, differences.laneSums);
    differences.position += i - first;
    while (i < a.size) {
        addOne(i++);
    }
}

template <class T>
void addOneByOne(Run<T> a, Run<T> b, SquaredDifferences& differences)
{
    if constexpr (isFloat<T>) {
        for (std::size_t i = 0; i < a.size; ++i) {
            const double d = double(a.pixels[i]) - double(b.pixels[i]);
            differences.laneSums[0] += d * d;
        }
    } else {
        for (std::size_t i = 0; i < a.size;) {
            const std::size_t end = a.size - i < (1u << 20) ? a.size : i + (1u << 20);
            typename SquaresOf<sizeof(T)>::Type sum = 0;
            for (; i < end; ++i) {
                const std::int64_t d = std::int64_t{a.pixels[i]} - b.pixels[i];
                sum += std::uint64_t(d) * std::uint64_t(d);
            }
            differences.sum += sum;
        }
    }
}

template <class T, Domain::domain D>
void addSquares(Run<T> a, Run<T> b, SquaredDifferences& differences)
{
    if constexpr (D == Domain::eIS_Generic) {
        addOneByOne(a, b, differences);
    } else if constexpr (isFloat<T>) {
        addFloats<D>(a, b, differences);
    } else {
        addIntegers<T, D>(a, b, differences);
    }
}

template <Domain::domain D>
constexpr SimilarityKernels similarityKernels = makeKernels<SimilarityKernel, D>([]<class T>(std::type_identity<T>) {
    return &addSquares<T, D>;
});

} // namespace

} // namespace orlix::imaproc::glbmsr
