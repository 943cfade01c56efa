#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<NCCResult> normalizedCrossCorrelationMsr2d(const Ptr<const image::BaseImage>& image1,
                                               const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr2dLvl1>::single<InImg1, InImg2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr2dLvl1>
normalizedCrossCorrelationMsr2d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr2dLvl1>::singleAsync<InImg1, InImg2>(image1, image2);
}

Ptr<PlanIndexedNCCResult> multiSlice_normalizedCrossCorrelationMsr2d(const Ptr<const image::BaseImage>& image1,
                                                                     const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr2dLvl1>::everyPlan<InImg1, InImg2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr2dLvl1>
multiSlice_normalizedCrossCorrelationMsr2d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr2dLvl1>::everyPlanAsync<InImg1, InImg2>(image1, image2);
}

Ptr<NCCResult> getAsyncProcessorOutput(const Ptr<NormalizedCrossCorrelationMsr2dLvl1>& processor)
{
    return CallingForms<NormalizedCrossCorrelationMsr2dLvl1>::output(processor);
}

Ptr<PlanIndexedNCCResult> getAsyncProcessorMultiSliceOutput(const Ptr<NormalizedCrossCorrelationMsr2dLvl1>& processor)
{
    return CallingForms<NormalizedCrossCorrelationMsr2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
