#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass LocateVoxels3dLvl3::processorClass = declareAlgorithm<LocateVoxels3dLvl3>("LocateVoxels3dLvl3", 39);

LocateVoxels3dLvl3::LocateVoxels3dLvl3() = default;
LocateVoxels3dLvl3::~LocateVoxels3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
