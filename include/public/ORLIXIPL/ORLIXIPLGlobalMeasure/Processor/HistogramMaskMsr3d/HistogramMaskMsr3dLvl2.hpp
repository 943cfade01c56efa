#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one volume under a mask.
class ORLIX_API HistogramMaskMsr3dLvl2 final
    : public Histogram<
          HistogramStrips<HistogramMaskMsr3dLvl2, HistogramMaskMsr3dLvl3, OutHistogram, Pass<InSubImg3d, InZStrip3d>,
                          Pass<InSubMaskImg3d, InMaskZStrip3d>, Keep<InOptHistoMsrParams>>,
          StatsMaskMsr3dLvl2, InSubImg3d, InSubMaskImg3d>
{
public:
    HistogramMaskMsr3dLvl2();
    ~HistogramMaskMsr3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
