#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/CudaStats.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

#include <framework/gpu/BaseGpuProcessingAlgorithm.hpp>
#include <framework/gpu/GpuAttributes.hpp>

#include <cmath>

/// What the statistics on a GPU share: one processor computes a whole plan or volume.
namespace orlix::imaproc::glbmsr
{

using attr::InSubGpuImg;

/// What the accumulated figures say.
inline void setResult(const CudaStatsInfo& stats, StatsResult& result)
{
    result.NbPixels = stats.nbPixels;
    result.Sum = stats.sum;
    result.Min = stats.min;
    result.Max = stats.max;
    const auto n = static_cast<double>(stats.nbPixels);
    result.Mean = stats.sum / n;
    // On purpose: no clamp, as on the CPU.
    result.StdDev = std::sqrt(stats.sumSq / n - result.Mean * result.Mean);
}

/// Self has `launchKernel<T>`, the launcher of its device kernels.
template <class Self>
class StatsGpu : public Processor<Self, BaseGpuProcessingAlgorithm, InSubGpuImg, OutStatsResult>
{
public:
    static void functionRegistration(CudaFunctionSelector& selector);
    const CudaFunctionSelector& getFunctionSelector() const final { return Self::processorClass.getFunctionSelector(); }

    template <class T>
    core::ProcessingResult genericKernelLauncher();

protected:
    core::ProcessingResult preProcess() override;
    core::ProcessingResult postProcess() override;

private:
    LauncherInfo info_;
    CudaStatsInfo stats_;
};

} // namespace orlix::imaproc::glbmsr
