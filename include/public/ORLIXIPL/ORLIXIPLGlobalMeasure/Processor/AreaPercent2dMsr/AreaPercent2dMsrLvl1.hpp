#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The percentages of the values in every 2d plan of an image.
class ORLIX_API AreaPercent2dMsrLvl1 final
    : public PlanIndexedLvl1<AreaPercent2dMsrLvl1, AreaPercent2dMsrLvl2, Pass<OutPIValues, OutValues>,
                             Pass<InBinLabImg, InSubBinLabImg2d>, Pass<InOptMaskImg, InOptMaskSubImg2d>>
{
public:
    AreaPercent2dMsrLvl1();
    ~AreaPercent2dMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
