#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass HistogramMaskMsr3dLvl3::processorClass =
    declareAlgorithm<HistogramMaskMsr3dLvl3>("HistogramMaskMsr3dLvl3", 17);

HistogramMaskMsr3dLvl3::HistogramMaskMsr3dLvl3() = default;
HistogramMaskMsr3dLvl3::~HistogramMaskMsr3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
