#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsrLvl1.hpp>

namespace orlix::imaproc::glbmsr
{

/// The standard deviation of additive Gaussian noise, from the absolute responses to a 3 x 3 mask that structure of the
/// image passes by (J. Immerkaer, Fast noise variance estimation, 1996): one record over all 2d plans of an image of
/// any numeric type. Beyond the border of a plan its border pixels go on; an image without pixels has the noise NaN. On
/// purpose, the number of pixels goes through single precision, so it is rounded beyond 2^24. All instruction sets give
/// the same bits. The synchronous form throws ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<GaussianNoiseStats> gaussianNoiseMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GaussianNoiseMsrLvl1> gaussianNoiseMsr_async(const Ptr<const image::BaseImage>& image);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<GaussianNoiseStats> getAsyncProcessorOutput(const Ptr<GaussianNoiseMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
