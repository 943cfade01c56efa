#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass NormalizedCrossCorrelationMsr3dLvl2::processorClass =
    declare<NormalizedCrossCorrelationMsr3dLvl2>("NormalizedCrossCorrelationMsr3dLvl2", 45);

NormalizedCrossCorrelationMsr3dLvl2::NormalizedCrossCorrelationMsr3dLvl2() = default;
NormalizedCrossCorrelationMsr3dLvl2::~NormalizedCrossCorrelationMsr3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
