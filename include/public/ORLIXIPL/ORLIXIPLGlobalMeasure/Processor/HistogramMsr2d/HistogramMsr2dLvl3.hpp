#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one strip of rows.
class ORLIX_API HistogramMsr2dLvl3 final : public HistogramStrip<HistogramMsr2dLvl3, OutHistogram, InYStrip2d>
{
public:
    HistogramMsr2dLvl3();
    ~HistogramMsr2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
