#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsr2dLvl2::processorClass = declare<StatsMsr2dLvl2>("StatsMsr2dLvl2", 80);

StatsMsr2dLvl2::StatsMsr2dLvl2() = default;
StatsMsr2dLvl2::~StatsMsr2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
