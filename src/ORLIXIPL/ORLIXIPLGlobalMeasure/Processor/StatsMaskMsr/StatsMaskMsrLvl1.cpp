#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMaskMsrLvl1::processorClass = declare<StatsMaskMsrLvl1>("StatsMaskMsrLvl1", 75);

StatsMaskMsrLvl1::StatsMaskMsrLvl1() = default;
StatsMaskMsrLvl1::~StatsMaskMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
