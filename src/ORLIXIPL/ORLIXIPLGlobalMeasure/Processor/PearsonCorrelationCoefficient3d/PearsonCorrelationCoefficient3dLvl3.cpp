#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/PearsonCCStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass PearsonCorrelationCoefficient3dLvl3::processorClass =
    declareAlgorithm<PearsonCorrelationCoefficient3dLvl3>("PearsonCorrelationCoefficient3dLvl3", 55);

PearsonCorrelationCoefficient3dLvl3::PearsonCorrelationCoefficient3dLvl3() = default;
PearsonCorrelationCoefficient3dLvl3::~PearsonCorrelationCoefficient3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
