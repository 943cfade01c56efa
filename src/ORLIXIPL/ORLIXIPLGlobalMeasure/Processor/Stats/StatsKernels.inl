// The statistics kernels, once for every pixel type and instruction set, and for runs with a mask and without.
//
// Integers: everything is exact until the end of the strip, where sum and sum of squares are rounded to double once; so
// all instruction sets give the same bits.
// Float: pixel i of the strip is added, in double, to lane i mod 16, whatever the width of the registers and the cut
// into runs, and the square of a float is exact in double; so all vector sets give the same bits.
// Masks: a pixel that does not count adds 0 to its lane, and the neutral value takes its place in the extremes.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsKernels.hpp>
#include <framework/kernel/ExactSums.hpp>
#include <framework/kernel/Prefetch.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// What of the moments a kernel accumulates; what nobody keeps, the compiler leaves out.
enum class Figures
{
    All,
    Sums, ///< of pixels and of their squares
    Sum,
    Extremes
};

template <Figures F>
inline constexpr bool hasSum = F != Figures::Extremes;
template <Figures F>
inline constexpr bool hasSquares = F == Figures::All || F == Figures::Sums;
template <Figures F>
inline constexpr bool hasExtremes = F == Figures::All || F == Figures::Extremes;

ORLIX_KERNEL void extendRange(Moments& m, double lo, double hi)
{
    m.min = m.min < lo ? m.min : lo;
    m.max = m.max > hi ? m.max : hi;
}

template <class T, std::size_t Size = sizeof(T)>
struct CountLane
{
    using Type = Unsigned<T>;
};
template <class T>
struct CountLane<T, 1>
{
    using Type = std::uint64_t; // sums of eight bytes
};

/// Counts the selected lanes; up to 2^14 packs of 16 bits, 2^32 of others.
template <class T, Domain::domain D>
struct LaneMaskCount
{
    using Lane = typename CountLane<T>::Type;
    Pack<Lane, D> count{};

    ORLIX_KERNEL void add(LaneMask<T, D> selection)
    {
        if constexpr (sizeof(T) == 1) {
            count += addBytes<D>(selection & 1);
        } else {
            count -= (decltype(count))selection;
        }
    }
    ORLIX_KERNEL std::uint64_t flush()
    {
        const auto sum = addLanes<Lane, std::uint64_t>(count);
        count = Pack<Lane, D>{};
        return sum;
    }
};

template <Domain::domain D, Figures F, class R>
void accumulateIntegers(R run, Moments& m)
{
    using T = typename R::Pixel;
    using Y = Canonical<T>;
    using YPack = Pack<Y, D>;
    using Sums = ExactSums<Y, D>;
    constexpr std::size_t step = lanes<T, D>;
    const std::size_t whole = run.size / step;
    const std::size_t rest = run.size % step;

    // The last pixels, filled up with copies of the very last, which change no extreme and are subtracted from
    // the sums. Under a mask they are not selected.
    T filled[step];
    std::uint8_t filledMask[step] = {};
    if (rest != 0) {
        const T last = run.pixels[run.size - 1];
        for (T& x : filled) {
            x = last;
        }
        __builtin_memcpy(filled, run.pixels + whole * step, rest * sizeof(T));
        if constexpr (R::isMasked) {
            __builtin_memcpy(filledMask, run.mask + whole * step, rest);
        }
    }

    // Two accumulators each: additions to one need not wait for the latency of those to the other.
    Totals totals;
    std::uint64_t selected = 0;
    Sums sums[2];
    LaneMaskCount<T, D> selections[2];
    YPack lo[2];
    YPack hi[2];
    if constexpr (R::isMasked) {
        lo[0] = lo[1] = splat<YPack>(highestOf<Y>);
        hi[0] = hi[1] = splat<YPack>(lowestOf<Y>);
    } else {
        lo[0] = lo[1] = hi[0] = hi[1] = loadCanonical<T, D>(whole != 0 ? run.pixels : filled);
    }
    const auto take = [&](int half, const T* pixels, const std::uint8_t* mask) __attribute__((always_inline))
    {
        const YPack y = loadCanonical<T, D>(pixels);
        if constexpr (R::isMasked) {
            const auto selection = loadLaneMask<T, D>(mask);
            selections[half].add(selection);
            sums[half].add(keep(selection, y));
            lo[half] = minimum(lo[half], selection ? y : splat<YPack>(highestOf<Y>));
            hi[half] = maximum(hi[half], selection ? y : splat<YPack>(lowestOf<Y>));
        } else {
            sums[half].add(y);
            lo[half] = minimum(lo[half], y);
            hi[half] = maximum(hi[half], y);
        }
    };
    const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
    std::size_t i = 0;
    do {
        const std::size_t end = whole - i < Sums::block ? whole : i + Sums::block;
        for (; i + 2 <= end; i += 2) {
            prefetch.stepOf<2 * step>(run, i * step);
            take(0, run.pixels + i * step, maskAt(run, i * step));
            take(1, run.pixels + (i + 1) * step, maskAt(run, (i + 1) * step));
        }
        for (; i < end; ++i) {
            take(0, run.pixels + i * step, maskAt(run, i * step));
        }
        if (end == whole && rest != 0) {
            take(1, filled, filledMask);
        }
        for (int half = 0; half < 2; ++half) {
            sums[half].flush(totals);
            if constexpr (R::isMasked) {
                selected += selections[half].flush();
            }
        }
    } while (i < whole);

    if (R::isMasked && selected == 0) {
        return;
    }
    if constexpr (hasExtremes<F>) {
        const Y min = minimumLane<Y>(minimum(lo[0], lo[1]));
        const Y max = maximumLane<Y>(maximum(hi[0], hi[1]));
        extendRange(m, double(std::int64_t{min} + bias<T>), double(std::int64_t{max} + bias<T>));
    }
    if constexpr (!hasSum<F>) {
        return;
    }
    if (!R::isMasked && rest != 0) {
        const Int128 extra = step - rest;
        const Int128 last = Int128(run.pixels[run.size - 1]) - bias<T>;
        totals.sum -= extra * last;
        totals.sumSq -= extra * last * last;
    }
    const Int128 n = R::isMasked ? selected : run.size;
    m.selected += selected;
    m.sum += totals.sum + n * bias<T>;
    if constexpr (hasSquares<F>) {
        m.sumSq += totals.sumSq + 2 * Int128{bias<T>} * totals.sum + n * bias<T> * bias<T>;
    }
}

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
    std::uint64_t selected = 0;
    if constexpr (isFloat<T>) {
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
    } else {
        constexpr std::size_t block = std::size_t{1} << 20; // of squares below 2^32, which fit 64 bits
        Totals totals;
        T min = highestOf<T>;
        T max = lowestOf<T>;
        for (std::size_t i = 0; i < run.size;) {
            const std::size_t end = run.size - i < block ? run.size : i + block;
            std::int64_t sum = 0;
            typename SquaresOf<sizeof(T)>::Type sumSq = 0;
            for (; i < end; ++i) {
                if (isSelected(run, i)) {
                    const std::int64_t x = run.pixels[i];
                    sum += x;
                    sumSq += std::uint64_t(x) * std::uint64_t(x); // right for negative pixels, too
                    min = min < run.pixels[i] ? min : run.pixels[i];
                    max = max > run.pixels[i] ? max : run.pixels[i];
                    ++selected;
                }
            }
            totals.sum += sum;
            totals.sumSq += sumSq;
        }
        if (hasExtremes<F> && selected != 0) {
            extendRange(m, min, max);
        }
        if constexpr (hasSum<F>) {
            m.sum += totals.sum;
        }
        if constexpr (hasSquares<F>) {
            m.sumSq += totals.sumSq;
        }
    }
    m.selected += R::isMasked ? selected : 0;
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
