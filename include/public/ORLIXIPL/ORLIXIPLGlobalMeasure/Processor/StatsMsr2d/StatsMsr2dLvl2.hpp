#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one 2d plan.
class ORLIX_API StatsMsr2dLvl2 final
    : public StripsLvl2<StatsMsr2dLvl2, StatsMsr2dLvl3, Pass<OutStatsResult>, StatsMerge, Pass<InSubImg2d, InYStrip2d>>
{
public:
    StatsMsr2dLvl2();
    ~StatsMsr2dLvl2() override;

    static ProcessorClass processorClass;
    static GpuVariant gpuVariant;
};

} // namespace orlix::imaproc::glbmsr
