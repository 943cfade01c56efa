#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<KDEDataSet> kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::single<InImg>(image);
}

Ptr<KDEDataSet> kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                         const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::single<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(
        image, nbSamples, bandwidthPolicy);
}

Ptr<KernelDensityEstimator2dLvl1> kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::singleAsync<InImg>(image);
}

Ptr<KernelDensityEstimator2dLvl1> kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image,
                                                                 std::uint32_t nbSamples,
                                                                 const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::singleAsync<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(
        image, nbSamples, bandwidthPolicy);
}

Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::everyPlan<InImg>(image);
}

Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image,
                                                               std::uint32_t nbSamples,
                                                               const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::everyPlan<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(
        image, nbSamples, bandwidthPolicy);
}

Ptr<KernelDensityEstimator2dLvl1> multiSlice_kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::everyPlanAsync<InImg>(image);
}

Ptr<KernelDensityEstimator2dLvl1>
multiSlice_kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                          const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::everyPlanAsync<InImg, InOptKDENbSamples,
                                                                      InOptKDEBandwidthPolicy>(image, nbSamples,
                                                                                               bandwidthPolicy);
}

Ptr<KDEDataSet> getAsyncProcessorOutput(const Ptr<KernelDensityEstimator2dLvl1>& processor)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::output(processor);
}

Ptr<PlanIndexedKDEDataSet> getAsyncProcessorMultiSliceOutput(const Ptr<KernelDensityEstimator2dLvl1>& processor)
{
    return CallingForms<KernelDensityEstimator2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
