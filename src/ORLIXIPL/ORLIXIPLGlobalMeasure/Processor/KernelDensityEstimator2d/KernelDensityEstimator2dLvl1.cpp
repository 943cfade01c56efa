#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass KernelDensityEstimator2dLvl1::processorClass =
    declare<KernelDensityEstimator2dLvl1>("KernelDensityEstimator2dLvl1", 30);

KernelDensityEstimator2dLvl1::KernelDensityEstimator2dLvl1() = default;
KernelDensityEstimator2dLvl1::~KernelDensityEstimator2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
