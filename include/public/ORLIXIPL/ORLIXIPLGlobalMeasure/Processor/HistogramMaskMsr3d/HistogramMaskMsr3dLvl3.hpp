#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one strip of planes under a mask.
class ORLIX_API HistogramMaskMsr3dLvl3 final
    : public HistogramStrip<HistogramMaskMsr3dLvl3, OutHistogram, InZStrip3d, InMaskZStrip3d>
{
public:
    HistogramMaskMsr3dLvl3();
    ~HistogramMaskMsr3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
