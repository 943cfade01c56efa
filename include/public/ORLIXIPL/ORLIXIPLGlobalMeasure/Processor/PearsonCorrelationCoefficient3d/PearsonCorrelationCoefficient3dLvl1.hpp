#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of every pair of volumes of two images.
class ORLIX_API PearsonCorrelationCoefficient3dLvl1 final
    : public PlanIndexedLvl1<PearsonCorrelationCoefficient3dLvl1, PearsonCorrelationCoefficient3dLvl2,
                             Pass<OutPIPearsonCCResult, OutPearsonCCResult>, Pass<InImg3d1, InSubImg3d1>,
                             Pass<InImg3d2, InSubImg3d2>>
{
public:
    PearsonCorrelationCoefficient3dLvl1();
    ~PearsonCorrelationCoefficient3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
