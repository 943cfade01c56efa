#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// Number, sum, mean, minimum, maximum and standard deviation of the pixels: one result per 3d volume (c, t). Takes the
/// seven numeric pixel types; without pixels the mean is NaN. The synchronous forms throw ORLIXBaseProcessingException
/// when the run fails; the single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<StatsResult> statsMsr3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<StatsMsr3dLvl1> statsMsr3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedStatsResult> multiSlice_statsMsr3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<StatsMsr3dLvl1> multiSlice_statsMsr3d_async(const Ptr<const image::BaseImage>& image);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsr3dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMsr3dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
