#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator3d/KernelDensityEstimator3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The samples of every volume of an image.
class ORLIX_API KernelDensityEstimator3dLvl1 final
    : public PlanIndexedLvl1<KernelDensityEstimator3dLvl1, KernelDensityEstimator3dLvl2,
                             Pass<OutPIKDEDataSet, OutKDEDataSet>, Pass<InImg3d, InSubImg3d>,
                             Pass<InOptKDENbSamples, InKDENbSamples>,
                             Pass<InOptKDEBandwidthPolicy, InKDEBandwidthPolicy>>
{
public:
    KernelDensityEstimator3dLvl1();
    ~KernelDensityEstimator3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
