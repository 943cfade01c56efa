#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The number of pixels whose mask byte is not 0 in bins of equal width: one histogram over every plan, channel and
/// time of the image. Without parameters the range of those pixels is cut into 256 bins, at least 1 wide for
/// integers (HistogramLevels.hpp has the rules). The mask is uint8, int8 or binary and has the size of the image; a
/// plan where it is empty has one bin of nothing. Needs pixels; a range that is not finite, or more bins than the
/// memory limit allows, fails. The synchronous forms throw ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<HistogramData> histogramMaskMsr(const Ptr<const image::BaseImage>& image,
                                              const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<HistogramMaskMsrLvl1> histogramMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                           const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<HistogramData> histogramMaskMsr(const Ptr<const image::BaseImage>& image,
                                              const Ptr<const image::BaseImage>& mask,
                                              const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<HistogramMaskMsrLvl1> histogramMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                           const Ptr<const image::BaseImage>& mask,
                                                           const Ptr<const HistoMsrParams>& params);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMaskMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
