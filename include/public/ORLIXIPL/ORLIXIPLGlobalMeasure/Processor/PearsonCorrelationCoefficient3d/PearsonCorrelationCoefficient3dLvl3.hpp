#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficientLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of a pair of strips of planes.
class ORLIX_API PearsonCorrelationCoefficient3dLvl3 final
    : public PearsonCCStrip<PearsonCorrelationCoefficient3dLvl3, InZStrip3d1, InZStrip3d2>
{
public:
    PearsonCorrelationCoefficient3dLvl3();
    ~PearsonCorrelationCoefficient3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
