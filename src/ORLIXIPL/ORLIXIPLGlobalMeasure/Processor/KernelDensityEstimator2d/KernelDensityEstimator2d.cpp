#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<KernelDensityEstimator2dLvl1>;

Ptr<KDEDataSet> kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<KDEDataSet> kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                         const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return Forms::single<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(image, nbSamples, bandwidthPolicy);
}

Ptr<KernelDensityEstimator2dLvl1> kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<KernelDensityEstimator2dLvl1> kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image,
                                                                 std::uint32_t nbSamples,
                                                                 const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return Forms::singleAsync<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(image, nbSamples, bandwidthPolicy);
}

Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg>(image);
}

Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator2d(const Ptr<const image::BaseImage>& image,
                                                               std::uint32_t nbSamples,
                                                               const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return Forms::everyPlan<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(image, nbSamples, bandwidthPolicy);
}

Ptr<KernelDensityEstimator2dLvl1> multiSlice_kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg>(image);
}

Ptr<KernelDensityEstimator2dLvl1>
multiSlice_kernelDensityEstimator2d_async(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                          const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return Forms::everyPlanAsync<InImg, InOptKDENbSamples, InOptKDEBandwidthPolicy>(image, nbSamples, bandwidthPolicy);
}

Ptr<KDEDataSet> getAsyncProcessorOutput(const Ptr<KernelDensityEstimator2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedKDEDataSet> getAsyncProcessorMultiSliceOutput(const Ptr<KernelDensityEstimator2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
