#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of statsMsr over the pixels whose mask byte is not 0: one result over every plan, channel and time of
/// the image. The mask is uint8, int8 or binary and has the size of the image; where it is empty, mean and deviation
/// are NaN. The synchronous forms throw ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<StatsResult> statsMaskMsr(const Ptr<const image::BaseImage>& image,
                                        const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<StatsMaskMsrLvl1> statsMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                   const Ptr<const image::BaseImage>& mask);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
