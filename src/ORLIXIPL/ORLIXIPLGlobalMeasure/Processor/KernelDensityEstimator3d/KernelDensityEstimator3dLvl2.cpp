#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator3d/KernelDensityEstimator3dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass KernelDensityEstimator3dLvl2::processorClass =
    declare<KernelDensityEstimator3dLvl2>("KernelDensityEstimator3dLvl2", 33);

KernelDensityEstimator3dLvl2::KernelDensityEstimator3dLvl2() = default;
KernelDensityEstimator3dLvl2::~KernelDensityEstimator3dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
