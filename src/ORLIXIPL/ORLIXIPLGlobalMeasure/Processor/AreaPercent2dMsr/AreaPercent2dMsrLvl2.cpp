#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass AreaPercent2dMsrLvl2::processorClass = declare<AreaPercent2dMsrLvl2>("AreaPercent2dMsrLvl2", 1);

AreaPercent2dMsrLvl2::AreaPercent2dMsrLvl2() = default;
AreaPercent2dMsrLvl2::~AreaPercent2dMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
