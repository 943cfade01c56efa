#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.hpp>

namespace orlix::imaproc::glbmsr
{

/// Runs the device kernel of the measure for pixels of type T; defined beside it.
template <class T>
CudaResult StatsMsr3d_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats);

/// The statistics of one volume on a GPU.
class StatsMsr3dGpuLvl3 final : public StatsGpu<StatsMsr3dGpuLvl3>
{
public:
    StatsMsr3dGpuLvl3();
    ~StatsMsr3dGpuLvl3() override;

    template <class T>
    static constexpr auto launchKernel = &StatsMsr3d_knlLauncher<T>;

    static CudaAlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
