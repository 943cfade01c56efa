#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass NormalizedCrossCorrelationMsr3dLvl1::processorClass =
    declare<NormalizedCrossCorrelationMsr3dLvl1>("NormalizedCrossCorrelationMsr3dLvl1", 44);

NormalizedCrossCorrelationMsr3dLvl1::NormalizedCrossCorrelationMsr3dLvl1() = default;
NormalizedCrossCorrelationMsr3dLvl1::~NormalizedCrossCorrelationMsr3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
