#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one 2d plan under a mask.
class ORLIX_API StatsMaskMsr2dLvl2 final
    : public StripsLvl2<StatsMaskMsr2dLvl2, StatsMaskMsr2dLvl3, Pass<OutStatsResult>, StatsMerge,
                        Pass<InSubImg2d, InYStrip2d>, Pass<InSubMaskImg2d, InMaskYStrip2d>>
{
public:
    StatsMaskMsr2dLvl2();
    ~StatsMaskMsr2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
