#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The percentages of the values in one 2d plan.
class ORLIX_API AreaPercent2dMsrLvl2 final
    : public PercentSubImage<AreaPercent2dMsrLvl2, AreaPercent2dMsrLvl3, Pass<InSubBinLabImg2d, InBinLabYStrip2d1>,
                             Pass<InOptMaskSubImg2d, InOptMaskYStrip2d>>
{
public:
    AreaPercent2dMsrLvl2();
    ~AreaPercent2dMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
