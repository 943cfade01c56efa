#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The shares of the values in one strip of rows.
class ORLIX_API AreaPercent2dMsrLvl3 final
    : public PercentStrip<AreaPercent2dMsrLvl3, InBinLabYStrip2d1, InOptMaskYStrip2d>
{
public:
    AreaPercent2dMsrLvl3();
    ~AreaPercent2dMsrLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
