#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsrLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The normalized cross correlation of a pair of strips of rows.
class ORLIX_API NormalizedCrossCorrelationMsr2dLvl3 final
    : public NCCStrip<NormalizedCrossCorrelationMsr2dLvl3, InYStrip2d1, InYStrip2d2>
{
public:
    NormalizedCrossCorrelationMsr2dLvl3();
    ~NormalizedCrossCorrelationMsr2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
