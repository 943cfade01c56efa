#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMaskMsr2dLvl1::processorClass = declare<HistogramMaskMsr2dLvl1>("HistogramMaskMsr2dLvl1", 12);

HistogramMaskMsr2dLvl1::HistogramMaskMsr2dLvl1() = default;
HistogramMaskMsr2dLvl1::~HistogramMaskMsr2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
