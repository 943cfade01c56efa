#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every column of a 2d image: as many numbers as there are columns. Takes one plan of the seven numeric
/// pixel types. Maximum and minimum begin with the lowest and highest finite number of the pixel type, which a column
/// of nothing but NaN keeps: a NaN never replaces a number. The median of an even number is the upper one of the
/// middle; NaN comes after every number. Neither threads nor the layout of the pixels in memory change a bit of a
/// result. All instruction sets give the same bits. The synchronous form throws ORLIXBaseProcessingException when the
/// run fails.
ORLIX_API Ptr<Doubles> xProjection2d(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic);
ORLIX_API Ptr<XProjection2dLvl1> xProjection2d_async(const Ptr<const image::BaseImage>& image,
                                                     const eProjStatType& statistic);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<Doubles> getAsyncProcessorOutput(const Ptr<XProjection2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
