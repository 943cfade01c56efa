#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of one pair of plans.
class ORLIX_API PearsonCorrelationCoefficient2dLvl2 final
    : public PearsonCCSubImages<PearsonCorrelationCoefficient2dLvl2, PearsonCorrelationCoefficient2dLvl3,
                                StatsMsr2dLvl2, InSubImg2d, Pass<InSubImg2d1, InYStrip2d1>,
                                Pass<InSubImg2d2, InYStrip2d2>>
{
public:
    PearsonCorrelationCoefficient2dLvl2();
    ~PearsonCorrelationCoefficient2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
