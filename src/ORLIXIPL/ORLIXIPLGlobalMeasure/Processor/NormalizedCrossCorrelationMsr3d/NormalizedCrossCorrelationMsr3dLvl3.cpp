#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/NCCStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass NormalizedCrossCorrelationMsr3dLvl3::processorClass =
    declareAlgorithm<NormalizedCrossCorrelationMsr3dLvl3>("NormalizedCrossCorrelationMsr3dLvl3", 46);

NormalizedCrossCorrelationMsr3dLvl3::NormalizedCrossCorrelationMsr3dLvl3() = default;
NormalizedCrossCorrelationMsr3dLvl3::~NormalizedCrossCorrelationMsr3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
