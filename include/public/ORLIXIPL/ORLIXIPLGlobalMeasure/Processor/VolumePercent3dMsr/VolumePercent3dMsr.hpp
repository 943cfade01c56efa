#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/PercentLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The percentage of the pixels that each value of a binary or label image has: one list, indexed by value, per
/// 3d volume (c, t). The mask is uint8, int8 or binary, and of the size of the image: where it is 0, pixels have the
/// value 0, and still count. The synchronous forms throw ORLIXBaseProcessingException when the run fails; the
/// single-result forms measure volume (0, 0) only.
ORLIX_API Ptr<Doubles> volumePercent3dMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<Doubles> volumePercent3dMsr(const Ptr<const image::BaseImage>& image,
                                          const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<VolumePercent3dMsrLvl1> volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<VolumePercent3dMsrLvl1> volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image,
                                                               const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<PlanIndexedDoubles> multiSlice_volumePercent3dMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedDoubles> multiSlice_volumePercent3dMsr(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<VolumePercent3dMsrLvl1> multiSlice_volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<VolumePercent3dMsrLvl1> multiSlice_volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image,
                                                                          const Ptr<const image::BaseImage>& mask);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<Doubles> getAsyncProcessorOutput(const Ptr<VolumePercent3dMsrLvl1>& processor);
ORLIX_API Ptr<PlanIndexedDoubles> getAsyncProcessorMultiSliceOutput(const Ptr<VolumePercent3dMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
