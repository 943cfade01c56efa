#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The samples of every 2d plan of an image.
class ORLIX_API KernelDensityEstimator2dLvl1 final
    : public PlanIndexedLvl1<KernelDensityEstimator2dLvl1, KernelDensityEstimator2dLvl2,
                             Pass<OutPIKDEDataSet, OutKDEDataSet>, Pass<InImg, InSubImg2d>,
                             Pass<InOptKDENbSamples, InKDENbSamples>,
                             Pass<InOptKDEBandwidthPolicy, InKDEBandwidthPolicy>>
{
public:
    KernelDensityEstimator2dLvl1();
    ~KernelDensityEstimator2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
