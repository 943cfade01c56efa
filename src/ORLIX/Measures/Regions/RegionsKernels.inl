// Sums over the short runs that regions are made of. Everything is exact, so all instruction sets give the same bits.

#include <ORLIX/Measures/Regions/RegionsKernels.hpp>
#include <framework/kernel/FloatSums.hpp>

namespace orlix::measures
{

namespace
{

constexpr double greatestUnits = 70368744177664.0; // 2^46

/// Lanes in which sums over a run are exact: squares of bytes have 16 digits, and 128 of them fit a float.
template <class T>
using ExactLane = std::conditional_t<sizeof(T) == 1, float, double>;

/// Runs are short: what longer packs save in the loop, adding up their lanes takes.
template <Domain::domain D>
constexpr Domain::domain shortPacks = D == Domain::eIS_AVX512 ? Domain::eIS_AVX2 : D;

template <class T, Domain::domain D>
ORLIX_KERNEL void loadExactly(const T* pixels, Pack<ExactLane<T>, D>* x)
{
    if constexpr (sizeof(T) == 1) {
        x[0] = loadAsFloats<D>(pixels);
    } else if constexpr (sizeof(T) == 2 || isFloat<T>) {
        const auto floats = loadAsFloats<D>(pixels);
        x[0] = toDoubles<D, false>(floats);
        x[1] = toDoubles<D, true>(floats);
    } else {
        x[0] = loadIntegersAsDoubles<D>(pixels);
        x[1] = loadIntegersAsDoubles<D>(pixels + lanes<double, D>);
    }
}

/// 0, 1, 2 ...: the numbers of the pixels in a pack, or in two.
template <class Lane>
alignas(64) constexpr Lane places[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

template <class Lane, class P>
ORLIX_KERNEL Lane sumOfLanes(P pack)
{
    return combineLanes<Lane>(
        pack, [](auto a, auto b) __attribute__((always_inline)) { return a + b; });
}

/// Sums of numbers below 2^24, with their squares and their products with their places.
template <class Lane, Domain::domain D>
struct ShortSums
{
    using Lanes = Pack<Lane, D>;

    Lanes squares{};
    Lanes products{};

    ORLIX_KERNEL void add(Lanes x, Lanes place)
    {
        if constexpr (sizeof(Lane) == sizeof(double)) {
            squares = addSquare<D>(squares, x);
            products = multiplyAdd<D>(x, place, products);
        } else {
            squares += x * x;
            products += x * place;
        }
    }
    ORLIX_KERNEL void flush(RunSums& sums) const
    {
        sums.squares = std::int64_t(sumOfLanes<Lane>(squares));
        sums.products = std::int64_t(sumOfLanes<Lane>(products));
    }
};

/// The same for numbers up to 2^46, which are cut in two: products of two parts have 46 digits, and 128 of them 53.
template <Domain::domain D>
struct LongSums
{
    using Lanes = Pack<double, D>;
    static constexpr int digits = 23; // of the lower part

    Lanes squares[3] = {};
    Lanes products[2] = {};

    ORLIX_KERNEL void add(Lanes x, Lanes place)
    {
        const Lanes rounder = UnitLanes<D>::start(digits);
        const Lanes high = (x + rounder) - rounder;
        const Lanes low = x - high;
        squares[0] = addSquare<D>(squares[0], low);
        squares[1] = multiplyAdd<D>(low, high, squares[1]);
        squares[2] = addSquare<D>(squares[2], high);
        products[0] = multiplyAdd<D>(low, place, products[0]);
        products[1] = multiplyAdd<D>(high, place, products[1]);
    }
    ORLIX_KERNEL void flush(RunSums& sums) const
    {
        const double perUnit = powerOfTwo(-digits);
        const auto middle = std::int64_t(sumOfLanes<double>(squares[1]) * perUnit);
        const auto high = std::int64_t(sumOfLanes<double>(squares[2]) * perUnit * perUnit);
        sums.squares = std::int64_t(sumOfLanes<double>(squares[0])) + Int128{middle} * (2 << digits) +
                       Int128{high} * (std::int64_t{1} << 2 * digits);
        sums.products = std::int64_t(sumOfLanes<double>(products[0])) + std::int64_t(sumOfLanes<double>(products[1]));
    }
};

template <class T, Domain::domain D>
bool sumRun(const RegionRun<T>& run, int unit, RunSums& sums)
{
    using Lane = ExactLane<T>;
    using Lanes = Pack<Lane, D>;
    constexpr std::size_t parts = sizeof(Lane) / sizeof(float);
    constexpr std::size_t step = lanes<float, D>;
    constexpr Lane infinity = __builtin_inf();
    const std::size_t whole = run.size / step * step;

    std::conditional_t<sizeof(T) == 4, LongSums<D>, ShortSums<Lane, D>> rest;
    Lanes total[parts] = {};
    Lanes lo[parts];
    Lanes hi[parts];
    Lanes place[parts];
    loadAll(place, places<Lane>);
    for (std::size_t k = 0; k < parts; ++k) {
        lo[k] = splat<Lanes>(infinity);
        hi[k] = splat<Lanes>(-infinity);
    }
    const Lanes perUnit = splat<Lanes>(Lane(isFloat<T> ? powerOfTwo(-unit) : 1));
    auto isOff = lo[0] != lo[0];
    const auto take = [&](const T* pixels, auto isLast) __attribute__((always_inline))
    {
        Lanes x[parts];
        loadExactly<T, D>(pixels, x);
        for (std::size_t k = 0; k < parts; ++k) {
            if constexpr (isLast) {
                const auto belongs = place[k] < Lane(run.size);
                lo[k] = minimum((Lanes)(belongs ? x[k] : splat<Lanes>(infinity)), lo[k]);
                hi[k] = maximum((Lanes)(belongs ? x[k] : splat<Lanes>(-infinity)), hi[k]);
                x[k] = keep(belongs, x[k]);
            } else {
                lo[k] = minimum(x[k], lo[k]);
                hi[k] = maximum(x[k], hi[k]);
            }
            if constexpr (isFloat<T>) {
                x[k] *= perUnit;
                const Lanes rounder = UnitLanes<D>::start(0);
                isOff |= (x[k] + rounder) - rounder != x[k]; // so is NaN
            }
            total[k] += x[k];
            rest.add(x[k], place[k]);
            place[k] += Lane(step);
        }
    };
    for (std::size_t i = 0; i < whole; i += step) {
        take(run.pixels + i, std::false_type{});
    }
    if (whole + step <= run.room && whole < run.size) {
        take(run.pixels + whole, std::true_type{});
    } else if (whole < run.size) {
        T filled[step] = {};
        __builtin_memcpy(filled, run.pixels + whole, (run.size - whole) * sizeof(T));
        take(filled, std::true_type{});
    }
    if constexpr (parts == 2) {
        lo[0] = minimum(lo[0], lo[1]);
        hi[0] = maximum(hi[0], hi[1]);
        total[0] += total[1];
    }
    sums.min = minimumLane<Lane>(lo[0]);
    sums.max = maximumLane<Lane>(hi[0]);
    if constexpr (isFloat<T>) {
        const double greatest = (sums.max > -sums.min ? sums.max : -sums.min) * perUnit[0];
        if (addLanes<std::int64_t, std::int64_t>(isOff) != 0 || !(greatest < greatestUnits)) {
            return false;
        }
    }
    sums.sum = std::int64_t(sumOfLanes<Lane>(total[0]));
    rest.flush(sums);
    return true;
}

/// The generic domain: one pixel after the other.
template <class T>
bool sumOneByOne(const RegionRun<T>& run, int unit, RunSums& sums)
{
    const double perUnit = isFloat<T> ? powerOfTwo(-unit) : 1;
    sums = {.squares = 0, .sum = 0, .products = 0, .min = __builtin_inf(), .max = -__builtin_inf()};
    for (std::size_t i = 0; i < run.size; ++i) {
        const double pixel = run.pixels[i];
        const double units = pixel * perUnit;
        if (!(units > -greatestUnits && units < greatestUnits)) {
            return false;
        }
        const auto x = std::int64_t(units);
        if (double(x) != units) {
            return false;
        }
        sums.min = sums.min < pixel ? sums.min : pixel;
        sums.max = sums.max > pixel ? sums.max : pixel;
        sums.sum += x;
        sums.squares += Int128{x} * x;
        sums.products += x * std::int64_t(i);
    }
    return true;
}

template <Domain::domain D>
constexpr RegionsKernels
    regionsKernels = makeKernels<RegionsKernel, D>([]<class T>(std::type_identity<T>) -> RegionsKernel<T> {
        if constexpr (D == Domain::eIS_Generic) {
            return &sumOneByOne<T>;
        } else {
            return &sumRun<T, shortPacks<D>>;
        }
    });

} // namespace

} // namespace orlix::measures
