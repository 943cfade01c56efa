#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.hpp>

namespace orlix::imaproc::glbmsr
{

/// Runs the device kernel of the measure for pixels of type T; defined beside it.
template <class T>
CudaResult StatsMsr_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);

/// The statistics of a plan of an image on a GPU.
class StatsMsrGpuLvl3 final : public StatsGpu<StatsMsrGpuLvl3>
{
public:
    StatsMsrGpuLvl3();
    ~StatsMsrGpuLvl3() override;

    template <class T>
    static constexpr auto launchKernel = &StatsMsr_knlLauncher<T>;

    static CudaAlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
