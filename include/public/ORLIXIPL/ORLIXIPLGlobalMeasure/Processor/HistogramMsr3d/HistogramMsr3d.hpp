#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The number of pixels in bins of equal width: one histogram per 3d volume (c, t), each with a range of its own
/// unless the parameters give one. Without parameters the range of the image is cut into 256 bins, at least 1 wide
/// for integers (HistogramLevels.hpp has the rules). Needs pixels; a range that is not finite, or more bins than the
/// memory limit allows, fails. The synchronous forms throw ORLIXBaseProcessingException when the run fails; the single-
/// result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<HistogramData> histogramMsr3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<HistogramMsr3dLvl1> histogramMsr3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<HistogramData> histogramMsr3d(const Ptr<const image::BaseImage>& image,
                                            const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<HistogramMsr3dLvl1> histogramMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                       const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<HistogramMsr3dLvl1> multiSlice_histogramMsr3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr3d(const Ptr<const image::BaseImage>& image,
                                                                  const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<HistogramMsr3dLvl1> multiSlice_histogramMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                                  const Ptr<const HistoMsrParams>& params);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsr3dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMsr3dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
