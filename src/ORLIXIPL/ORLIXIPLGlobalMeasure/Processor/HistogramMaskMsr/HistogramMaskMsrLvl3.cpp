#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass HistogramMaskMsrLvl3::processorClass =
    declareAlgorithm<HistogramMaskMsrLvl3>("HistogramMaskMsrLvl3", 20);

HistogramMaskMsrLvl3::HistogramMaskMsrLvl3() = default;
HistogramMaskMsrLvl3::~HistogramMaskMsrLvl3() = default;

} // namespace orlix::imaproc::glbmsr
