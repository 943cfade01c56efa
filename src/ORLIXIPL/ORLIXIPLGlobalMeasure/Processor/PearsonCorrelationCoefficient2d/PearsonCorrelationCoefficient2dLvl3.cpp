#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/PearsonCCStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass PearsonCorrelationCoefficient2dLvl3::processorClass =
    declareAlgorithm<PearsonCorrelationCoefficient2dLvl3>("PearsonCorrelationCoefficient2dLvl3", 52);

PearsonCorrelationCoefficient2dLvl3::PearsonCorrelationCoefficient2dLvl3() = default;
PearsonCorrelationCoefficient2dLvl3::~PearsonCorrelationCoefficient2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
