#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The percentages of the values in one volume.
class ORLIX_API VolumePercent3dMsrLvl2 final
    : public PercentSubImage<VolumePercent3dMsrLvl2, VolumePercent3dMsrLvl3, Pass<InSubBinLabImg3d, InBinLabZStrip3d>,
                             Pass<InOptMaskSubImg3d, InOptMaskZStrip3d>>
{
public:
    VolumePercent3dMsrLvl2();
    ~VolumePercent3dMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
