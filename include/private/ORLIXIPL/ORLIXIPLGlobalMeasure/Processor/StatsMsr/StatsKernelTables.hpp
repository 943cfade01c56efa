#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernels.hpp>

namespace orlix::imaproc::glbmsr
{

const KernelTables<StatsKernel>& getStatsKernels();
const KernelTables<StatsMaskKernel>& getStatsMaskKernels();

} // namespace orlix::imaproc::glbmsr
