#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/LocateLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The positions of the first nbFeatures set pixels of a binary image, in raster order: one list per
/// 2d plan (z, c, t), in pixels from the first one. Without nbFeatures the limit is the number of plans times x times y
/// in 32 bits, which on purpose wraps for images of 2^32 pixels and more. The synchronous forms throw
/// ORLIXBaseProcessingException when the run fails; the single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<Pixels2d> locatePixels2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<Pixels2d> locatePixels2d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures);
ORLIX_API Ptr<LocatePixels2dLvl1> locatePixels2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<LocatePixels2dLvl1> locatePixels2d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures);
ORLIX_API Ptr<PlanIndexedPixels2d> multiSlice_locatePixels2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedPixels2d> multiSlice_locatePixels2d(const Ptr<const image::BaseImage>& image,
                                                             unsigned nbFeatures);
ORLIX_API Ptr<LocatePixels2dLvl1> multiSlice_locatePixels2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<LocatePixels2dLvl1> multiSlice_locatePixels2d_async(const Ptr<const image::BaseImage>& image,
                                                                  unsigned nbFeatures);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<Pixels2d> getAsyncProcessorOutput(const Ptr<LocatePixels2dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedPixels2d> getAsyncProcessorMultiSliceOutput(const Ptr<LocatePixels2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
