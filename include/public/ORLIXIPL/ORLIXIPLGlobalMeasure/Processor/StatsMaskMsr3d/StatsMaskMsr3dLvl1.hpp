#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of every volume of an image under a mask.
class ORLIX_API StatsMaskMsr3dLvl1 final
    : public PlanIndexedLvl1<StatsMaskMsr3dLvl1, StatsMaskMsr3dLvl2, Pass<OutPIStatsResult, OutStatsResult>,
                             Pass<InImg3d, InSubImg3d>, Pass<InMaskImg, InSubMaskImg3d>>
{
public:
    StatsMaskMsr3dLvl1();
    ~StatsMaskMsr3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
