#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one strip of rows.
class HistogramMsrLvl3 final : public HistogramStrip<HistogramMsrLvl3, InOutHistogram, InYStrip2d>
{
public:
    HistogramMsrLvl3();
    ~HistogramMsrLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
