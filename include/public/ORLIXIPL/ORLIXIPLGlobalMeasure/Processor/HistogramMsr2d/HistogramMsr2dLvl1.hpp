#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of every 2d plan of an image.
class ORLIX_API HistogramMsr2dLvl1 final
    : public HistogramPerPlan<HistogramMsr2dLvl1, HistogramMsr2dLvl2, Pass<InImg, InSubImg2d>>
{
public:
    HistogramMsr2dLvl1();
    ~HistogramMsr2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
