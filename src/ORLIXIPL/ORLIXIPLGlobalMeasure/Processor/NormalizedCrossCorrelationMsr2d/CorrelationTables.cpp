#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>

namespace orlix::imaproc::glbmsr
{

const KernelTables<DeviationKernels>& getDeviationKernels()
{
    static const KernelTables<DeviationKernels> tables{
        deviationKernels_generic, deviationKernels_sse2, {}, deviationKernels_avx2, deviationKernels_avx512};
    return tables;
}

namespace
{

template <class Visitor>
void visitReader(const DeviationKernels& kernels, image::eImageBufferType type, const std::byte* pixels, Visitor visit)
{
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (type == image::imageBufferTypeOf<T>) {
            visit(kernelOf<T>(kernels), reinterpret_cast<const T*>(pixels));
        }
    });
}

} // namespace

void readDeviations(const DeviationKernels& kernels, image::eImageBufferType type, const std::byte* pixels,
                    std::size_t size, float mean, float* deviations)
{
    visitReader(kernels, type, pixels,
                [&](const auto& reader, const auto* typed) { reader.floats(typed, size, mean, deviations); });
}

void readDeviations(const DeviationKernels& kernels, image::eImageBufferType type, const std::byte* pixels,
                    std::size_t size, double mean, double* deviations)
{
    visitReader(kernels, type, pixels,
                [&](const auto& reader, const auto* typed) { reader.doubles(typed, size, mean, deviations); });
}

} // namespace orlix::imaproc::glbmsr
