#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsr2dLvl1::processorClass = declare<StatsMsr2dLvl1>("StatsMsr2dLvl1", 79);

StatsMsr2dLvl1::StatsMsr2dLvl1() = default;
StatsMsr2dLvl1::~StatsMsr2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
