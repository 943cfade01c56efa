#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMaskMsr2dLvl2::processorClass = declare<StatsMaskMsr2dLvl2>("StatsMaskMsr2dLvl2", 70);

StatsMaskMsr2dLvl2::StatsMaskMsr2dLvl2() = default;
StatsMaskMsr2dLvl2::~StatsMaskMsr2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
