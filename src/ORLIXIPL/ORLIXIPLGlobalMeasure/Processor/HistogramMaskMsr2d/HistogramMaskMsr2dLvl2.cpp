#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMaskMsr2dLvl2::processorClass = declare<HistogramMaskMsr2dLvl2>("HistogramMaskMsr2dLvl2", 13);

HistogramMaskMsr2dLvl2::HistogramMaskMsr2dLvl2() = default;
HistogramMaskMsr2dLvl2::~HistogramMaskMsr2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
