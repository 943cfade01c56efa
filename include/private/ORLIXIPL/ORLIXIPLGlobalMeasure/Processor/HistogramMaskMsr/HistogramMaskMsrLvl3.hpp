#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one strip of rows under a mask.
class HistogramMaskMsrLvl3 final
    : public HistogramStrip<HistogramMaskMsrLvl3, InOutHistogram, InYStrip2d, InMaskYStrip2d>
{
public:
    HistogramMaskMsrLvl3();
    ~HistogramMaskMsrLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
