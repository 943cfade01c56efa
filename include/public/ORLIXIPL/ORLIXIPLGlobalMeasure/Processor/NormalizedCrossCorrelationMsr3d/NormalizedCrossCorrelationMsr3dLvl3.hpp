#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsrLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The normalized cross correlation of a pair of strips of planes.
class ORLIX_API NormalizedCrossCorrelationMsr3dLvl3 final
    : public NCCStrip<NormalizedCrossCorrelationMsr3dLvl3, InZStrip3d1, InZStrip3d2>
{
public:
    NormalizedCrossCorrelationMsr3dLvl3();
    ~NormalizedCrossCorrelationMsr3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
