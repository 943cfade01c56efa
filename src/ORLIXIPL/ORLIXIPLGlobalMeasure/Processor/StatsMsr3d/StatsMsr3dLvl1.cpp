#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsr3dLvl1::processorClass = declare<StatsMsr3dLvl1>("StatsMsr3dLvl1", 83);

StatsMsr3dLvl1::StatsMsr3dLvl1() = default;
StatsMsr3dLvl1::~StatsMsr3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
