#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The normalized cross correlation of one pair of plans.
class ORLIX_API NormalizedCrossCorrelationMsr2dLvl2 final
    : public NCCSubImages<NormalizedCrossCorrelationMsr2dLvl2, NormalizedCrossCorrelationMsr2dLvl3, StatsMsr2dLvl2,
                          InSubImg2d, Pass<InSubImg2d1, InYStrip2d1>, Pass<InSubImg2d2, InYStrip2d2>>
{
public:
    NormalizedCrossCorrelationMsr2dLvl2();
    ~NormalizedCrossCorrelationMsr2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
