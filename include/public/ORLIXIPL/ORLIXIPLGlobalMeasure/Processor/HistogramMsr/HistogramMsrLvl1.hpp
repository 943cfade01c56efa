#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl1.hpp>

namespace orlix::imaproc::glbmsr
{

class HistogramMsrLvl2;

/// One histogram for all plans of an image.
class ORLIX_API HistogramMsrLvl1 final
    : public Histogram<HistogramPlans<HistogramMsrLvl1, HistogramMsrLvl2, Pass<InImg, InSubImg2d>>, StatsMsrLvl1, InImg>
{
public:
    HistogramMsrLvl1();
    ~HistogramMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
