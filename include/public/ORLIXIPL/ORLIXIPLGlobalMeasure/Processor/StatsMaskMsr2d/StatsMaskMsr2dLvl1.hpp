#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of every 2d plan of an image under a mask.
class ORLIX_API StatsMaskMsr2dLvl1 final
    : public PlanIndexedLvl1<StatsMaskMsr2dLvl1, StatsMaskMsr2dLvl2, Pass<OutPIStatsResult, OutStatsResult>,
                             Pass<InImg, InSubImg2d>, Pass<InMaskImg, InSubMaskImg2d>>
{
public:
    StatsMaskMsr2dLvl1();
    ~StatsMaskMsr2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
