#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass HistogramMsr3dLvl3::processorClass = declareAlgorithm<HistogramMsr3dLvl3>("HistogramMsr3dLvl3", 26);

HistogramMsr3dLvl3::HistogramMsr3dLvl3() = default;
HistogramMsr3dLvl3::~HistogramMsr3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
