#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one strip of rows.
class ORLIX_API StatsMsr2dLvl3 final : public StatsStrip<StatsMsr2dLvl3, InYStrip2d>
{
public:
    StatsMsr2dLvl3();
    ~StatsMsr2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
