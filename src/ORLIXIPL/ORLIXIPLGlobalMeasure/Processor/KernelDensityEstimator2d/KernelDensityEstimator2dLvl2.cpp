#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass KernelDensityEstimator2dLvl2::processorClass =
    declare<KernelDensityEstimator2dLvl2>("KernelDensityEstimator2dLvl2", 31);

KernelDensityEstimator2dLvl2::KernelDensityEstimator2dLvl2() = default;
KernelDensityEstimator2dLvl2::~KernelDensityEstimator2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
