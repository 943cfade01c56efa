#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass NormalizedCrossCorrelationMsr2dLvl2::processorClass =
    declare<NormalizedCrossCorrelationMsr2dLvl2>("NormalizedCrossCorrelationMsr2dLvl2", 42);

NormalizedCrossCorrelationMsr2dLvl2::NormalizedCrossCorrelationMsr2dLvl2() = default;
NormalizedCrossCorrelationMsr2dLvl2::~NormalizedCrossCorrelationMsr2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
