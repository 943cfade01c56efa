#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsr3dLvl2::processorClass = declare<StatsMsr3dLvl2>("StatsMsr3dLvl2", 84);

constinit GpuVariant StatsMsr3dLvl2::gpuVariant; // before the GPU level fills it in

StatsMsr3dLvl2::StatsMsr3dLvl2() = default;
StatsMsr3dLvl2::~StatsMsr3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
