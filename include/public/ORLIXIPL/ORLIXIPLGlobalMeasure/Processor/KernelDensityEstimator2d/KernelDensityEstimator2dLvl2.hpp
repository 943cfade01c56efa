#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KDELevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The sample of one 2d plan.
class ORLIX_API KernelDensityEstimator2dLvl2 final
    : public DensitySample<KernelDensityEstimator2dLvl2, InSubImg2d, ImageValueExtraction2d, attr::InPixels2d>
{
public:
    KernelDensityEstimator2dLvl2();
    ~KernelDensityEstimator2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
