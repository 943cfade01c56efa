#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMaskMsrLvl2::processorClass = declare<HistogramMaskMsrLvl2>("HistogramMaskMsrLvl2", 19);

HistogramMaskMsrLvl2::HistogramMaskMsrLvl2() = default;
HistogramMaskMsrLvl2::~HistogramMaskMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
