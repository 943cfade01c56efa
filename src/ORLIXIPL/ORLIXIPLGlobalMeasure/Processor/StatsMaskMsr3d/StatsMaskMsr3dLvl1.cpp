#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMaskMsr3dLvl1::processorClass = declare<StatsMaskMsr3dLvl1>("StatsMaskMsr3dLvl1", 72);

StatsMaskMsr3dLvl1::StatsMaskMsr3dLvl1() = default;
StatsMaskMsr3dLvl1::~StatsMaskMsr3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
