#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one 2d plan, in the classes that it is given.
class HistogramMsrLvl2 final
    : public HistogramStrips<HistogramMsrLvl2, HistogramMsrLvl3, InOutHistogram, Pass<InSubImg2d, InYStrip2d>>
{
public:
    HistogramMsrLvl2();
    ~HistogramMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
