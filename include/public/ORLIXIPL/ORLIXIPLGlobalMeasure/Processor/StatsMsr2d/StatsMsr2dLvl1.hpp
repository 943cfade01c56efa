#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of every 2d plan of an image.
class ORLIX_API StatsMsr2dLvl1 final
    : public PlanIndexedLvl1<StatsMsr2dLvl1, StatsMsr2dLvl2, Pass<OutPIStatsResult, OutStatsResult>,
                             Pass<InImg, InSubImg2d>>
{
public:
    StatsMsr2dLvl1();
    ~StatsMsr2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
