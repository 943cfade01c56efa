#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Pearson correlation of two images of one size: one result per 2d plan (z, c, t). The images may have different
/// types of the seven numeric ones. `PearsonCC` is the sum of the products of the deviations over the product of the
/// standard deviations, that is the number of pixels times the coefficient r; 0 where an image is constant. The
/// synchronous forms throw ORLIXBaseProcessingException when the run fails; the single-result forms measure plan (0, 0,
/// 0) only.
ORLIX_API Ptr<PearsonCCResult> pearsonCorrelationCoefficient2d(const Ptr<const image::BaseImage>& image1,
                                                               const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<PearsonCorrelationCoefficient2dLvl1>
pearsonCorrelationCoefficient2d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<PlanIndexedPearsonCCResult>
multiSlice_pearsonCorrelationCoefficient2d(const Ptr<const image::BaseImage>& image1,
                                           const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<PearsonCorrelationCoefficient2dLvl1>
multiSlice_pearsonCorrelationCoefficient2d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<PearsonCCResult> getAsyncProcessorOutput(const Ptr<PearsonCorrelationCoefficient2dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedPearsonCCResult>
getAsyncProcessorMultiSliceOutput(const Ptr<PearsonCorrelationCoefficient2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
