// The members of StatsGpu; for the source files of the GPU level.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.hpp>

#include <framework/gpu/CudaSplits.hpp>
#include <framework/gpu/Gpu.hpp>

namespace orlix::imaproc::glbmsr
{

/// How a level 2 runs GpuLevel on the plan that it has as SubImage.
template <class GpuLevel, class SubImage>
GpuVariant makeGpuVariant()
{
    return {&gpu::isGpuSupportActivated, [](ePriority priority, BaseProcessor& level2) -> Ptr<ActionProvider> {
                return makeStaticDispatcher<GpuLevel>(
                    priority, level2.getDispatchPolicy(), 1, 0, 1,
                    CudaSubImageSplit<GpuLevel, InSubGpuImg>{level2.getStorage<SubImage>()},
                    StaticNoSplit<GpuLevel, OutStatsResult>{level2.getStorage<OutStatsResult>()});
            }};
}

template <class Self>
void StatsGpu<Self>::functionRegistration(CudaFunctionSelector& selector)
{
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        selector.registerFunction({{image::ImageBufferTypeIdentifier{image::imageBufferTypeOf<T>}},
                                   static_cast<CudaFunction>(&Self::template genericKernelLauncher<T>)});
    });
}

template <class Self>
core::ProcessingResult StatsGpu<Self>::preProcess()
{
    const gpu::GpuDescription& gpu = this->getGpu();
    const image::ImageGeometry& size = this->template value<InSubGpuImg>().getGeometry();
    info_ = {gpu.getNbMultiProcessors(),
             gpu.getMaxThreadsPerMultiProcessor(),
             gpu.getMaxThreadsPerBlock(),
             gpu.getBlockSize2d(),
             0,
             size.x,
             size.y,
             size.z,
             size.c,
             size.t};
    stats_ = {.nbPixels = size.nbPixels()};
    return {};
}

template <class Self>
template <class T>
core::ProcessingResult StatsGpu<Self>::genericKernelLauncher()
{
    if (stats_.nbPixels == 0) {
        return {};
    }
    const CudaResult result =
        Self::template launchKernel<T>(&info_, this->extractBufferDataCollToGpu().front(), &stats_);
    return result.success ? core::ProcessingResult{} : core::ProcessingResult::failure(result.message);
}

template <class Self>
core::ProcessingResult StatsGpu<Self>::postProcess()
{
    setResult(stats_, this->template value<OutStatsResult>());
    return {};
}

} // namespace orlix::imaproc::glbmsr
