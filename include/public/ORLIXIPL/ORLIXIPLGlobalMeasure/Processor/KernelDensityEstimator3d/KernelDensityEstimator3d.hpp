#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensity/KDELevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// What a kernel density estimate of the grey levels is evaluated from: the pixels at positions that are drawn at
/// random, with replacement, and a bandwidth for them; one record per 3d volume (c, t) of an image of any numeric type.
/// Without parameters, 1000 samples and Silverman's rule. core::random::setSeed chooses the sample. The synchronous
/// forms throw ORLIXBaseProcessingException when the run fails; the single-result forms measure volume (0, 0) only.
ORLIX_API Ptr<KDEDataSet> kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<KDEDataSet> kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                                   const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy);
ORLIX_API Ptr<KernelDensityEstimator3dLvl1> kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<KernelDensityEstimator3dLvl1>
kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                               const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy);
ORLIX_API Ptr<PlanIndexedKDEDataSet> multiSlice_kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedKDEDataSet>
multiSlice_kernelDensityEstimator3d(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                    const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy);
ORLIX_API Ptr<KernelDensityEstimator3dLvl1>
multiSlice_kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<KernelDensityEstimator3dLvl1>
multiSlice_kernelDensityEstimator3d_async(const Ptr<const image::BaseImage>& image, std::uint32_t nbSamples,
                                          const Ptr<const KDEBandwidthPolicy>& bandwidthPolicy);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<KDEDataSet> getAsyncProcessorOutput(const Ptr<KernelDensityEstimator3dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedKDEDataSet>
getAsyncProcessorMultiSliceOutput(const Ptr<KernelDensityEstimator3dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
