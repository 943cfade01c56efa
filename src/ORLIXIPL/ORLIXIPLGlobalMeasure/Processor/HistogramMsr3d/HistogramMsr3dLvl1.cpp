#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass HistogramMsr3dLvl1::processorClass = declare<HistogramMsr3dLvl1>("HistogramMsr3dLvl1", 24);

HistogramMsr3dLvl1::HistogramMsr3dLvl1() = default;
HistogramMsr3dLvl1::~HistogramMsr3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
