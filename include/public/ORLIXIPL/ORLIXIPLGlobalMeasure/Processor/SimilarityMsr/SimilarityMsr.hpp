#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrLvl1.hpp>

namespace orlix::imaproc::glbmsr
{

/// How far two images of one size and one numeric pixel type differ: one record over all their plans. PSNR takes 255 as
/// the peak, whatever the pixel type, and is the greatest double for images that are the same. Integer images give the
/// same bits on every instruction set, float images on every vector instruction set; the generic kernel adds in another
/// order. The synchronous form throws ORLIXBaseProcessingException when the run fails.
ORLIX_API Ptr<SimilarityStats> similarityMsr(const Ptr<const image::BaseImage>& image1,
                                             const Ptr<const image::BaseImage>& image2);
ORLIX_API Ptr<SimilarityMsrLvl1> similarityMsr_async(const Ptr<const image::BaseImage>& image1,
                                                     const Ptr<const image::BaseImage>& image2);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<SimilarityStats> getAsyncProcessorOutput(const Ptr<SimilarityMsrLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
