#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of every volume of an image.
class ORLIX_API HistogramMsr3dLvl1 final
    : public HistogramPerPlan<HistogramMsr3dLvl1, HistogramMsr3dLvl2, Pass<InImg3d, InSubImg3d>>
{
public:
    HistogramMsr3dLvl1();
    ~HistogramMsr3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
