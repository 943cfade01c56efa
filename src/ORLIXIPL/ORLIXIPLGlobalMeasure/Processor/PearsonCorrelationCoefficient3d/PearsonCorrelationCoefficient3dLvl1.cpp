#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass PearsonCorrelationCoefficient3dLvl1::processorClass =
    declare<PearsonCorrelationCoefficient3dLvl1>("PearsonCorrelationCoefficient3dLvl1", 53);

PearsonCorrelationCoefficient3dLvl1::PearsonCorrelationCoefficient3dLvl1() = default;
PearsonCorrelationCoefficient3dLvl1::~PearsonCorrelationCoefficient3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
