#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of every 2d plan of an image under a mask.
class ORLIX_API HistogramMaskMsr2dLvl1 final
    : public HistogramPerPlan<HistogramMaskMsr2dLvl1, HistogramMaskMsr2dLvl2, Pass<InImg, InSubImg2d>,
                              Pass<InMaskImg, InSubMaskImg2d>>
{
public:
    HistogramMaskMsr2dLvl1();
    ~HistogramMaskMsr2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
