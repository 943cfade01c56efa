#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>

#include <cmath>

namespace orlix::imaproc::glbmsr
{

const KernelTables<DeviationKernels>& getDeviationKernels()
{
    static const KernelTables<DeviationKernels> tables{
        deviationKernels_generic, deviationKernels_sse2, {}, deviationKernels_avx2, deviationKernels_avx512};
    return tables;
}

void SecondStrip::read(std::size_t row, std::size_t x, std::size_t size, float mean, float* deviations) const
{
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (type == image::imageBufferTypeOf<T>) {
            kernelOf<T>(kernels).readFloats({parser.run<T>(row, parser.getBox().x) + x, mean}, size, deviations);
        }
    });
}

void SecondStrip::read(std::size_t row, std::size_t x, std::size_t size, double mean, double* deviations) const
{
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (type == image::imageBufferTypeOf<T>) {
            kernelOf<T>(kernels).readDoubles({parser.run<T>(row, parser.getBox().x) + x, mean}, size, deviations);
        }
    });
}

DeviationSums total(const PairTotals& totals, std::size_t size, double mean1, double mean2)
{
    // The bulk of a mean comes off the exact sums, as an integer, and what is left of it in double. So nothing cancels,
    // and a strip that is constant at its mean comes to 0 exactly.
    const auto centreOf = [](double mean) { return std::abs(mean) < 65536 ? std::llround(mean) : 0; };
    const Int128 n = size;
    const Int128 centre1 = centreOf(mean1);
    const Int128 centre2 = centreOf(mean2);
    const double rest1 = mean1 - static_cast<double>(centre1);
    const double rest2 = mean2 - static_cast<double>(centre2);
    const auto sum1 = static_cast<double>(totals.sum1 - n * centre1);
    const auto sum2 = static_cast<double>(totals.sum2 - n * centre2);
    const auto count = static_cast<double>(size);
    const auto squares1 = totals.squares1 - 2 * centre1 * totals.sum1 + n * centre1 * centre1;
    const auto squares2 = totals.squares2 - 2 * centre2 * totals.sum2 + n * centre2 * centre2;
    const auto products = totals.products - centre1 * totals.sum2 - centre2 * totals.sum1 + n * centre1 * centre2;
    return {static_cast<double>(squares1) - 2 * rest1 * sum1 + count * rest1 * rest1,
            static_cast<double>(squares2) - 2 * rest2 * sum2 + count * rest2 * rest2,
            static_cast<double>(products) - rest1 * sum2 - rest2 * sum1 + count * rest1 * rest2};
}

} // namespace orlix::imaproc::glbmsr
