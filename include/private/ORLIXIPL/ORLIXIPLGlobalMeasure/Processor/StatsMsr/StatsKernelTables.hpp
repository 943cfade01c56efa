#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernels.hpp>

namespace orlix::imaproc::glbmsr
{

const KernelTables<StatsKernels>& getStatsKernels();
const KernelTables<StatsMaskKernels>& getStatsMaskKernels();

} // namespace orlix::imaproc::glbmsr
