#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The normalized cross correlation of every pair of volumes of two images.
class ORLIX_API NormalizedCrossCorrelationMsr3dLvl1 final
    : public PlanIndexedLvl1<NormalizedCrossCorrelationMsr3dLvl1, NormalizedCrossCorrelationMsr3dLvl2,
                             Pass<OutPINCCResult, OutNCCResult>, Pass<InImg3d1, InSubImg3d1>,
                             Pass<InImg3d2, InSubImg3d2>>
{
public:
    NormalizedCrossCorrelationMsr3dLvl1();
    ~NormalizedCrossCorrelationMsr3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
