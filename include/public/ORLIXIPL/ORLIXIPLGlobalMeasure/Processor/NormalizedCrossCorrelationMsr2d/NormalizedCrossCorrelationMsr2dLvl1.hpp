#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The normalized cross correlation of every pair of plans of two images.
class ORLIX_API NormalizedCrossCorrelationMsr2dLvl1 final
    : public PlanIndexedLvl1<NormalizedCrossCorrelationMsr2dLvl1, NormalizedCrossCorrelationMsr2dLvl2,
                             Pass<OutPINCCResult, OutNCCResult>, Pass<InImg1, InSubImg2d1>, Pass<InImg2, InSubImg2d2>>
{
public:
    NormalizedCrossCorrelationMsr2dLvl1();
    ~NormalizedCrossCorrelationMsr2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
