#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMsr2dLvl1::processorClass = declare<HistogramMsr2dLvl1>("HistogramMsr2dLvl1", 21);

HistogramMsr2dLvl1::HistogramMsr2dLvl1() = default;
HistogramMsr2dLvl1::~HistogramMsr2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
