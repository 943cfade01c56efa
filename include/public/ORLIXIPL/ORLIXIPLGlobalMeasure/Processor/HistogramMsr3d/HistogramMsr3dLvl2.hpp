#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one volume.
class ORLIX_API HistogramMsr3dLvl2 final
    : public Histogram<HistogramStrips<HistogramMsr3dLvl2, HistogramMsr3dLvl3, OutHistogram,
                                       Pass<InSubImg3d, InZStrip3d>, Keep<InOptHistoMsrParams>>,
                       StatsMsr3dLvl2, InSubImg3d>
{
public:
    HistogramMsr3dLvl2();
    ~HistogramMsr3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
