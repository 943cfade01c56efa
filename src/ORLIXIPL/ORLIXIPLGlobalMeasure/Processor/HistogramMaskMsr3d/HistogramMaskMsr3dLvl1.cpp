#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMaskMsr3dLvl1::processorClass = declare<HistogramMaskMsr3dLvl1>("HistogramMaskMsr3dLvl1", 15);

HistogramMaskMsr3dLvl1::HistogramMaskMsr3dLvl1() = default;
HistogramMaskMsr3dLvl1::~HistogramMaskMsr3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
