// The sums of a row for the fit of a paraboloid, once for every pixel type and instruction set.
//
// Pixels of 8 and 16 bits: exact integer sums over segments of 512 columns. Others: in double, in 16 lanes. So all sets
// give the same bits. What does not count is 0 and adds nothing.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidKernels.hpp>
#include <framework/kernel/Prefetch.hpp>

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
            } else {
                add(k, x, loadIntegersAsDoubles<D>(pixels + k * step));
            }
        }
    }
}

/// The first `size` pixels of a run; what does not count, and what lies beyond the run, is 0.
template <class R>
ORLIX_KERNEL void fill(const R& run, typename R::Pixel* filled, std::size_t size)
{
    using T = typename R::Pixel;
    const std::size_t n = size < run.size ? size : run.size;
    for (std::size_t k = 0; k < n; ++k) {
        filled[k] = isSelected(run, k) ? run.pixels[k] : T(0);
    }
    for (std::size_t k = n; k < size; ++k) {
        filled[k] = T(0);
    }
}

/// The columns whose pixels are multiplied by small numbers before blocks are put together.
template <Domain::domain D>
inline constexpr std::size_t integerBlock = D == Domain::eIS_AVX512 ? 32 : 16;

/// Pixels of 8 or 16 bits as signed numbers of 16 bits, those of unsigned 16 bits less 32768.
template <Domain::domain D, class T>
ORLIX_KERNEL Pack<std::int16_t, D> loadCentred(const T* pixels)
{
    if constexpr (sizeof(T) == 1) {
        return loadWidened<D>(pixels);
    } else {
        const auto z = load<Pack<std::int16_t, D>>(pixels);
        return isSigned<T> ? z : z ^ splat<Pack<std::int16_t, D>>(std::int16_t(-32768));
    }
}

/// Sums over the pixels z of a segment at columns x from its first.
struct SegmentSums
{
    std::int64_t z;
    std::int64_t xz;
    std::int64_t x2z;
};

/// `blocks` blocks of pixels. Running sums give the weights that multiplications would: what is added at block j is
/// counted blocks - j times in the sum of the running sum.
template <Domain::domain D, class T>
ORLIX_KERNEL SegmentSums sumBlocks(const T* pixels, std::size_t blocks)
{
    using Words = Pack<std::int16_t, D>;
    using Sums = Pack<std::int32_t, D>;
    constexpr std::size_t step = lanes<std::int16_t, D>;
    constexpr std::size_t packs = integerBlock<D> / step;
    Words one{};
    Words x[packs];
    Words x2[packs];
    for (std::size_t i = 0; i < integerBlock<D>; ++i) {
        x[i / step][i % step] = std::int16_t(i);
        x2[i / step][i % step] = std::int16_t(i * i);
    }
    one += 1;
    Sums z0{}, z1{}, z2{}, x0{}, x1{}, xx{};
    for (std::size_t j = 0; j < blocks; ++j) {
        for (std::size_t k = 0; k < packs; ++k) {
            const Words z = loadCentred<D>(pixels + j * integerBlock<D> + k * step);
            z0 += (Sums)multiplyAddPairs<D>(z, one);
            x0 += (Sums)multiplyAddPairs<D>(z, x[k]);
            xx += (Sums)multiplyAddPairs<D>(z, x2[k]);
        }
        z1 += z0;
        z2 += z1;
        x1 += x0;
    }
    const auto total = [](Sums sums) __attribute__((always_inline))
    {
        return addLanes<std::int32_t, std::int64_t>(sums);
    };
    constexpr std::int64_t width = integerBlock<D>;
    const std::int64_t count = std::int64_t(blocks);
    const std::int64_t z = total(z0);
    const std::int64_t left = total(z1);              // each block times m = count - j
    const std::int64_t leftSq = 2 * total(z2) - left; // times m^2, as the sum of 1 ... m is m (m + 1) / 2
    const std::int64_t xz = total(x0);
    // Each block times its number j, and times j^2.
    const std::int64_t jz = count * z - left;
    const std::int64_t j2z = count * count * z - 2 * count * left + leftSq;
    const std::int64_t jxz = count * xz - total(x1);
    SegmentSums sums{z, width * jz + xz, width * width * j2z + 2 * width * jxz + total(xx)};
    // Pixels of unsigned 16 bits are less by this.
    constexpr std::int64_t centre = !isSigned<T> && sizeof(T) == 2 ? 32768 : 0;
    const std::int64_t n = count * width;
    sums.z += centre * n;
    sums.xz += centre * (n * (n - 1) / 2);
    sums.x2z += centre * ((n - 1) * n * (2 * n - 1) / 6);
    return sums;
}

/// One pixel after the other.
template <class T>
ORLIX_KERNEL SegmentSums sumPixels(const T* pixels, std::size_t size)
{
    SegmentSums sums{};
    for (std::size_t i = 0; i < size; ++i) {
        const auto x = std::int64_t(i);
        sums.z += pixels[i];
        sums.xz += x * pixels[i];
        sums.x2z += x * x * pixels[i];
    }
    return sums;
}

/// Pixels of 8 and 16 bits. Lanes of 32 bits hold the sums of a segment of 512 columns.
template <Domain::domain D, class R>
ORLIX_KERNEL RowSums sumIntegers(R run)
{
    using T = typename R::Pixel;
    constexpr std::size_t segment = 512;
    T filled[segment];
    RowSums row;
    const Prefetch prefetch{run.size * sizeof(T)};
    for (std::size_t begin = 0; begin < run.size; begin += segment) {
        prefetch.stepOf<segment>(run, begin);
        const std::size_t n = run.size - begin < segment ? run.size - begin : segment;
        const T* pixels = run.pixels + begin;
        constexpr std::size_t width = integerBlock<D>;
        const std::size_t blocks = (n + width - 1) / width;
        if (R::isMasked || n % width != 0) {
            fill(part(run, begin, n), filled, blocks * width);
            pixels = filled;
        }
        SegmentSums sums;
        if constexpr (D == Domain::eIS_Generic) {
            sums = sumPixels(pixels, n);
        } else {
            sums = sumBlocks<D>(pixels, blocks);
        }
        const auto x = double(std::int64_t(begin));
        row.z += double(sums.z);
        row.xz += x * double(sums.z) + double(sums.xz);
        row.x2z += x * x * double(sums.z) + 2 * x * double(sums.xz) + double(sums.x2z);
    }
    return row;
}

/// Pixels of 32 bits.
template <Domain::domain D, class R>
ORLIX_KERNEL RowSums sumDoubles(R run, const double* columns)
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
    const Prefetch prefetch{run.size * sizeof(T)};
    for (std::size_t i = 0; i < run.size; i += block) {
        prefetch.stepOf<block>(run, i);
        if (R::isMasked || i + block > run.size) {
            T filled[block];
            fill(part(run, i, run.size - i), filled, block);
            forPacks<D>(filled, columns + i, add);
        } else {
            forPacks<D>(run.pixels + i, columns + i, add);
        }
    }
    RowSums sums;
    sums.z = z.total();
    sums.xz = xz.total();
    sums.x2z = x2z.total();
    return sums;
}

template <Domain::domain D, class R>
RowSums sumRow(R run, const double* columns)
{
    if constexpr (sizeof(typename R::Pixel) < 4) {
        return sumIntegers<D>(run);
    } else {
        return sumDoubles<D>(run, columns);
    }
}

/// Calls add(k, x, one) as forPacks(), with 1 for what a mask selects and 0 elsewhere.
template <Domain::domain D, class T, class Add>
ORLIX_KERNEL void forSelected(const MaskedRun<T>& run, const double* columns, Add add)
{
    for (std::size_t i = 0; i < run.size; i += block) {
        float ones[block];
        for (std::size_t k = 0; k < block; ++k) {
            ones[k] = i + k < run.size && run.mask[i + k] != 0;
        }
        forPacks<D>(ones, columns + i, add);
    }
}

/// The sums of the selected pixels, and the moments of the selection; these in two passes, as registers allow.
template <Domain::domain D, class T>
RowSums sumMaskedRow(MaskedRun<T> run, const double* columns)
{
    RowSums sums = sumRow<D>(run, columns);
    SumLanes<D> n;
    SumLanes<D> x1;
    SumLanes<D> x2;
    forSelected<D>(
        run, columns, [&](std::size_t k, auto x, auto one) __attribute__((always_inline)) {
            n.pack[k] += one;
            x1.pack[k] += x * one;
            x2.pack[k] += x * (x * one);
        });
    SumLanes<D> x3;
    SumLanes<D> x4;
    forSelected<D>(
        run, columns, [&](std::size_t k, auto x, auto one) __attribute__((always_inline)) {
            const auto cube = x * x * x * one;
            x3.pack[k] += cube;
            x4.pack[k] += x * cube;
        });
    sums.n = n.total();
    sums.x = x1.total();
    sums.x2 = x2.total();
    sums.x3 = x3.total();
    sums.x4 = x4.total();
    return sums;
}

template <Domain::domain D>
constexpr ParaboloidKernels paraboloidKernels = makeKernels<ParaboloidKernel, D>([]<class T>(std::type_identity<T>) {
    return ParaboloidKernel<T>{&sumRow<D, Run<T>>, &sumMaskedRow<D, T>};
});

} // namespace

} // namespace orlix::imaproc::glbmsr
