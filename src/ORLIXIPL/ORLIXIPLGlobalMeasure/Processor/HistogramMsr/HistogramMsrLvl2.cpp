#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMsrLvl2::processorClass = declare<HistogramMsrLvl2>("HistogramMsrLvl2", 28);

HistogramMsrLvl2::HistogramMsrLvl2() = default;
HistogramMsrLvl2::~HistogramMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
