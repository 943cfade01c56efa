#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of one pair of volumes.
class ORLIX_API PearsonCorrelationCoefficient3dLvl2 final
    : public PearsonCCSubImages<PearsonCorrelationCoefficient3dLvl2, PearsonCorrelationCoefficient3dLvl3,
                                StatsMsr3dLvl2, InSubImg3d, Pass<InSubImg3d1, InZStrip3d1>,
                                Pass<InSubImg3d2, InZStrip3d2>>
{
public:
    PearsonCorrelationCoefficient3dLvl2();
    ~PearsonCorrelationCoefficient3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
