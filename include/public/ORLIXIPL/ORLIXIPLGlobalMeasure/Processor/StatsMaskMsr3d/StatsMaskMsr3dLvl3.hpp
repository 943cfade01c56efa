#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one strip of planes under a mask.
class ORLIX_API StatsMaskMsr3dLvl3 final : public StatsStrip<StatsMaskMsr3dLvl3, InZStrip3d, InMaskZStrip3d>
{
public:
    StatsMaskMsr3dLvl3();
    ~StatsMaskMsr3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
