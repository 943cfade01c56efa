#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting/CountingLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The number of objects in a label image: one count per 2d plan (z, c, t). The lowest label is the background, even
/// where it is not 0. Takes the integer pixel types and needs pixels; labels of any 32-bit number are told
/// apart, and those that need more memory than the limit allows fail. The synchronous forms throw
/// ORLIXBaseProcessingException when the run fails; the single-result forms measure plan (0, 0, 0) only.
ORLIX_API Ptr<IndexableUInt64> counting2dMsr(const Ptr<const image::BaseImage>& labelImage);
ORLIX_API Ptr<Counting2dMsrLvl1> counting2dMsr_async(const Ptr<const image::BaseImage>& labelImage);
ORLIX_API Ptr<PlanIndexedIndexableUInt64> multiSlice_counting2dMsr(const Ptr<const image::BaseImage>& labelImage);
ORLIX_API Ptr<Counting2dMsrLvl1> multiSlice_counting2dMsr_async(const Ptr<const image::BaseImage>& labelImage);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<IndexableUInt64> getAsyncProcessorOutput(const Ptr<Counting2dMsrLvl1>& processor);
ORLIX_API Ptr<PlanIndexedIndexableUInt64> getAsyncProcessorMultiSliceOutput(const Ptr<Counting2dMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
