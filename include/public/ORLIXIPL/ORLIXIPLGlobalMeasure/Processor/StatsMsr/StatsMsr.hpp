#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// Number, sum, mean, minimum, maximum and standard deviation of the pixels: one result over every plan, channel and
/// time of the image. Takes the seven numeric pixel types; without pixels the mean is NaN. The synchronous forms throw
/// ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<StatsResult> statsMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<StatsMsrLvl1> statsMsr_async(const Ptr<const image::BaseImage>& image);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
