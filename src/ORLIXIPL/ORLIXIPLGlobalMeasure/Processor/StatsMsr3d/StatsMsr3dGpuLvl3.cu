#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsDevice.cuh>

namespace orlix::imaproc::glbmsr
{

ORLIX_STATS_KERNEL(StatsMsr3d);

} // namespace orlix::imaproc::glbmsr
