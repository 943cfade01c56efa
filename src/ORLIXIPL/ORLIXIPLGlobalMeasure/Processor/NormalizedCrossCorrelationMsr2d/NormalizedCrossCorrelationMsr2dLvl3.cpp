#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/NCCStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass NormalizedCrossCorrelationMsr2dLvl3::processorClass =
    declareAlgorithm<NormalizedCrossCorrelationMsr2dLvl3>("NormalizedCrossCorrelationMsr2dLvl3", 43);

NormalizedCrossCorrelationMsr2dLvl3::NormalizedCrossCorrelationMsr2dLvl3() = default;
NormalizedCrossCorrelationMsr2dLvl3::~NormalizedCrossCorrelationMsr2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
