#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsrLvl1.hpp>

namespace orlix::imaproc::glbmsr
{

class HistogramMaskMsrLvl2;

/// One histogram for all plans of an image under a mask.
class ORLIX_API HistogramMaskMsrLvl1 final
    : public Histogram<HistogramPlans<HistogramMaskMsrLvl1, HistogramMaskMsrLvl2, Pass<InImg, InSubImg2d>,
                                      Pass<InMaskImg, InSubMaskImg2d>>,
                       StatsMaskMsrLvl1, InImg, InMaskImg>
{
public:
    HistogramMaskMsrLvl1();
    ~HistogramMaskMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
