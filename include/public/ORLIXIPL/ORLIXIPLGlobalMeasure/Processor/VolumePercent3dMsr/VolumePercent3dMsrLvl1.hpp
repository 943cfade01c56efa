#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The percentages of the values in every volume of an image.
class ORLIX_API VolumePercent3dMsrLvl1 final
    : public PlanIndexedLvl1<VolumePercent3dMsrLvl1, VolumePercent3dMsrLvl2, Pass<OutPIValues, OutValues>,
                             Pass<InBinLabImg3d, InSubBinLabImg3d>, Pass<InOptMaskImg, InOptMaskSubImg3d>>
{
public:
    VolumePercent3dMsrLvl1();
    ~VolumePercent3dMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
