#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMsrLvl1::processorClass = declare<HistogramMsrLvl1>("HistogramMsrLvl1", 27);

HistogramMsrLvl1::HistogramMsrLvl1() = default;
HistogramMsrLvl1::~HistogramMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
