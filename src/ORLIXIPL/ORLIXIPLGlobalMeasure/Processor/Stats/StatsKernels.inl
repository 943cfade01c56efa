// The statistics kernels, once for every pixel type and instruction set, and for runs with a mask and without.
//
// Integers: everything is exact until the end of the strip, where sum and sum of squares are rounded to double once; so
// all instruction sets give the same bits.
// Float: pixel i of the strip is added, in double, to lane i mod 16, whatever the width of the registers and the cut
// into runs, and the square of a float is exact in double; so all vector sets give the same bits.
// Masks: a pixel that does not count adds 0 to its lane, and the neutral value takes its place in the extremes.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsKernels.hpp>
#include <framework/kernel/IntegerMoments.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// Where only extremes are asked for, a NaN never replaces a number.
template <Figures F>
inline constexpr bool ignoresNaN = F == Figures::Extremes;

/// In the order of the pixels, so that a NaN, unless it is ignored, stays until the next number replaces it.
template <Figures F, class R>
ORLIX_KERNEL void extendRangeInOrder(R run, Moments& m)
{
    for (std::size_t i = 0; i < run.size; ++i) {
        const double x = run.pixels[i];
        if (isSelected(run, i) && !(ignoresNaN<F> && x != x)) {
            extendRange(m, x, x);
        }
    }
}

/// Pixels that fill no block of lanes, each added to its own.
template <Figures F, class R>
ORLIX_KERNEL void accumulateOneByOne(R run, Moments& m)
{
    if constexpr (hasSum<F>) {
        for (std::size_t i = 0; i < run.size; ++i, ++m.position) {
            if (isSelected(run, i)) {
                const double x = run.pixels[i];
                m.laneSums[m.position % Moments::lanes] += x;
                if constexpr (hasSquares<F>) {
                    m.laneSquares[m.position % Moments::lanes] += x * x;
                }
                m.selected += R::isMasked;
            }
        }
    }
    if constexpr (hasExtremes<F>) {
        extendRangeInOrder<F>(run, m);
    }
}

/// Blocks of lanes; the first pixel belongs to lane 0.
template <Domain::domain D, Figures F, class R>
ORLIX_KERNEL void accumulateBlocks(R run, Moments& m)
{
    using Doubles = Pack<double, D>;
    using Floats = Pack<float, D>;
    constexpr std::size_t doubles = Moments::lanes / lanes<double, D>;
    constexpr std::size_t floats = Moments::lanes / lanes<float, D>;
    constexpr float infinity = __builtin_inff();

    Doubles sum[doubles];
    Doubles sumSq[doubles];
    loadAll(sum, m.laneSums);
    loadAll(sumSq, m.laneSquares);
    const auto add = [&](std::size_t k, Doubles x) __attribute__((always_inline))
    {
        if constexpr (hasSum<F>) {
            sum[k] += x;
        }
        if constexpr (hasSquares<F>) {
            sumSq[k] = addSquare<D>(sumSq[k], x);
        }
    };
    Floats lo[floats];
    Floats hi[floats];
    LaneMaskCount<float, D> count;
    for (std::size_t k = 0; k < floats; ++k) {
        constexpr bool fromPixels = !R::isMasked && !ignoresNaN<F>;
        lo[k] = fromPixels ? load<Floats>(run.pixels + k * lanes<float, D>) : splat<Floats>(infinity);
        hi[k] = fromPixels ? lo[k] : splat<Floats>(-infinity);
    }
    const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
    for (std::size_t i = 0; i < run.size; i += Moments::lanes) {
        const float* const pixels = run.pixels + i;
        prefetch.stepOf<Moments::lanes>(run, i);
        if constexpr (R::isMasked) {
#pragma GCC unroll 4
            for (std::size_t k = 0; k < floats; ++k) {
                const Floats x = load<Floats>(pixels + k * lanes<float, D>);
                const auto selection = loadLaneMask<float, D>(run.mask + i + k * lanes<float, D>);
                count.add(selection);
                add(2 * k, toDoubles<D, false>(keep(selection, x)));
                add(2 * k + 1, toDoubles<D, true>(keep(selection, x)));
                lo[k] = minimum(lo[k], selection ? x : splat<Floats>(infinity));
                hi[k] = maximum(hi[k], selection ? x : splat<Floats>(-infinity));
            }
        } else {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < doubles; ++k) {
                add(k, loadAsDoubles<D>(pixels + k * lanes<double, D>));
            }
#pragma GCC unroll 4
            for (std::size_t k = 0; k < floats; ++k) {
                const Floats x = load<Floats>(pixels + k * lanes<float, D>);
                lo[k] = ignoresNaN<F> ? minimum(x, lo[k]) : minimum(lo[k], x);
                hi[k] = ignoresNaN<F> ? maximum(x, hi[k]) : maximum(hi[k], x);
            }
        }
    }
    if constexpr (hasSum<F>) {
        storeAll(sum, m.laneSums);
        storeAll(sumSq, m.laneSquares);
        m.position += run.size;
    }
    if constexpr (R::isMasked) {
        const std::uint64_t selected = count.flush();
        m.selected += selected;
        if (selected == 0) {
            return;
        }
    }

    if constexpr (!hasExtremes<F>) {
        return;
    }
    double total = 0;
    for (const double lane : m.laneSums) {
        total += lane;
    }
    if (!ignoresNaN<F> && total != total) {
        extendRangeInOrder<F>(run, m); // a NaN, perhaps: lanes would lose track of what came after it
        return;
    }
    // By halves, as minimumLane() goes on: so all widths come to the same zero, if there are two.
    for (std::size_t width = floats / 2; width != 0; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            lo[k] = minimum(lo[k], lo[k + width]);
            hi[k] = maximum(hi[k], hi[k + width]);
        }
    }
    extendRange(m, minimumLane<float>(lo[0]), maximumLane<float>(hi[0]));
}

template <Domain::domain D, Figures F, class R>
void accumulateFloats(R run, Moments& m)
{
    const std::size_t toLane0 = (Moments::lanes - m.position % Moments::lanes) % Moments::lanes;
    const std::size_t head = toLane0 < run.size ? toLane0 : run.size;
    const std::size_t blocks = (run.size - head) / Moments::lanes * Moments::lanes;
    accumulateOneByOne<F>(part(run, 0, head), m);
    if (blocks != 0) {
        accumulateBlocks<D, F>(part(run, head, blocks), m);
    }
    accumulateOneByOne<F>(part(run, head + blocks, run.size - head - blocks), m);
}

/// The generic domain: one pixel after the other.
template <Figures F, class R>
void accumulateGeneric(R run, Moments& m)
{
    using T = typename R::Pixel;
    if constexpr (isFloat<T>) {
        std::uint64_t selected = 0;
        for (std::size_t i = 0; i < run.size; ++i) {
            if (isSelected(run, i)) {
                const double x = run.pixels[i];
                if constexpr (hasSum<F>) {
                    m.laneSums[0] += x;
                }
                if constexpr (hasSquares<F>) {
                    m.laneSquares[0] += x * x;
                }
                ++selected;
            }
        }
        if constexpr (hasExtremes<F>) {
            extendRangeInOrder<F>(run, m);
        }
        m.selected += R::isMasked ? selected : 0;
    } else {
        accumulateIntegersOneByOne<F>(run, m);
    }
}

template <class R, Domain::domain D, Figures F = Figures::All>
void accumulate(R run, Moments& m)
{
    if (run.size == 0) {
        return;
    }
    if constexpr (D == Domain::eIS_Generic) {
        accumulateGeneric<F>(run, m);
    } else if constexpr (isFloat<typename R::Pixel>) {
        accumulateFloats<D, F>(run, m);
    } else {
        accumulateIntegers<D, F>(run, m);
    }
}

/// Whether a file has kernels for pixels of type T: one with an extension of AVX-512 has what that is good for.
template <class T>
constexpr bool isWorthwhile =
#if defined __AVX512VNNI__
    sizeof(T) < 4;
#elif defined __AVX512IFMA__
    std::is_integral_v<T> && sizeof(T) == 4;
#else
    true;
#endif

template <Domain::domain D>
constexpr StatsKernels statsKernels = makeKernels<StatsKernel, D>([]<class T>(std::type_identity<T>) -> StatsKernel<T> {
    if constexpr (isWorthwhile<T>) {
        return &accumulate<Run<T>, D>;
    } else {
        return nullptr;
    }
});

template <Domain::domain D>
constexpr StatsMaskKernels
    statsMaskKernels = makeKernels<StatsMaskKernel, D>([]<class T>(std::type_identity<T>) -> StatsMaskKernel<T> {
        if constexpr (isWorthwhile<T> && D != Domain::eIS_AVX) {
            return &accumulate<MaskedRun<T>, D>;
        } else {
            return nullptr;
        }
    });

} // namespace

} // namespace orlix::imaproc::glbmsr
