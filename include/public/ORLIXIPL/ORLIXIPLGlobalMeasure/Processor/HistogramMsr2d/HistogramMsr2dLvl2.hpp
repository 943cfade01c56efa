#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one 2d plan.
class ORLIX_API HistogramMsr2dLvl2 final
    : public Histogram<HistogramStrips<HistogramMsr2dLvl2, HistogramMsr2dLvl3, OutHistogram,
                                       Pass<InSubImg2d, InYStrip2d>, Keep<InOptHistoMsrParams>>,
                       StatsMsr2dLvl2, InSubImg2d>
{
public:
    HistogramMsr2dLvl2();
    ~HistogramMsr2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
