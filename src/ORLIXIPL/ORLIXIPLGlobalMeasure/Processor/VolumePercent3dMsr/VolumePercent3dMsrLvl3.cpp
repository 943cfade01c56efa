#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass VolumePercent3dMsrLvl3::processorClass =
    declareAlgorithm<VolumePercent3dMsrLvl3>("VolumePercent3dMsrLvl3", 93);

VolumePercent3dMsrLvl3::VolumePercent3dMsrLvl3() = default;
VolumePercent3dMsrLvl3::~VolumePercent3dMsrLvl3() = default;

} // namespace orlix::imaproc::glbmsr
