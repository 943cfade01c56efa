#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass PearsonCorrelationCoefficient3dLvl2::processorClass =
    declare<PearsonCorrelationCoefficient3dLvl2>("PearsonCorrelationCoefficient3dLvl2", 54);

PearsonCorrelationCoefficient3dLvl2::PearsonCorrelationCoefficient3dLvl2() = default;
PearsonCorrelationCoefficient3dLvl2::~PearsonCorrelationCoefficient3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
