#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one 2d plan under a mask, in the classes that it is given.
class HistogramMaskMsrLvl2 final
    : public HistogramStrips<HistogramMaskMsrLvl2, HistogramMaskMsrLvl3, InOutHistogram, Pass<InSubImg2d, InYStrip2d>,
                             Pass<InSubMaskImg2d, InMaskYStrip2d>>
{
public:
    HistogramMaskMsrLvl2();
    ~HistogramMaskMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
