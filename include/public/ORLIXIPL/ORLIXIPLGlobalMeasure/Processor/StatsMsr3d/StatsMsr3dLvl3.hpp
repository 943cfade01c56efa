#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one strip of planes.
class ORLIX_API StatsMsr3dLvl3 final : public StatsStrip<StatsMsr3dLvl3, InZStrip3d>
{
public:
    StatsMsr3dLvl3();
    ~StatsMsr3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
