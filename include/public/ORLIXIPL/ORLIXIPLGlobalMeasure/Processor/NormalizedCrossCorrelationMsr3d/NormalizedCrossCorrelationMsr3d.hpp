#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The zero-mean normalized cross correlation of two images of one size: one result per 3d volume (c, t). The images
/// may have different types of the seven numeric ones. `Correlation` is from -1 to 1, and NaN where an image is
/// constant over a volume, or over a strip of it at just the mean of the volume. `SumSquaredDev1` is the sum of the
/// squared deviations of image 2, and `SumSquaredDev2` is not filled in. The synchronous forms throw
/// ORLIXBaseProcessingException when the run fails; the single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<NCCResult> normalizedCrossCorrelationMsr3d(const Ptr<const image::BaseImage>& image1,
                                                         const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<NormalizedCrossCorrelationMsr3dLvl1>
normalizedCrossCorrelationMsr3d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<PlanIndexedNCCResult>
multiSlice_normalizedCrossCorrelationMsr3d(const Ptr<const image::BaseImage>& image1,
                                           const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<NormalizedCrossCorrelationMsr3dLvl1>
multiSlice_normalizedCrossCorrelationMsr3d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<NCCResult> getAsyncProcessorOutput(const Ptr<NormalizedCrossCorrelationMsr3dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedNCCResult>
getAsyncProcessorMultiSliceOutput(const Ptr<NormalizedCrossCorrelationMsr3dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
