#include <framework/gpu/BaseGpuProcessingAlgorithm.hpp>

#include <framework/gpu/GpuImage.hpp>
#include <framework/gpu/GpuMessages.hpp>

namespace orlix::imaproc
{

using core::ProcessingResult;

std::vector<GpuBuffer> BaseGpuProcessingAlgorithm::extractBufferDataCollToGpu() const
{
    std::vector<GpuBuffer> buffers;
    for (const attr::BaseAttribute* const attribute : getAttributes()) {
        if (const image::BaseImage* const image = attribute->getImage()) {
            buffers.push_back({image->getRow(0), image->getStrides().y, image->getStrides().z});
        }
    }
    return buffers;
}

ProcessingResult BaseGpuProcessingAlgorithm::runDerived(const RunContext& context)
{
    ProcessingResult result = gpu::describeSelectedGpu(gpu_);
    if (!result) {
        return result;
    }
    const gpu::CurrentGpu current{gpu_.index, result};
    image::DataTypeIdentifierColl types;
    std::string name;
    for (const attr::BaseAttribute* const attribute : getAttributes()) {
        const image::BaseImage* const image = attribute->getImage();
        if (result && image != nullptr) {
            result = gpu::checkLiesOn(gpu_.index, *image, attribute->getName());
            types.add(image::ImageBufferTypeIdentifier{image->getType()});
            name = getName(image->getType());
        }
    }
    if (!result) {
        return result;
    }
    const CudaFunctionIdentifier* const kernel = getFunctionSelector().select(types);
    if (kernel == nullptr) {
        return ProcessingResult::failure(core::formatMessage(gpu::eGpuMessage::eGM_NoKernel, getObjectName(), name));
    }
    result = preProcess();
    if (result) {
        result = (this->*kernel->function)();
    }
    if (result) {
        result = postProcess();
    }
    context.advance();
    return result;
}

} // namespace orlix::imaproc
