#pragma once

#include <framework/kernel/ExactSums.hpp>
#include <framework/kernel/Prefetch.hpp>

/// Sum, sum of squares, minimum and maximum of integer pixels, exact; in pixels or parts of them.
namespace orlix::imaproc
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

template <class M>
ORLIX_KERNEL void extendRange(M& m, double lo, double hi)
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

/// The pixels of a run in the moments `m`, which have `min`, `max`, `sum`, `sumSq` and, of masked runs, `selected`.
template <Domain::domain D, Figures F, class R, class M>
void accumulateIntegers(R run, M& m)
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

/// The same, one pixel after the other: the generic domain.
template <Figures F, class R, class M>
void accumulateIntegersOneByOne(R run, M& m)
{
    using T = typename R::Pixel;
    std::uint64_t selected = 0;
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
    m.selected += R::isMasked ? selected : 0;
}

} // namespace

} // namespace orlix::imaproc
