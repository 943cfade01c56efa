// The structural similarity of a row of windows: sums of rows, then of columns of them, each in the order of its terms.

#include <ORLIX/Measures/Compare/SsimKernels.hpp>
#include <framework/kernel/FloatSums.hpp>

#include <type_traits>

namespace orlix::measures
{

namespace
{

/// What a step of a loop works at: packs, or single numbers in the generic domain.
template <Domain::domain D>
struct Step
{
    using Numbers = Pack<double, D>;
    using Bits = Pack<std::uint64_t, D>; // those of NaN may overflow
    static constexpr std::size_t size = lanes<double, D>;
    ORLIX_KERNEL static Numbers get(const double* from) { return load<Numbers>(from); }
    ORLIX_KERNEL static void put(Numbers numbers, double* to) { store(numbers, to); }
    ORLIX_KERNEL static std::uint64_t add(Bits bits) { return addLanes<std::uint64_t, std::uint64_t>(bits); }
};
template <>
struct Step<Domain::eIS_Generic>
{
    using Numbers = double;
    using Bits = std::uint64_t;
    static constexpr std::size_t size = 1;
    ORLIX_KERNEL static double get(const double* from) { return *from; }
    ORLIX_KERNEL static void put(double number, double* to) { *to = number; }
    ORLIX_KERNEL static std::uint64_t add(Bits bits) { return bits; }
};

/// A product with a weight that is 1 needs none.
template <bool IsUniform, class Numbers>
ORLIX_KERNEL Numbers weigh(double weight, Numbers x)
{
    return IsUniform ? x : weight * x;
}

template <Domain::domain D, bool IsUniform>
ORLIX_KERNEL void sumParts(const SsimRow& r)
{
    using S = Step<D>;
    using Numbers = typename S::Numbers;
    for (std::size_t x = 0; x < r.size; x += S::size) {
        Numbers sums[nbSsimSums] = {};
        for (std::size_t k = 0; k < r.window.size; ++k) { // unaligned: that is what a window is
            const Numbers a = S::get(r.pixels[0] + x + k);
            const Numbers b = S::get(r.pixels[1] + x + k);
            const Numbers weighted = weigh<IsUniform>(r.window.weights[k], a);
            const Numbers weighted2 = weigh<IsUniform>(r.window.weights[k], b);
            sums[0] += weighted;
            sums[1] += weighted2;
            sums[2] += weighted * a;
            sums[3] += weighted2 * b;
            sums[4] += weighted * b;
        }
        for (std::size_t q = 0; q < nbSsimSums; ++q) {
            S::put(sums[q], r.sums[q] + x);
        }
    }
}

template <Domain::domain D>
void sumRow(const SsimRow& r)
{
    r.window.isUniform ? sumParts<D, true>(r) : sumParts<D, false>(r);
}

/// The similarities of some neighbouring windows.
template <Domain::domain D, bool IsUniform, std::size_t N>
ORLIX_KERNEL void measureAt(const SsimWindows& w, std::size_t x, typename Step<D>::Numbers (&values)[N])
{
    using S = Step<D>;
    using Numbers = typename S::Numbers;
    Numbers sums[nbSsimSums][N] = {};
    for (std::size_t k = 0; k < w.window.size; ++k) {
#pragma GCC unroll 5
        for (std::size_t q = 0; q < nbSsimSums; ++q) {
            const double* const row = w.rows[q][k] + x;
#pragma GCC unroll 2
            for (std::size_t i = 0; i < N; ++i) {
                sums[q][i] += weigh<IsUniform>(w.window.weights[k], S::get(row + i * S::size));
            }
        }
    }
#pragma GCC unroll 2
    for (std::size_t i = 0; i < N; ++i) {
        const Numbers squares = sums[0][i] * sums[0][i] + sums[1][i] * sums[1][i];
        const Numbers product = sums[0][i] * sums[1][i];
        const Numbers above = (2 * product + w.c1) * (2 * w.factor * (w.n * sums[4][i] - product) + w.c2);
        const Numbers below = (squares + w.c1) * (w.factor * (w.n * (sums[2][i] + sums[3][i]) - squares) + w.c2);
        // What lies beyond 1 is rounding; NaN stays.
        const Numbers similarity = above / below;
        values[i] = maximum(Numbers{} - 1, minimum(Numbers{} + 1, similarity));
        S::put(values[i], w.values + x + i * S::size);
    }
}

/// A similarity, in units.
ORLIX_KERNEL std::uint64_t toUnits(double value, double start, std::uint64_t startBits)
{
    const double moved = value + start;
    std::uint64_t bits;
    __builtin_memcpy(&bits, &moved, sizeof bits);
    return bits - startBits;
}

template <Domain::domain D, bool IsUniform>
ORLIX_KERNEL void measure(SsimWindows& w)
{
    using S = Step<D>;
    using Numbers = typename S::Numbers;
    using Bits = typename S::Bits;
    constexpr std::size_t packs = 2;
    // Added to it, a similarity is rounded to units, which the bits of the double count.
    const double start = 1.5 * powerOfTwo(52 + SsimWindows::unit);
    std::uint64_t startBits;
    __builtin_memcpy(&startBits, &start, sizeof start);
    Bits sum{};
    Bits isNaN{};
    Numbers values[packs];
    std::size_t x = 0;
    for (; x + packs * S::size <= w.size; x += packs * S::size) {
        measureAt<D, IsUniform>(w, x, values);
        for (const Numbers value : values) {
            isNaN |= (Bits)(value != value);
            const Numbers moved = value + start;
            Bits bits;
            __builtin_memcpy(&bits, &moved, sizeof bits);
            sum += bits - startBits;
        }
    }
    std::uint64_t total = S::add(sum);
    w.hasNaN = S::add(isNaN) != 0;
    if (x < w.size) {
        measureAt<D, IsUniform>(w, x, values);
    }
    for (; x < w.size; ++x) {
        const double value = w.values[x];
        w.hasNaN |= value != value;
        total += toUnits(value, start, startBits);
    }
    w.sum = std::int64_t(total);
}

template <Domain::domain D>
void measureWindows(SsimWindows& w)
{
    w.window.isUniform ? measure<D, true>(w) : measure<D, false>(w);
}

/// The kernel of a table that has one, for float.
template <template <class> class Kernel, Domain::domain D, auto Function>
constexpr KernelsByType<Kernel> forFloat = makeKernels<Kernel, D>([]<class T>(std::type_identity<T>) -> Kernel<T> {
    if constexpr (isFloat<T>) {
        return Function;
    } else {
        return nullptr;
    }
});

template <Domain::domain D>
constexpr SsimRowKernels ssimRowKernels = forFloat<SsimRowKernel, D, &sumRow<D>>;
template <Domain::domain D>
constexpr SsimWindowsKernels ssimWindowsKernels = forFloat<SsimWindowsKernel, D, &measureWindows<D>>;

} // namespace

} // namespace orlix::measures
