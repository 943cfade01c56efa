#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass StatsMsrLvl2::processorClass = declare<StatsMsrLvl2>("StatsMsrLvl2", 88);

constinit GpuVariant StatsMsrLvl2::gpuVariant; // before the GPU level fills it in

StatsMsrLvl2::StatsMsrLvl2() = default;
StatsMsrLvl2::~StatsMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
