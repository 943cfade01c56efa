#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass Counting2dMsrLvl2::processorClass = declare<Counting2dMsrLvl2>("Counting2dMsrLvl2", 4);

Counting2dMsrLvl2::Counting2dMsrLvl2() = default;
Counting2dMsrLvl2::~Counting2dMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
