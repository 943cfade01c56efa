#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass LocateVoxels3dLvl2::processorClass = declare<LocateVoxels3dLvl2>("LocateVoxels3dLvl2", 38);

LocateVoxels3dLvl2::LocateVoxels3dLvl2() = default;
LocateVoxels3dLvl2::~LocateVoxels3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
