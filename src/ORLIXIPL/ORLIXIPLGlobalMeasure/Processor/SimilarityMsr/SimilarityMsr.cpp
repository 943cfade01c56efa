#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<SimilarityMsrLvl1>;

Ptr<SimilarityStats> similarityMsr(const Ptr<const image::BaseImage>& image1, const Ptr<const image::BaseImage>& image2)
{
    return Forms::single<InImg1, InImg2>(image1, image2);
}

Ptr<SimilarityMsrLvl1> similarityMsr_async(const Ptr<const image::BaseImage>& image1,
                                           const Ptr<const image::BaseImage>& image2)
{
    return Forms::singleAsync<InImg1, InImg2>(image1, image2);
}

Ptr<SimilarityStats> getAsyncProcessorOutput(const Ptr<SimilarityMsrLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
