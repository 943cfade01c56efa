#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one 2d plan.
class StatsMsrLvl2 final
    : public StripsLvl2<StatsMsrLvl2, StatsMsrLvl3, Pass<OutStatsResult>, StatsMerge, Pass<InSubImg2d, InYStrip2d>>
{
public:
    StatsMsrLvl2();
    ~StatsMsrLvl2() override;

    static ProcessorClass processorClass;
    static GpuVariant gpuVariant;
};

} // namespace orlix::imaproc::glbmsr
