#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass HistogramMsr2dLvl3::processorClass = declareAlgorithm<HistogramMsr2dLvl3>("HistogramMsr2dLvl3", 23);

HistogramMsr2dLvl3::HistogramMsr2dLvl3() = default;
HistogramMsr2dLvl3::~HistogramMsr2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
