#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The histogram of one strip of planes.
class ORLIX_API HistogramMsr3dLvl3 final : public HistogramStrip<HistogramMsr3dLvl3, OutHistogram, InZStrip3d>
{
public:
    HistogramMsr3dLvl3();
    ~HistogramMsr3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
