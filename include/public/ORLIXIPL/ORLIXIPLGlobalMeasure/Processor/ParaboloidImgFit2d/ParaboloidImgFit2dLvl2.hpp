#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The fit to one 2d plan: the sums of its strips, and the solution of the normal equations.
class ORLIX_API ParaboloidImgFit2dLvl2 final
    : public StripsLvl2<ParaboloidImgFit2dLvl2, ParaboloidImgFit2dLvl3, Pass<OutParaboloidParams3d, OutMatrixSums>,
                        MergeItself, Pass<InSubImg2d, InYStrip2d>, Pass<InOptMaskSubImg2d, InOptMaskYStrip2d>>
{
public:
    ParaboloidImgFit2dLvl2();
    ~ParaboloidImgFit2dLvl2() override;

    static ProcessorClass processorClass;

protected:
    core::ProcessingResult postProcess() override;
};

} // namespace orlix::imaproc::glbmsr
