#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator3d/KernelDensityEstimator3dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass KernelDensityEstimator3dLvl1::processorClass =
    declare<KernelDensityEstimator3dLvl1>("KernelDensityEstimator3dLvl1", 32);

KernelDensityEstimator3dLvl1::KernelDensityEstimator3dLvl1() = default;
KernelDensityEstimator3dLvl1::~KernelDensityEstimator3dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
