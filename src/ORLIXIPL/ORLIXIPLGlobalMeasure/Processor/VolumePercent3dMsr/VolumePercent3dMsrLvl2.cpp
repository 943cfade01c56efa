#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass VolumePercent3dMsrLvl2::processorClass = declare<VolumePercent3dMsrLvl2>("VolumePercent3dMsrLvl2", 92);

VolumePercent3dMsrLvl2::VolumePercent3dMsrLvl2() = default;
VolumePercent3dMsrLvl2::~VolumePercent3dMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
