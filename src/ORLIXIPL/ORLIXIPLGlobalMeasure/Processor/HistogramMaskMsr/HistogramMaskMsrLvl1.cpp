#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMaskMsrLvl1::processorClass = declare<HistogramMaskMsrLvl1>("HistogramMaskMsrLvl1", 18);

HistogramMaskMsrLvl1::HistogramMaskMsrLvl1() = default;
HistogramMaskMsrLvl1::~HistogramMaskMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
