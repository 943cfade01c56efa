#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass NormalizedCrossCorrelationMsr2dLvl1::processorClass =
    declare<NormalizedCrossCorrelationMsr2dLvl1>("NormalizedCrossCorrelationMsr2dLvl1", 41);

NormalizedCrossCorrelationMsr2dLvl1::NormalizedCrossCorrelationMsr2dLvl1() = default;
NormalizedCrossCorrelationMsr2dLvl1::~NormalizedCrossCorrelationMsr2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
