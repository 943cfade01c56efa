#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/PercentLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The percentage of the pixels that each value of a binary or label image has: one list, indexed by value, per
/// 2d plan (z, c, t). The mask is uint8, int8 or binary, and of the size of the image: where it is 0, pixels have
/// the value 0, and still count. The synchronous forms throw ORLIXBaseProcessingException when the run fails; the
/// single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<Doubles> areaPercent2dMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<Doubles> areaPercent2dMsr(const Ptr<const image::BaseImage>& image,
                                        const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<AreaPercent2dMsrLvl1> areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<AreaPercent2dMsrLvl1> areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image,
                                                           const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<PlanIndexedDoubles> multiSlice_areaPercent2dMsr(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedDoubles> multiSlice_areaPercent2dMsr(const Ptr<const image::BaseImage>& image,
                                                              const Ptr<const image::BaseImage>& mask);
ORLIX_API Ptr<AreaPercent2dMsrLvl1> multiSlice_areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<AreaPercent2dMsrLvl1> multiSlice_areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image,
                                                                      const Ptr<const image::BaseImage>& mask);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<Doubles> getAsyncProcessorOutput(const Ptr<AreaPercent2dMsrLvl1>& processor);
ORLIX_API Ptr<PlanIndexedDoubles> getAsyncProcessorMultiSliceOutput(const Ptr<AreaPercent2dMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
