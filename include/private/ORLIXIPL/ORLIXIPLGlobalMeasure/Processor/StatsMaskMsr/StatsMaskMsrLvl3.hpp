#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one strip of rows under a mask.
class StatsMaskMsrLvl3 final : public StatsStrip<StatsMaskMsrLvl3, InYStrip2d, InMaskYStrip2d>
{
public:
    StatsMaskMsrLvl3();
    ~StatsMaskMsrLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
