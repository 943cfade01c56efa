#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMsr2dLvl2::processorClass = declare<HistogramMsr2dLvl2>("HistogramMsr2dLvl2", 22);

HistogramMsr2dLvl2::HistogramMsr2dLvl2() = default;
HistogramMsr2dLvl2::~HistogramMsr2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
