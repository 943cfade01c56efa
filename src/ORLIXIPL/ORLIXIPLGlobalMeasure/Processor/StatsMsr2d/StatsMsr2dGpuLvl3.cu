#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsDevice.cuh>

namespace orlix::imaproc::glbmsr
{

ORLIX_STATS_KERNEL(StatsMsr2d);

} // namespace orlix::imaproc::glbmsr
