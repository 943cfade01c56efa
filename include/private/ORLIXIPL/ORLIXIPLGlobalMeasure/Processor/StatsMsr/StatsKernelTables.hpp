#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Domains.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics kernels of a domain; for AVX-512 the best that this processor's extensions allow.
const StatsKernels& getStatsKernels(core::eInstructionSet::domain domain);

} // namespace orlix::imaproc::glbmsr
