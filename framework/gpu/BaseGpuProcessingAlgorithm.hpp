#pragma once

#include <framework/gpu/CudaFunctionSelector.hpp>
#include <framework/gpu/CudaTypes.hpp>
#include <framework/gpu/Gpu.hpp>
#include <framework/process/BaseProcessor.hpp>

#include <vector>

namespace orlix::imaproc
{

/// A processor of one plan or volume that lies on the selected GPU.
class ORLIX_API BaseGpuProcessingAlgorithm : public BaseProcessor
{
public:
    bool isComplexAction() const final { return false; }
    eProcessorType getProcessorType() const final { return eProcessorType::ePT_Synchronous; }

    const CudaFunctionSelector& getFunctionSelector() const
    {
        return static_cast<CudaAlgorithmClass&>(getProcessorClass()).getFunctionSelector();
    }

protected:
    bool acceptsGpuImages() const final { return true; }
    /// Runs the kernel for the types of the images between preProcess() and postProcess(), with the selected GPU as the
    /// thread's current one.
    core::ProcessingResult runDerived(const RunContext& context) final;
    virtual core::ProcessingResult preProcess() { return {}; }
    virtual core::ProcessingResult postProcess() { return {}; }

    /// The GPU of the run.
    const gpu::GpuDescription& getGpu() const { return gpu_; }
    /// The device buffers of the image attributes, in their order.
    std::vector<GpuBuffer> extractBufferDataCollToGpu() const;

private:
    gpu::GpuDescription gpu_;
};

} // namespace orlix::imaproc
