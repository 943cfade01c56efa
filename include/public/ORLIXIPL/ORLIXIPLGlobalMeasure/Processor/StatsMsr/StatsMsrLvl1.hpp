#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

class StatsMsrLvl2;

/// The statistics of a whole image: all its plans merged into one result.
class ORLIX_API StatsMsrLvl1 final
    : public MergedLvl1<StatsMsrLvl1, StatsMsrLvl2, Pass<OutStatsResult>, StatsMerge, Pass<InImg, InSubImg2d>>
{
public:
    StatsMsrLvl1();
    ~StatsMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
