#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMaskMsr2dLvl1::processorClass = declare<StatsMaskMsr2dLvl1>("StatsMaskMsr2dLvl1", 69);

StatsMaskMsr2dLvl1::StatsMaskMsr2dLvl1() = default;
StatsMaskMsr2dLvl1::~StatsMaskMsr2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
