#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsDevice.cuh>

namespace orlix::imaproc::glbmsr
{

ORLIX_STATS_KERNEL(StatsMsr);
ORLIX_STATS_KERNEL(StatsMsr2d);
ORLIX_STATS_KERNEL(StatsMsr3d);

} // namespace orlix::imaproc::glbmsr
