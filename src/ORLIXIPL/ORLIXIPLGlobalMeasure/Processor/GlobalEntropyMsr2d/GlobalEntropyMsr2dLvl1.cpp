#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass GlobalEntropyMsr2dLvl1::processorClass = declare<GlobalEntropyMsr2dLvl1>("GlobalEntropyMsr2dLvl1", 10);

GlobalEntropyMsr2dLvl1::GlobalEntropyMsr2dLvl1() = default;
GlobalEntropyMsr2dLvl1::~GlobalEntropyMsr2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
