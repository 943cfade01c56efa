#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass AreaPercent2dMsrLvl1::processorClass = declare<AreaPercent2dMsrLvl1>("AreaPercent2dMsrLvl1", 0);

AreaPercent2dMsrLvl1::AreaPercent2dMsrLvl1() = default;
AreaPercent2dMsrLvl1::~AreaPercent2dMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
