#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of every 3d volume of an image.
class ORLIX_API StatsMsr3dLvl1 final
    : public PlanIndexedLvl1<StatsMsr3dLvl1, StatsMsr3dLvl2, Pass<OutPIStatsResult, OutStatsResult>,
                             Pass<InImg3d, InSubImg3d>>
{
public:
    StatsMsr3dLvl1();
    ~StatsMsr3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
