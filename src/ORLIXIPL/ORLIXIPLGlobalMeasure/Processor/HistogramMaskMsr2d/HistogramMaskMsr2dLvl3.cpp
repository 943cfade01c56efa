#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass HistogramMaskMsr2dLvl3::processorClass =
    declareAlgorithm<HistogramMaskMsr2dLvl3>("HistogramMaskMsr2dLvl3", 14);

HistogramMaskMsr2dLvl3::HistogramMaskMsr2dLvl3() = default;
HistogramMaskMsr2dLvl3::~HistogramMaskMsr2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
