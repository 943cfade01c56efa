#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The shares of the values in one slab of planes.
class ORLIX_API VolumePercent3dMsrLvl3 final
    : public PercentStrip<VolumePercent3dMsrLvl3, InBinLabZStrip3d, InOptMaskZStrip3d>
{
public:
    VolumePercent3dMsrLvl3();
    ~VolumePercent3dMsrLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
