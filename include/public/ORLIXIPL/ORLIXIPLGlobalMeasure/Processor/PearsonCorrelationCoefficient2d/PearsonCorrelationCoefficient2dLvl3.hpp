#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficientLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of a pair of strips of rows.
class ORLIX_API PearsonCorrelationCoefficient2dLvl3 final
    : public PearsonCCStrip<PearsonCorrelationCoefficient2dLvl3, InYStrip2d1, InYStrip2d2>
{
public:
    PearsonCorrelationCoefficient2dLvl3();
    ~PearsonCorrelationCoefficient2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
