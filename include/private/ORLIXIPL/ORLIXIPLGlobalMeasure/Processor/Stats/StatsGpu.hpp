#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/CudaStats.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/Stats.hpp>

#include <framework/gpu/BaseGpuProcessingAlgorithm.hpp>
#include <framework/gpu/GpuAttributes.hpp>

/// What the statistics on a GPU share: one processor computes a whole plan or volume.
namespace orlix::imaproc::glbmsr
{

using attr::InSubGpuImg;

/// What the accumulated figures say.
inline void setResult(const CudaStatsInfo& stats, StatsResult& result)
{
    Stats::finish({stats.nbPixels, stats.sum, stats.sumSq, stats.min, stats.max}, result);
}

/// Launches the device kernels of a measure for pixels of type T; the .cu file defines those of the three measures.
template <class T>
using StatsLauncher = CudaResult (*)(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);

template <class T>
CudaResult StatsMsr_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);
template <class T>
CudaResult StatsMsr2d_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);
template <class T>
CudaResult StatsMsr3d_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);

/// One plan or volume; the measures differ in their launchers.
class StatsGpu : public BaseGpuProcessingAlgorithm
{
protected:
    template <class T>
    core::ProcessingResult launch(StatsLauncher<T> launcher);
    core::ProcessingResult preProcess() override;
    core::ProcessingResult postProcess() override;

private:
    LauncherInfo info_;
    CudaStatsInfo stats_;
};

/// The statistics of one plan of an image on a GPU.
class StatsMsrGpuLvl3 final : public Processor<StatsMsrGpuLvl3, StatsGpu, InSubGpuImg, OutStatsResult>
{
public:
    static CudaAlgorithmClass processorClass;

    template <class T>
    core::ProcessingResult genericKernelLauncher();
};

/// The statistics of one 2d plan on a GPU.
class StatsMsr2dGpuLvl3 final : public Processor<StatsMsr2dGpuLvl3, StatsGpu, InSubGpuImg, OutStatsResult>
{
public:
    static CudaAlgorithmClass processorClass;

    template <class T>
    core::ProcessingResult genericKernelLauncher();
};

/// The statistics of one volume on a GPU.
class StatsMsr3dGpuLvl3 final : public Processor<StatsMsr3dGpuLvl3, StatsGpu, InSubGpuImg, OutStatsResult>
{
public:
    static CudaAlgorithmClass processorClass;

    template <class T>
    core::ProcessingResult genericKernelLauncher();
};

} // namespace orlix::imaproc::glbmsr
