#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one strip of rows under a mask.
class ORLIX_API StatsMaskMsr2dLvl3 final : public StatsStrip<StatsMaskMsr2dLvl3, InYStrip2d, InMaskYStrip2d>
{
public:
    StatsMaskMsr2dLvl3();
    ~StatsMaskMsr2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
