#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsrLvl1::processorClass = declare<StatsMsrLvl1>("StatsMsrLvl1", 87);

StatsMsrLvl1::StatsMsrLvl1() = default;
StatsMsrLvl1::~StatsMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
