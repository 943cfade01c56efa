#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationKernels.hpp>
#include <framework/process/KernelTables.hpp>

#include <framework/image/Strip.hpp>
#include <framework/process/AlgorithmFunctionSelector.hpp>

#include <algorithm>
#include <numeric>

namespace orlix::imaproc::glbmsr
{

template <std::size_t N>
double addLanes(const double (&lane)[N])
{
    return std::accumulate(lane, lane + N, 0.0);
}

/// The strip of the second image: pixels of any type.
struct SecondStrip
{
    const DeviationKernels& kernels;
    const image::StripParser& parser;
    image::eImageBufferType type;

    /// The deviations of pixels [x, x + size) of a row.
    void read(std::size_t row, std::size_t x, std::size_t size, float mean, float* deviations) const;
    void read(std::size_t row, std::size_t x, std::size_t size, double mean, double* deviations) const;
};

struct DeviationSums
{
    double squares1;
    double squares2;
    double products;
};

inline DeviationSums total(const CrossSums& sums)
{
    return {addLanes(sums.squares1), addLanes(sums.squares2), addLanes(sums.products)};
}
inline DeviationSums total(const ProductSums& sums)
{
    return {0, 0, addLanes(sums.products)};
}
/// Of `size` pairs of pixels of at most 16 bits.
DeviationSums total(const PairTotals& totals, std::size_t size, double mean1, double mean2);

/// Sums over two strips of one shape.
template <class T, class Number, class Sums>
DeviationSums sumDeviations(const SumKernel<T, Number, Sums>& kernel, const image::StripParser& first,
                            const SecondStrip& second, ProcessingInfo info, Number mean1, Number mean2)
{
    const bool isPair = second.type == image::imageBufferTypeOf<T>;
    if (isPair && kernel.addPairExactly != nullptr) {
        PairTotals totals{};
        for (std::size_t i = 0; i < info.nbRuns(); ++i) {
            kernel.addPairExactly({first.run<T>(i, info.rowSize), info.rowSize},
                                  {second.parser.run<T>(i, info.rowSize), info.rowSize}, totals);
        }
        return total(totals, first.nbPixels(), mean1, mean2);
    }
    Sums sums{};
    Number deviations[CrossSums::segment];
    const std::size_t size = first.getBox().x;
    const std::size_t rows = size == 0 ? 0 : first.nbPixels() / size;
    for (std::size_t y = 0; y < rows; ++y) {
        const T* const pixels = first.run<T>(y, size);
        for (std::size_t x = 0; x < size; x += CrossSums::segment) {
            const std::size_t n = std::min(CrossSums::segment, size - x);
            if (isPair) {
                kernel.addPair({pixels + x, mean1}, {second.parser.run<T>(y, size) + x, mean2}, n, sums);
            } else {
                second.read(y, x, n, mean2, deviations);
                kernel.add({pixels + x, mean1}, deviations, n, sums);
            }
        }
    }
    return total(sums);
}

} // namespace orlix::imaproc::glbmsr
