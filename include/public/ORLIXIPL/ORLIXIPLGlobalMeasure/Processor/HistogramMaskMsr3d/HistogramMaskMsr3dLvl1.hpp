#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of every volume of an image under a mask.
class ORLIX_API HistogramMaskMsr3dLvl1 final
    : public HistogramPerPlan<HistogramMaskMsr3dLvl1, HistogramMaskMsr3dLvl2, Pass<InImg3d, InSubImg3d>,
                              Pass<InMaskImg, InSubMaskImg3d>>
{
public:
    HistogramMaskMsr3dLvl1();
    ~HistogramMaskMsr3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
