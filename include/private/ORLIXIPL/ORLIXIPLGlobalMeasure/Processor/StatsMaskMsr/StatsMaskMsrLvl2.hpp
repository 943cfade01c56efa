#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one 2d plan under a mask.
class StatsMaskMsrLvl2 final : public StripsLvl2<StatsMaskMsrLvl2, StatsMaskMsrLvl3, Pass<OutStatsResult>, StatsMerge,
                                                 Pass<InSubImg2d, InYStrip2d>, Pass<InSubMaskImg2d, InMaskYStrip2d>>
{
public:
    StatsMaskMsrLvl2();
    ~StatsMaskMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
