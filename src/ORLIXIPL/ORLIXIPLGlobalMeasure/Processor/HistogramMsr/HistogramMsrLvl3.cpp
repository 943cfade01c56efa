#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass HistogramMsrLvl3::processorClass = declareAlgorithm<HistogramMsrLvl3>("HistogramMsrLvl3", 29);

HistogramMsrLvl3::HistogramMsrLvl3() = default;
HistogramMsrLvl3::~HistogramMsrLvl3() = default;

} // namespace orlix::imaproc::glbmsr
