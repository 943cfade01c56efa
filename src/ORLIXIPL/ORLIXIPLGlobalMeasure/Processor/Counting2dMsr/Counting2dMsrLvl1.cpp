#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass Counting2dMsrLvl1::processorClass = declare<Counting2dMsrLvl1>("Counting2dMsrLvl1", 3);

Counting2dMsrLvl1::Counting2dMsrLvl1() = default;
Counting2dMsrLvl1::~Counting2dMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
