// The sums of the correlations, once for every instruction set. A pair of pixel types is two readers before one body.

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
void readFloats(const T* __restrict pixels, std::size_t size, float mean, float* __restrict deviations)
{
    for (std::size_t i = 0; i < size; ++i) {
        deviations[i] = toFloat(pixels[i]) - mean;
    }
}

template <class T>
void readDoubles(const T* __restrict pixels, std::size_t size, double mean, double* __restrict deviations)
{
    for (std::size_t i = 0; i < size; ++i) {
        deviations[i] = toDouble(pixels[i]) - mean;
    }
}

template <Domain::domain D>
void addSquaresAndProducts(const float* d1, const float* d2, std::size_t size, CrossSums& sums)
{
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using P = Pack<float, D>;
        constexpr std::size_t packs = CrossSums::lanes / lanes<float, D>;
        // As many lanes as the registers hold at a time.
        constexpr std::size_t together = packs < 4 ? packs : 4;
        for (std::size_t first = 0; first < packs; first += together) {
            P squares1[together];
            P squares2[together];
            P products[together];
            for (std::size_t k = 0; k < together; ++k) {
                squares1[k] = load<P>(sums.squares1 + (first + k) * lanes<float, D>);
                squares2[k] = load<P>(sums.squares2 + (first + k) * lanes<float, D>);
                products[k] = load<P>(sums.products + (first + k) * lanes<float, D>);
            }
            for (i = 0; i + CrossSums::lanes <= size; i += CrossSums::lanes) {
#pragma GCC unroll 4
                for (std::size_t k = 0; k < together; ++k) {
                    const P x = load<P>(d1 + i + (first + k) * lanes<float, D>);
                    const P y = load<P>(d2 + i + (first + k) * lanes<float, D>);
                    squares1[k] += x * x;
                    squares2[k] += y * y;
                    products[k] += x * y;
                }
            }
            __builtin_memcpy(sums.squares1 + first * lanes<float, D>, squares1, sizeof squares1);
            __builtin_memcpy(sums.squares2 + first * lanes<float, D>, squares2, sizeof squares2);
            __builtin_memcpy(sums.products + first * lanes<float, D>, products, sizeof products);
        }
    }
    for (; i < size; ++i) {
        sums.squares1[i % CrossSums::lanes] += d1[i] * d1[i];
        sums.squares2[i % CrossSums::lanes] += d2[i] * d2[i];
        sums.products[i % CrossSums::lanes] += d1[i] * d2[i];
    }
}

template <Domain::domain D>
void addProducts(const double* d1, const double* d2, std::size_t size, ProductSum& sum)
{
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using P = Pack<double, D>;
        constexpr std::size_t packs = ProductSum::lanes / lanes<double, D>;
        P products[packs];
        for (std::size_t k = 0; k < packs; ++k) {
            products[k] = load<P>(sum.products + k * lanes<double, D>);
        }
        for (; i + ProductSum::lanes <= size; i += ProductSum::lanes) {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < packs; ++k) {
                products[k] += load<P>(d1 + i + k * lanes<double, D>) * load<P>(d2 + i + k * lanes<double, D>);
            }
        }
        __builtin_memcpy(sum.products, products, sizeof products);
    }
    for (; i < size; ++i) {
        sum.products[i % ProductSum::lanes] += d1[i] * d2[i];
    }
}

template <class T>
constexpr DeviationReader<T> deviationReader{&readFloats<T>, &readDoubles<T>};

template <Domain::domain D>
constexpr DeviationKernels everyDeviationKernel{{{deviationReader<unsigned char>},
                                                 {deviationReader<signed char>},
                                                 {deviationReader<unsigned short>},
                                                 {deviationReader<short>},
                                                 {deviationReader<unsigned int>},
                                                 {deviationReader<int>},
                                                 {deviationReader<float>}},
                                                &addSquaresAndProducts<D>,
                                                &addProducts<D>};

} // namespace

} // namespace orlix::imaproc::glbmsr
