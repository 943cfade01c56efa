#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMaskMsr3dLvl2::processorClass = declare<StatsMaskMsr3dLvl2>("StatsMaskMsr3dLvl2", 73);

StatsMaskMsr3dLvl2::StatsMaskMsr3dLvl2() = default;
StatsMaskMsr3dLvl2::~StatsMaskMsr3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
