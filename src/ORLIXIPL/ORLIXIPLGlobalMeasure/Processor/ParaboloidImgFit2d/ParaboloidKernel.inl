// The sums of a row for the fit of a paraboloid, once for every pixel type and instruction set: in double, in 16 lanes,
// so all sets give the same bits. A last block of fewer than 16 pixels is filled up with zeros, which add nothing.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Pack.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidKernels.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

constexpr std::size_t block = 16;

/// Sixteen lanes of doubles, in registers.
template <Domain::domain D>
struct SumLanes
{
    using P = Pack<double, D>;

    ORLIX_KERNEL double total() const
    {
        double lane[block];
        storeAll(pack, lane);
        double sum = 0;
        for (const double x : lane) {
            sum += x;
        }
        return sum;
    }

    P pack[block / lanes<double, D>]{};
};

template <>
struct SumLanes<Domain::eIS_Generic>
{
    ORLIX_KERNEL double total() const
    {
        double sum = 0;
        for (const double x : pack) {
            sum += x;
        }
        return sum;
    }

    double pack[block]{};
};

/// Calls add(k, x, z) for each register (generic: each pixel) of a block. What a mask leaves out is 0.
template <Domain::domain D, class T, class Add>
ORLIX_KERNEL void forPacks(const T* pixels, const double* columns, Add add)
{
    if constexpr (D == Domain::eIS_Generic) {
        for (std::size_t k = 0; k < block; ++k) {
            add(k, columns[k], toDouble(pixels[k]));
        }
    } else {
        using P = Pack<double, D>;
        constexpr std::size_t step = lanes<double, D>;
#pragma GCC unroll 8
        for (std::size_t k = 0; k < block / step; ++k) {
            const P x = load<P>(columns + k * step);
            if constexpr (isFloat<T>) {
                add(k, x, loadAsDoubles<D>(pixels + k * step));
            } else if constexpr (sizeof(T) == 4) {
                add(k, x, loadIntegersAsDoubles<D>(pixels + k * step));
            } else {
                add(k, x, loadSmallAsDoubles<D>(pixels + k * step));
            }
        }
    }
}

/// Pixels from i on, as many as `filled` has room for; those that do not count, and those beyond the run, are 0.
template <class R>
ORLIX_KERNEL void fill(const R& run, std::size_t i, typename R::Pixel (&filled)[block])
{
    for (std::size_t k = 0; k < block; ++k) {
        filled[k] = i + k < run.size && counts(run, i + k) ? run.pixels[i + k] : typename R::Pixel(0);
    }
}

template <Domain::domain D, class R>
RowSums sumRow(R run, const double* columns)
{
    using T = typename R::Pixel;
    SumLanes<D> z;
    SumLanes<D> xz;
    SumLanes<D> x2z;
    const auto add = [&](std::size_t k, auto x, auto pixel) __attribute__((always_inline))
    {
        const auto product = x * pixel;
        z.pack[k] += pixel;
        xz.pack[k] += product;
        x2z.pack[k] += x * product;
    };
    std::size_t i = 0;
    for (; i + block <= run.size; i += block) {
        if constexpr (R::isMasked) {
            T kept[block];
            for (std::size_t k = 0; k < block; ++k) {
                kept[k] = run.mask[i + k] != 0 ? run.pixels[i + k] : T(0);
            }
            forPacks<D>(kept, columns + i, add);
        } else {
            forPacks<D>(run.pixels + i, columns + i, add);
        }
    }
    if (i < run.size) {
        T filled[block];
        fill(run, i, filled);
        forPacks<D>(filled, columns + i, add);
    }
    RowSums sums;
    sums.z = z.total();
    sums.xz = xz.total();
    sums.x2z = x2z.total();
    return sums;
}

/// The moments of what a mask selects: the same with ones in the place of pixels.
template <Domain::domain D, class T>
RowSums sumMaskedRow(MaskedRun<T> run, const double* columns)
{
    RowSums sums = sumRow<D>(run, columns);
    SumLanes<D> n;
    SumLanes<D> x1;
    SumLanes<D> x2;
    for (std::size_t i = 0; i < run.size; i += block) {
        std::uint8_t ones[block];
        for (std::size_t k = 0; k < block; ++k) {
            ones[k] = i + k < run.size && run.mask[i + k] != 0;
        }
        forPacks<D>(
            ones, columns + i, [&](std::size_t k, auto x, auto one) __attribute__((always_inline)) {
                n.pack[k] += one;
                x1.pack[k] += x * one;
                x2.pack[k] += x * (x * one);
            });
    }
    SumLanes<D> x3;
    SumLanes<D> x4;
    for (std::size_t i = 0; i < run.size; i += block) {
        std::uint8_t ones[block];
        for (std::size_t k = 0; k < block; ++k) {
            ones[k] = i + k < run.size && run.mask[i + k] != 0;
        }
        forPacks<D>(
            ones, columns + i, [&](std::size_t k, auto x, auto one) __attribute__((always_inline)) {
                const auto cube = x * x * x * one;
                x3.pack[k] += cube;
                x4.pack[k] += x * cube;
            });
    }
    sums.n = n.total();
    sums.x = x1.total();
    sums.x2 = x2.total();
    sums.x3 = x3.total();
    sums.x4 = x4.total();
    return sums;
}

template <class T, Domain::domain D>
constexpr ParaboloidKernel<T> paraboloidKernel{&sumRow<D, Run<T>>, &sumMaskedRow<D, T>};

template <Domain::domain D>
constexpr ParaboloidKernels everyParaboloidKernel{
    {paraboloidKernel<unsigned char, D>}, {paraboloidKernel<signed char, D>},  {paraboloidKernel<unsigned short, D>},
    {paraboloidKernel<short, D>},         {paraboloidKernel<unsigned int, D>}, {paraboloidKernel<int, D>},
    {paraboloidKernel<float, D>}};

} // namespace

} // namespace orlix::imaproc::glbmsr
