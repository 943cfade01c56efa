#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/LocateLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The positions of the first nbFeatures set voxels of a binary image, in raster order: one list per
/// 3d volume (c, t), in pixels from the first one. Without nbFeatures the limit is the number of plans (z, c, t) times
/// x times y in 32 bits, which on purpose wraps for images of 2^32 pixels and more. The synchronous forms throw
/// ORLIXBaseProcessingException when the run fails; the single-result forms measure volume (0, 0) only.
ORLIX_API Ptr<Voxels3d> locateVoxels3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<Voxels3d> locateVoxels3d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures);
ORLIX_API Ptr<LocateVoxels3dLvl1> locateVoxels3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<LocateVoxels3dLvl1> locateVoxels3d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures);
ORLIX_API Ptr<PlanIndexedVoxels3d> multiSlice_locateVoxels3d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedVoxels3d> multiSlice_locateVoxels3d(const Ptr<const image::BaseImage>& image,
                                                             unsigned nbFeatures);
ORLIX_API Ptr<LocateVoxels3dLvl1> multiSlice_locateVoxels3d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<LocateVoxels3dLvl1> multiSlice_locateVoxels3d_async(const Ptr<const image::BaseImage>& image,
                                                                  unsigned nbFeatures);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<Voxels3d> getAsyncProcessorOutput(const Ptr<LocateVoxels3dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedVoxels3d> getAsyncProcessorMultiSliceOutput(const Ptr<LocateVoxels3dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
