#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsGpu.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>

#include <framework/gpu/Gpu.hpp>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult StatsGpu::preProcess()
{
    const gpu::GpuDescription& gpu = getGpu();
    const image::ImageGeometry& size = getAttributes().front()->getImage()->getGeometry();
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

template <class T>
core::ProcessingResult StatsGpu::launch(StatsLauncher<T> launcher)
{
    if (stats_.nbPixels == 0) {
        return {};
    }
    const CudaResult result = launcher(&info_, extractBufferDataCollToGpu().front(), &stats_);
    return result.success ? core::ProcessingResult{} : core::ProcessingResult::failure(result.message);
}

core::ProcessingResult StatsGpu::postProcess()
{
    setResult(stats_, output<StatsResult>());
    return {};
}

template <class T>
core::ProcessingResult StatsMsrGpuLvl3::genericKernelLauncher()
{
    return launch<T>(&StatsMsr_knlLauncher<T>);
}
template <class T>
core::ProcessingResult StatsMsr2dGpuLvl3::genericKernelLauncher()
{
    return launch<T>(&StatsMsr2d_knlLauncher<T>);
}
template <class T>
core::ProcessingResult StatsMsr3dGpuLvl3::genericKernelLauncher()
{
    return launch<T>(&StatsMsr3d_knlLauncher<T>);
}

namespace
{

template <class Self>
CudaAlgorithmClass defineGpuAlgorithm(unsigned toolTip)
{
    return {typeid(Self), getOrigin(toolTip, __builtin_FILE()), Self::creators(), [](CudaFunctionSelector& selector) {
                image::forEachPixelType([&]<class T>(std::type_identity<T>) {
                    selector.registerFunction({{image::ImageBufferTypeIdentifier{image::imageBufferTypeOf<T>}},
                                               static_cast<CudaFunction>(&Self::template genericKernelLauncher<T>)});
                });
            }};
}

} // namespace

CudaAlgorithmClass StatsMsrGpuLvl3::processorClass = defineGpuAlgorithm<StatsMsrGpuLvl3>(86);
CudaAlgorithmClass StatsMsr2dGpuLvl3::processorClass = defineGpuAlgorithm<StatsMsr2dGpuLvl3>(78);
CudaAlgorithmClass StatsMsr3dGpuLvl3::processorClass = defineGpuAlgorithm<StatsMsr3dGpuLvl3>(82);

namespace
{

const bool areOffered = [] {
    StatsMsrLvl2::gpuVariant = {&gpu::isGpuSupportActivated, childOf<StatsMsrLvl2, StatsMsrGpuLvl3>()};
    StatsMsr2dLvl2::gpuVariant = {&gpu::isGpuSupportActivated, childOf<StatsMsr2dLvl2, StatsMsr2dGpuLvl3>()};
    StatsMsr3dLvl2::gpuVariant = {&gpu::isGpuSupportActivated, childOf<StatsMsr3dLvl2, StatsMsr3dGpuLvl3>()};
    return true;
}();

} // namespace

} // namespace orlix::imaproc::glbmsr
