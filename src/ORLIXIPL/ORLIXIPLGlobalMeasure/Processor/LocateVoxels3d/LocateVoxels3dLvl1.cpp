#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass LocateVoxels3dLvl1::processorClass = declare<LocateVoxels3dLvl1>("LocateVoxels3dLvl1", 37);

LocateVoxels3dLvl1::LocateVoxels3dLvl1() = default;
LocateVoxels3dLvl1::~LocateVoxels3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
