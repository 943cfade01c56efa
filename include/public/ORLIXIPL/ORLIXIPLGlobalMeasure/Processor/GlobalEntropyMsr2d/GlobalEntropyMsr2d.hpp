#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2dLvl1.hpp>

namespace orlix::imaproc::glbmsr
{

/// The Shannon entropy of the grey levels, in nats: one result per 2d plan (z, c, t). Without parameters the range of
/// the plan is cut into up to 65536 classes, at least 1 wide for integers and at least 256 of them for floats; what
/// lies outside the range of given parameters does not count. The form that takes one record applies it to plan (0, 0,
/// 0), the multi-slice form takes a record for every plan that is not to have its default. Fails where the histogram of
/// a plan does. The synchronous forms throw ORLIXBaseProcessingException when the run fails; the single-result forms
/// measure plan (0, 0, 0) alone.
ORLIX_API Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                               const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<PlanIndexedGlobalEntropyResult> multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1> multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedGlobalEntropyResult>
multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                              const Ptr<const PlanIndexedHistoMsrParams>& params);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1>
multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                    const Ptr<const PlanIndexedHistoMsrParams>& params);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<GlobalEntropyResult> getAsyncProcessorOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedGlobalEntropyResult>
getAsyncProcessorMultiSliceOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
