#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator3d/KernelDensityEstimator3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<KDEDataSet> kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::single<InImg3d>(image);
}

Ptr<KDEDataSet> kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                         const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::single<InImg3d, InOptKDENbSamples, InOptKDEBandwidthPolicy>(
        image, nbSamples, bandwidthPolicy);
}

Ptr<KernelDensityEstimator3dLvl1> kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::singleAsync<InImg3d>(image);
}

Ptr<KernelDensityEstimator3dLvl1> kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image,
                                                                 std::uint32_t nbSamples,
                                                                 const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::singleAsync<InImg3d, InOptKDENbSamples, InOptKDEBandwidthPolicy>(
        image, nbSamples, bandwidthPolicy);
}

Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::everyPlan<InImg3d>(image);
}

Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image,
                                                               std::uint32_t nbSamples,
                                                               const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::everyPlan<InImg3d, InOptKDENbSamples, InOptKDEBandwidthPolicy>(
        image, nbSamples, bandwidthPolicy);
}

Ptr<KernelDensityEstimator3dLvl1> multiSlice_kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::everyPlanAsync<InImg3d>(image);
}

Ptr<KernelDensityEstimator3dLvl1>
multiSlice_kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                          const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::everyPlanAsync<InImg3d, InOptKDENbSamples,
                                                                      InOptKDEBandwidthPolicy>(image, nbSamples,
                                                                                               bandwidthPolicy);
}

Ptr<KDEDataSet> getAsyncProcessorOutput(const Ptr<KernelDensityEstimator3dLvl1>& processor)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::output(processor);
}

Ptr<PlanIndexedKDEDataSet> getAsyncProcessorMultiSliceOutput(const Ptr<KernelDensityEstimator3dLvl1>& processor)
{
    return CallingForms<KernelDensityEstimator3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
