#include <orlix/GpuSupport.hpp>

#include <orlix/Errors.hpp>

#ifdef ORLIX_HAS_CUDA
#include <framework/gpu/BaseGpuProcessingAlgorithm.hpp>
#include <framework/gpu/Gpu.hpp>
#include <framework/gpu/GpuImage.hpp>
#endif

namespace orlix::app
{

#ifdef ORLIX_HAS_CUDA

namespace
{

void check(const core::ProcessingResult& result)
{
    if (!result) {
        throw FileError{"--gpu: " + result.getMessage()};
    }
}

} // namespace

Ptr<const image::BaseImage> placeOnGpu(const Ptr<const image::BaseImage>& image)
{
    check(gpu::activateGpuSupport());
    try {
        return gpu::copyToGpu(*image);
    } catch (const gpu::GpuException& error) {
        throw FileError{std::string{"--gpu: "} + error.what()};
    }
}

Json describeGpu()
{
    gpu::GpuDescription gpu;
    check(gpu::describeGpu(0, gpu));
    return {{"device", gpu.name}, {"memory", gpu.memory}, {"driver", gpu.driver}};
}

std::vector<image::DataTypeIdentifierColl> getGpuKernelTypes(const imaproc::BaseProcessor& processor)
{
    std::vector<image::DataTypeIdentifierColl> types;
    if (const auto* const algorithm = dynamic_cast<const imaproc::BaseGpuProcessingAlgorithm*>(&processor)) {
        for (const imaproc::CudaFunctionIdentifier& kernel : algorithm->getFunctionSelector().getFunctions()) {
            types.push_back(kernel.dataTypes);
        }
    }
    return types;
}

#else

namespace
{

[[noreturn]] void refuse()
{
    throw FileError{"--gpu: this orlix was built without a CUDA compiler: build it where there is one"};
}

} // namespace

Ptr<const image::BaseImage> placeOnGpu(const Ptr<const image::BaseImage>&)
{
    refuse();
}

Json describeGpu()
{
    refuse();
}

std::vector<image::DataTypeIdentifierColl> getGpuKernelTypes(const imaproc::BaseProcessor&)
{
    return {};
}

#endif

} // namespace orlix::app
