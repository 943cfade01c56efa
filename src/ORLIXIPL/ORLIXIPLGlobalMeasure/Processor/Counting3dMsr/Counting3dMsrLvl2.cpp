#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass Counting3dMsrLvl2::processorClass = declare<Counting3dMsrLvl2>("Counting3dMsrLvl2", 6);

Counting3dMsrLvl2::Counting3dMsrLvl2() = default;
Counting3dMsrLvl2::~Counting3dMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
