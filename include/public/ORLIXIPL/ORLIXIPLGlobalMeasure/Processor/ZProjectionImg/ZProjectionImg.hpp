#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every pixel over all planes of an image, for each channel and time: an image of one plane, and of the
/// input's sizes else. Takes the seven numeric pixel types. Without `output` the result is a new image of the input's
/// pixel type; `output` has just these sizes and any of the seven types, and is returned. It may be a plane of the
/// input. Numbers are computed as doubles; integer pixels get them rounded half away from zero and limited to their
/// range, NaN as 0, so a float output is what sums want. A NaN never replaces a maximum or minimum; a pixel that is NaN
/// in the first plane, which the others are compared with, stays NaN. The median of an even number is the upper one of
/// the middle; NaN comes after every number. The synchronous forms throw ORLIXBaseProcessingException when the run
/// fails.
ORLIX_API Ptr<image::BaseImage> zProjectionImg(const Ptr<const image::BaseImage>& image,
                                               const eProjStatType& statistic);
ORLIX_API Ptr<image::BaseImage> zProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                               const Ptr<image::BaseImage>& output);
ORLIX_API Ptr<ZProjectionImgLvl1> zProjectionImg_async(const Ptr<const image::BaseImage>& image,
                                                       const eProjStatType& statistic);
ORLIX_API Ptr<ZProjectionImgLvl1> zProjectionImg_async(const Ptr<const image::BaseImage>& image,
                                                       const eProjStatType& statistic,
                                                       const Ptr<image::BaseImage>& output);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<image::BaseImage> getAsyncProcessorOutput(const Ptr<ZProjectionImgLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
