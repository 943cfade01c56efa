#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KDELevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The sample of one volume.
class ORLIX_API KernelDensityEstimator3dLvl2 final
    : public DensitySample<KernelDensityEstimator3dLvl2, InSubImg3d, ImageValueExtraction3d, attr::InVoxels3d>
{
public:
    KernelDensityEstimator3dLvl2();
    ~KernelDensityEstimator3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
