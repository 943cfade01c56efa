#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one strip of rows under a mask.
class ORLIX_API HistogramMaskMsr2dLvl3 final
    : public HistogramStrip<HistogramMaskMsr2dLvl3, OutHistogram, InYStrip2d, InMaskYStrip2d>
{
public:
    HistogramMaskMsr2dLvl3();
    ~HistogramMaskMsr2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
