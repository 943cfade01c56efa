#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of every pair of plans of two images.
class ORLIX_API PearsonCorrelationCoefficient2dLvl1 final
    : public PlanIndexedLvl1<PearsonCorrelationCoefficient2dLvl1, PearsonCorrelationCoefficient2dLvl2,
                             Pass<OutPIPearsonCCResult, OutPearsonCCResult>, Pass<InImg1, InSubImg2d1>,
                             Pass<InImg2, InSubImg2d2>>
{
public:
    PearsonCorrelationCoefficient2dLvl1();
    ~PearsonCorrelationCoefficient2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
