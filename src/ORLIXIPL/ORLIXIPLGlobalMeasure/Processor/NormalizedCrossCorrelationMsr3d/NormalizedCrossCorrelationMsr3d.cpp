#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<NormalizedCrossCorrelationMsr3dLvl1>;

Ptr<NCCResult> normalizedCrossCorrelationMsr3d(const Ptr<const image::BaseImage>& image1,
                                               const Ptr<const image::BaseImage>& image2)
{
    return Forms::single<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr3dLvl1>
normalizedCrossCorrelationMsr3d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return Forms::singleAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PlanIndexedNCCResult> multiSlice_normalizedCrossCorrelationMsr3d(const Ptr<const image::BaseImage>& image1,
                                                                     const Ptr<const image::BaseImage>& image2)
{
    return Forms::everyPlan<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr3dLvl1>
multiSlice_normalizedCrossCorrelationMsr3d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return Forms::everyPlanAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<NCCResult> getAsyncProcessorOutput(const Ptr<NormalizedCrossCorrelationMsr3dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedNCCResult> getAsyncProcessorMultiSliceOutput(const Ptr<NormalizedCrossCorrelationMsr3dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
