#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass PearsonCorrelationCoefficient2dLvl1::processorClass =
    declare<PearsonCorrelationCoefficient2dLvl1>("PearsonCorrelationCoefficient2dLvl1", 50);

PearsonCorrelationCoefficient2dLvl1::PearsonCorrelationCoefficient2dLvl1() = default;
PearsonCorrelationCoefficient2dLvl1::~PearsonCorrelationCoefficient2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
