#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMaskMsr3dLvl2::processorClass = declare<HistogramMaskMsr3dLvl2>("HistogramMaskMsr3dLvl2", 16);

HistogramMaskMsr3dLvl2::HistogramMaskMsr3dLvl2() = default;
HistogramMaskMsr3dLvl2::~HistogramMaskMsr3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
