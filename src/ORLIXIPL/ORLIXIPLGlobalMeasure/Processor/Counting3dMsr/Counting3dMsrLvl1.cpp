#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass Counting3dMsrLvl1::processorClass = declare<Counting3dMsrLvl1>("Counting3dMsrLvl1", 5);

Counting3dMsrLvl1::Counting3dMsrLvl1() = default;
Counting3dMsrLvl1::~Counting3dMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
