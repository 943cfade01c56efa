// The sums of the correlations, once for every pixel type and instruction set. A pair of pixel types is composed: the
// deviations of one image are read into a buffer, those of the other are read on the way.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Pack.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationKernels.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// The pixel in single precision. (Machines without AVX-512 convert signed numbers alone; of an unsigned one both
/// halves are exact, so their sum is rounded once.)
template <class T>
ORLIX_KERNEL float toFloat(T x)
{
    if constexpr (!isSigned<T> && sizeof(T) == 4) {
        return float(std::int32_t(x >> 16)) * 65536.f + float(std::int32_t(x & 0xffffu));
    } else {
        return float(x);
    }
}

template <class T>
void readFloats(DeviationsOf<T, float> of, std::size_t size, float* __restrict deviations)
{
    for (std::size_t i = 0; i < size; ++i) {
        deviations[i] = toFloat(of.pixels[i]) - of.mean;
    }
}

template <class T>
void readDoubles(DeviationsOf<T, double> of, std::size_t size, double* __restrict deviations)
{
    for (std::size_t i = 0; i < size; ++i) {
        deviations[i] = toDouble(of.pixels[i]) - of.mean;
    }
}

// Deviation i, and a pack of floats or two of doubles from i on; of pixels, or as they were read.

template <class T>
ORLIX_KERNEL float at(DeviationsOf<T, float> of, std::size_t i)
{
    return toFloat(of.pixels[i]) - of.mean;
}
template <class T>
ORLIX_KERNEL double at(DeviationsOf<T, double> of, std::size_t i)
{
    return toDouble(of.pixels[i]) - of.mean;
}
template <class Number>
ORLIX_KERNEL Number at(const Number* deviations, std::size_t i)
{
    return deviations[i];
}

template <Domain::domain D, class T>
ORLIX_KERNEL Pack<float, D> floatsAt(DeviationsOf<T, float> of, std::size_t i)
{
    return loadAsFloats<D>(of.pixels + i) - of.mean;
}
template <Domain::domain D>
ORLIX_KERNEL Pack<float, D> floatsAt(const float* deviations, std::size_t i)
{
    return load<Pack<float, D>>(deviations + i);
}

template <Domain::domain D, class T>
ORLIX_KERNEL void doublesAt(DeviationsOf<T, double> of, std::size_t i, Pack<double, D> (&x)[2])
{
    if constexpr (isFloat<T> || sizeof(T) < 4) {
        const Pack<float, D> exact = loadAsFloats<D>(of.pixels + i);
        x[0] = toDoubles<D, false>(exact) - of.mean;
        x[1] = toDoubles<D, true>(exact) - of.mean;
    } else {
        x[0] = loadIntegersAsDoubles<D>(of.pixels + i) - of.mean;
        x[1] = loadIntegersAsDoubles<D>(of.pixels + i + lanes<double, D>) - of.mean;
    }
}
template <Domain::domain D>
ORLIX_KERNEL void doublesAt(const double* deviations, std::size_t i, Pack<double, D> (&x)[2])
{
    x[0] = load<Pack<double, D>>(deviations + i);
    x[1] = load<Pack<double, D>>(deviations + i + lanes<double, D>);
}

template <Domain::domain D, class First, class Second>
void addCross(First first, Second second, std::size_t size, CrossSums& sums)
{
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using P = Pack<float, D>;
        constexpr std::size_t step = lanes<float, D>;
        constexpr std::size_t packs = CrossSums::lanes / step;
        // As many lanes as the registers hold at a time.
        constexpr std::size_t together = packs < 4 ? packs : 4;
        for (std::size_t k0 = 0; k0 < packs; k0 += together) {
            P squares1[together];
            P squares2[together];
            P products[together];
            for (std::size_t k = 0; k < together; ++k) {
                squares1[k] = load<P>(sums.squares1 + (k0 + k) * step);
                squares2[k] = load<P>(sums.squares2 + (k0 + k) * step);
                products[k] = load<P>(sums.products + (k0 + k) * step);
            }
            for (i = 0; i + CrossSums::lanes <= size; i += CrossSums::lanes) {
#pragma GCC unroll 4
                for (std::size_t k = 0; k < together; ++k) {
                    const P x = floatsAt<D>(first, i + (k0 + k) * step);
                    const P y = floatsAt<D>(second, i + (k0 + k) * step);
                    squares1[k] += x * x;
                    squares2[k] += y * y;
                    products[k] += x * y;
                }
            }
            __builtin_memcpy(sums.squares1 + k0 * step, squares1, sizeof squares1);
            __builtin_memcpy(sums.squares2 + k0 * step, squares2, sizeof squares2);
            __builtin_memcpy(sums.products + k0 * step, products, sizeof products);
        }
    }
    for (; i < size; ++i) {
        const float x = at(first, i);
        const float y = at(second, i);
        sums.squares1[i % CrossSums::lanes] += x * x;
        sums.squares2[i % CrossSums::lanes] += y * y;
        sums.products[i % CrossSums::lanes] += x * y;
    }
}

template <Domain::domain D, class First, class Second>
void addProducts(First first, Second second, std::size_t size, ProductSum& sum)
{
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using P = Pack<double, D>;
        constexpr std::size_t step = lanes<double, D>;
        constexpr std::size_t packs = ProductSum::lanes / step;
        P products[packs];
        for (std::size_t k = 0; k < packs; ++k) {
            products[k] = load<P>(sum.products + k * step);
        }
        for (; i + ProductSum::lanes <= size; i += ProductSum::lanes) {
#pragma GCC unroll 4
            for (std::size_t k = 0; k < packs; k += 2) {
                P x[2];
                P y[2];
                doublesAt<D>(first, i + k * step, x);
                doublesAt<D>(second, i + k * step, y);
                products[k] += x[0] * y[0];
                products[k + 1] += x[1] * y[1];
            }
        }
        __builtin_memcpy(sum.products, products, sizeof products);
    }
    for (; i < size; ++i) {
        sum.products[i % ProductSum::lanes] += at(first, i) * at(second, i);
    }
}

template <class T, Domain::domain D>
constexpr DeviationKernel<T> deviationKernel{&readFloats<T>,
                                             &readDoubles<T>,
                                             &addCross<D, DeviationsOf<T, float>, const float*>,
                                             &addCross<D, DeviationsOf<T, float>, DeviationsOf<T, float>>,
                                             &addProducts<D, DeviationsOf<T, double>, const double*>,
                                             &addProducts<D, DeviationsOf<T, double>, DeviationsOf<T, double>>};

template <Domain::domain D>
constexpr DeviationKernels everyDeviationKernel{{deviationKernel<unsigned char, D>},  {deviationKernel<signed char, D>},
                                                {deviationKernel<unsigned short, D>}, {deviationKernel<short, D>},
                                                {deviationKernel<unsigned int, D>},   {deviationKernel<int, D>},
                                                {deviationKernel<float, D>}};

} // namespace

} // namespace orlix::imaproc::glbmsr
