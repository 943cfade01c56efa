#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<NormalizedCrossCorrelationMsr2dLvl1>;

Ptr<NCCResult> normalizedCrossCorrelationMsr2d(const Ptr<const image::BaseImage>& image1,
                                               const Ptr<const image::BaseImage>& image2)
{
    return Forms::single<InImg1, InImg2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr2dLvl1>
normalizedCrossCorrelationMsr2d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return Forms::singleAsync<InImg1, InImg2>(image1, image2);
}

Ptr<PlanIndexedNCCResult> multiSlice_normalizedCrossCorrelationMsr2d(const Ptr<const image::BaseImage>& image1,
                                                                     const Ptr<const image::BaseImage>& image2)
{
    return Forms::everyPlan<InImg1, InImg2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr2dLvl1>
multiSlice_normalizedCrossCorrelationMsr2d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return Forms::everyPlanAsync<InImg1, InImg2>(image1, image2);
}

Ptr<NCCResult> getAsyncProcessorOutput(const Ptr<NormalizedCrossCorrelationMsr2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedNCCResult> getAsyncProcessorMultiSliceOutput(const Ptr<NormalizedCrossCorrelationMsr2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
