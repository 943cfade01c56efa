#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one 2d plan under a mask.
class ORLIX_API HistogramMaskMsr2dLvl2 final
    : public Histogram<
          HistogramStrips<HistogramMaskMsr2dLvl2, HistogramMaskMsr2dLvl3, OutHistogram, Pass<InSubImg2d, InYStrip2d>,
                          Pass<InSubMaskImg2d, InMaskYStrip2d>, Keep<InOptHistoMsrParams>>,
          StatsMaskMsr2dLvl2, InSubImg2d, InSubMaskImg2d>
{
public:
    HistogramMaskMsr2dLvl2();
    ~HistogramMaskMsr2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
