#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>

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

} // namespace orlix::imaproc::glbmsr
