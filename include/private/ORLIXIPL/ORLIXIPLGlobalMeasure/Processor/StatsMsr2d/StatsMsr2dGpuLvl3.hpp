#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.hpp>

namespace orlix::imaproc::glbmsr
{

/// Runs the device kernel of the measure for pixels of type T; defined beside it.
template <class T>
CudaResult StatsMsr2d_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);

/// The statistics of one 2d plan on a GPU.
class StatsMsr2dGpuLvl3 final : public StatsGpu<StatsMsr2dGpuLvl3>
{
public:
    StatsMsr2dGpuLvl3();
    ~StatsMsr2dGpuLvl3() override;

    template <class T>
    static constexpr auto launchKernel = &StatsMsr2d_knlLauncher<T>;

    static CudaAlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
