#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMaskMsrLvl2::processorClass = declare<StatsMaskMsrLvl2>("StatsMaskMsrLvl2", 76);

StatsMaskMsrLvl2::StatsMaskMsrLvl2() = default;
StatsMaskMsrLvl2::~StatsMaskMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
