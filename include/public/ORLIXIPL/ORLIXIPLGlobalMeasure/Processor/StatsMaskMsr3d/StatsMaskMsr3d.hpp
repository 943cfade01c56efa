#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of statsMsr3d over the pixels whose mask byte is not 0: one result per 3d volume (c, t). The mask is
/// uint8, int8 or binary and has the size of the image; where it is empty, mean and deviation are NaN. The synchronous
/// forms throw ORLIXBaseProcessingException when the run fails; the single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<StatsResult> statsMaskMsr3d(const Ptr<const image::BaseImage>& image,
                                          const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<StatsMaskMsr3dLvl1> statsMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                       const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<PlanIndexedStatsResult> multiSlice_statsMaskMsr3d(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<StatsMaskMsr3dLvl1> multiSlice_statsMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                                  const Ptr<const image::BaseImage>& mask);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsr3dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMaskMsr3dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
