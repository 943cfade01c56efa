#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsr2dLvl2::processorClass = declare<StatsMsr2dLvl2>("StatsMsr2dLvl2", 80);

constinit GpuVariant StatsMsr2dLvl2::gpuVariant; // before the GPU level fills it in

StatsMsr2dLvl2::StatsMsr2dLvl2() = default;
StatsMsr2dLvl2::~StatsMsr2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
