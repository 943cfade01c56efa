#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMsr3dLvl2::processorClass = declare<HistogramMsr3dLvl2>("HistogramMsr3dLvl2", 25);

HistogramMsr3dLvl2::HistogramMsr3dLvl2() = default;
HistogramMsr3dLvl2::~HistogramMsr3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
