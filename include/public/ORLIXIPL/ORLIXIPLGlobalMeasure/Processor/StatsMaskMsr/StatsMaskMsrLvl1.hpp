#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

class StatsMaskMsrLvl2;

/// The statistics of a whole image under a mask: all its plans merged into one result.
class ORLIX_API StatsMaskMsrLvl1 final
    : public MergedLvl1<StatsMaskMsrLvl1, StatsMaskMsrLvl2, Pass<OutStatsResult>, StatsMerge, Pass<InImg, InSubImg2d>,
                        Pass<InMaskImg, InSubMaskImg2d>>
{
public:
    StatsMaskMsrLvl1();
    ~StatsMaskMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
