#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every row of a 2d image: as many numbers as there are rows. Takes one plan of the seven numeric pixel
/// types. Maximum and minimum are those of the numbers; of a row of nothing but NaN, NaN. The median of an even number
/// is the upper one of the middle; NaN comes after every number. Neither threads nor the layout of the pixels in memory
/// change a bit of a result. Integer images give the same bits on every instruction set, float images on every vector
/// instruction set; the generic kernel adds in another order. The synchronous form throws ORLIXBaseProcessingException
/// when the run fails.
ORLIX_API Ptr<Doubles> yProjection2d(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic);
ORLIX_API Ptr<YProjection2dLvl1> yProjection2d_async(const Ptr<const image::BaseImage>& image,
                                                     const eProjStatType& statistic);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<Doubles> getAsyncProcessorOutput(const Ptr<YProjection2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
