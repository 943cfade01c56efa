// The statistics kernels, once for every pixel type and instruction set.
//
// Integers: everything is exact until the end of the strip, where sum and sum of squares are rounded to double once; so
// all instruction sets give the same bits.
// Float: pixel i of the strip is added, in double, to lane i mod 16, whatever the width of the registers and the cut
// into runs, and the square of a float is exact in double; so all vector sets give the same bits.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/ExactSums.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernels.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

template <class T>
inline constexpr bool isFloat = T(0.5) != T(0);

/// Holds a sum of squares of 2^20 pixels of `Size` bytes.
template <std::size_t Size>
struct SquaresOf
{
    using Type = std::uint64_t;
};
template <>
struct SquaresOf<4>
{
    using Type = Int128;
};

ORLIX_KERNEL void widen(Moments& m, double lo, double hi)
{
    m.min = m.min < lo ? m.min : lo;
    m.max = m.max > hi ? m.max : hi;
}

template <class T, Domain::domain D>
void accumulateIntegers(Run<T> run, Moments& m)
{
    using Y = Canonical<T>;
    using YPack = Pack<Y, D>;
    using Sums = ExactSums<Y, D>;
    constexpr std::size_t step = lanes<T, D>;
    const std::size_t whole = run.size / step;
    const std::size_t rest = run.size % step;

    // The last pixels, filled up with copies of the very last: they do no harm to the extremes, and the sums are known.
    T filled[step];
    if (rest != 0) {
        const T last = run.pixels[run.size - 1];
        for (T& x : filled) {
            x = last;
        }
        __builtin_memcpy(filled, run.pixels + whole * step, rest * sizeof(T));
    }

    // Two of everything, so that one can wait for its registers while the other works.
    Totals totals;
    Sums sums[2];
    YPack lo[2];
    YPack hi[2];
    lo[0] = lo[1] = hi[0] = hi[1] = loadCanonical<T, D>(whole != 0 ? run.pixels : filled);
    const auto take = [&](int half, const T* pixels) __attribute__((always_inline))
    {
        const YPack y = loadCanonical<T, D>(pixels);
        sums[half].add(y);
        lo[half] = least(lo[half], y);
        hi[half] = most(hi[half], y);
    };
    std::size_t i = 0;
    do {
        const std::size_t end = whole - i < Sums::block ? whole : i + Sums::block;
        for (; i + 2 <= end; i += 2) {
            take(0, run.pixels + i * step);
            take(1, run.pixels + (i + 1) * step);
        }
        for (; i < end; ++i) {
            take(0, run.pixels + i * step);
        }
        if (end == whole && rest != 0) {
            take(1, filled);
        }
        sums[0].flush(totals);
        sums[1].flush(totals);
    } while (i < whole);

    Y los[step];
    Y his[step];
    const YPack least01 = least(lo[0], lo[1]);
    const YPack most01 = most(hi[0], hi[1]);
    __builtin_memcpy(los, &least01, sizeof los);
    __builtin_memcpy(his, &most01, sizeof his);
    Y min = los[0];
    Y max = his[0];
    for (std::size_t k = 1; k < step; ++k) {
        min = min < los[k] ? min : los[k];
        max = max > his[k] ? max : his[k];
    }
    widen(m, double(std::int64_t{min} + bias<T>), double(std::int64_t{max} + bias<T>));

    if (rest != 0) {
        const Int128 extra = step - rest;
        const Int128 last = Int128(run.pixels[run.size - 1]) - bias<T>;
        totals.sum -= extra * last;
        totals.sumSq -= extra * last * last;
    }
    const Int128 n = run.size;
    m.sum += totals.sum + n * bias<T>;
    m.sumSq += totals.sumSq + 2 * Int128{bias<T>} * totals.sum + n * bias<T> * bias<T>;
}

/// In the order of the pixels, so that a NaN stays until the next number replaces it.
template <class T>
ORLIX_KERNEL void widenInOrder(Run<T> run, Moments& m)
{
    for (std::size_t i = 0; i < run.size; ++i) {
        widen(m, run.pixels[i], run.pixels[i]);
    }
}

/// Pixels that fill no block of lanes, each added to its own.
ORLIX_KERNEL void accumulateOneByOne(Run<float> run, Moments& m)
{
    for (std::size_t i = 0; i < run.size; ++i) {
        const double x = run.pixels[i];
        m.laneSums[m.position % Moments::lanes] += x;
        m.laneSquares[m.position % Moments::lanes] += x * x;
        ++m.position;
    }
    widenInOrder(run, m);
}

/// Blocks of lanes; the first pixel belongs to lane 0.
template <Domain::domain D>
ORLIX_KERNEL void accumulateBlocks(Run<float> run, Moments& m)
{
    using Doubles = Pack<double, D>;
    using Floats = Pack<float, D>;
    constexpr std::size_t doubles = Moments::lanes / lanes<double, D>;
    constexpr std::size_t floats = Moments::lanes / lanes<float, D>;

    Doubles sum[doubles];
    Doubles sumSq[doubles];
    for (std::size_t k = 0; k < doubles; ++k) {
        sum[k] = load<Doubles>(m.laneSums + k * lanes<double, D>);
        sumSq[k] = load<Doubles>(m.laneSquares + k * lanes<double, D>);
    }
    Floats lo[floats];
    Floats hi[floats];
    for (std::size_t k = 0; k < floats; ++k) {
        lo[k] = hi[k] = load<Floats>(run.pixels + k * lanes<float, D>);
    }
    for (const float* pixels = run.pixels; pixels != run.pixels + run.size; pixels += Moments::lanes) {
#pragma GCC unroll 8
        for (std::size_t k = 0; k < doubles; ++k) {
            const Doubles x = loadAsDoubles<D>(pixels + k * lanes<double, D>);
            sum[k] += x;
            sumSq[k] = addSquare<D>(sumSq[k], x);
        }
#pragma GCC unroll 4
        for (std::size_t k = 0; k < floats; ++k) {
            const Floats x = load<Floats>(pixels + k * lanes<float, D>);
            lo[k] = least(lo[k], x);
            hi[k] = most(hi[k], x);
        }
    }
    __builtin_memcpy(m.laneSums, sum, sizeof sum);
    __builtin_memcpy(m.laneSquares, sumSq, sizeof sumSq);
    m.position += run.size;

    float los[Moments::lanes];
    float his[Moments::lanes];
    __builtin_memcpy(los, lo, sizeof los);
    __builtin_memcpy(his, hi, sizeof his);
    double total = 0;
    for (const double lane : m.laneSums) {
        total += lane;
    }
    if (total != total) {
        widenInOrder(run, m); // a NaN, perhaps: lanes would lose track of what came after it
        return;
    }
    for (std::size_t k = 0; k < Moments::lanes; ++k) {
        widen(m, los[k], his[k]);
    }
}

template <Domain::domain D>
void accumulateFloats(Run<float> run, Moments& m)
{
    const std::size_t toLane0 = (Moments::lanes - m.position % Moments::lanes) % Moments::lanes;
    const std::size_t head = toLane0 < run.size ? toLane0 : run.size;
    const std::size_t blocks = (run.size - head) / Moments::lanes * Moments::lanes;
    accumulateOneByOne({run.pixels, head}, m);
    if (blocks != 0) {
        accumulateBlocks<D>({run.pixels + head, blocks}, m);
    }
    accumulateOneByOne({run.pixels + head + blocks, run.size - head - blocks}, m);
}

/// The generic domain: one pixel after the other.
template <class T>
void accumulateGeneric(Run<T> run, Moments& m)
{
    if constexpr (isFloat<T>) {
        for (std::size_t i = 0; i < run.size; ++i) {
            const double x = run.pixels[i];
            m.laneSums[0] += x;
            m.laneSquares[0] += x * x;
        }
        widenInOrder(run, m);
    } else {
        constexpr std::size_t block = std::size_t{1} << 20; // of squares below 2^32, which fit 64 bits
        Totals totals;
        T min = run.pixels[0];
        T max = min;
        for (std::size_t i = 0; i < run.size;) {
            const std::size_t end = run.size - i < block ? run.size : i + block;
            std::int64_t sum = 0;
            typename SquaresOf<sizeof(T)>::Type sumSq = 0;
            for (; i < end; ++i) {
                const std::int64_t x = run.pixels[i];
                sum += x;
                sumSq += std::uint64_t(x) * std::uint64_t(x); // right for negative pixels, too
                min = min < run.pixels[i] ? min : run.pixels[i];
                max = max > run.pixels[i] ? max : run.pixels[i];
            }
            totals.sum += sum;
            totals.sumSq += sumSq;
        }
        widen(m, min, max);
        m.sum += totals.sum;
        m.sumSq += totals.sumSq;
    }
}

template <class T, Domain::domain D>
void accumulate(Run<T> run, Moments& m)
{
    if (run.size == 0) {
        return;
    }
    if constexpr (D == Domain::eIS_Generic) {
        accumulateGeneric(run, m);
    } else if constexpr (isFloat<T>) {
        accumulateFloats<D>(run, m);
    } else {
        accumulateIntegers<T, D>(run, m);
    }
}

template <Domain::domain D>
constexpr StatsKernels everyType{{&accumulate<unsigned char, D>},  {&accumulate<signed char, D>},
                                 {&accumulate<unsigned short, D>}, {&accumulate<short, D>},
                                 {&accumulate<unsigned int, D>},   {&accumulate<int, D>},
                                 {&accumulate<float, D>}};

} // namespace

} // namespace orlix::imaproc::glbmsr
