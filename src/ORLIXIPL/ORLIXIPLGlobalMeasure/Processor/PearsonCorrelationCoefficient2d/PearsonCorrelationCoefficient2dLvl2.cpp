#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass PearsonCorrelationCoefficient2dLvl2::processorClass =
    declare<PearsonCorrelationCoefficient2dLvl2>("PearsonCorrelationCoefficient2dLvl2", 51);

PearsonCorrelationCoefficient2dLvl2::PearsonCorrelationCoefficient2dLvl2() = default;
PearsonCorrelationCoefficient2dLvl2::~PearsonCorrelationCoefficient2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
