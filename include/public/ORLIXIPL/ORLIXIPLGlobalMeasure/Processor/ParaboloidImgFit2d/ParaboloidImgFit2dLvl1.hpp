#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The fits to every 2d plan of an image.
class ORLIX_API ParaboloidImgFit2dLvl1 final
    : public PlanIndexedLvl1<ParaboloidImgFit2dLvl1, ParaboloidImgFit2dLvl2,
                             Pass<OutPIParaboloidParams3d, OutParaboloidParams3d>, Pass<InImg, InSubImg2d>,
                             Pass<InOptMaskImg, InOptMaskSubImg2d>>
{
public:
    ParaboloidImgFit2dLvl1();
    ~ParaboloidImgFit2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
