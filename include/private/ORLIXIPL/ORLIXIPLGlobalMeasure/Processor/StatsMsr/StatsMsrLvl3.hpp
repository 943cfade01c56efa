#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one strip of rows.
class StatsMsrLvl3 final : public StatsStrip<StatsMsrLvl3, InYStrip2d>
{
public:
    StatsMsrLvl3();
    ~StatsMsrLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
