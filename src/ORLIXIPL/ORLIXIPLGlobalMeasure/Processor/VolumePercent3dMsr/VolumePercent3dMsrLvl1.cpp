#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass VolumePercent3dMsrLvl1::processorClass = declare<VolumePercent3dMsrLvl1>("VolumePercent3dMsrLvl1", 91);

VolumePercent3dMsrLvl1::VolumePercent3dMsrLvl1() = default;
VolumePercent3dMsrLvl1::~VolumePercent3dMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
