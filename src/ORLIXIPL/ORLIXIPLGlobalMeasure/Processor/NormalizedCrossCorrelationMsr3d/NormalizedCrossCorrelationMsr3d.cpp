#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<NCCResult> normalizedCrossCorrelationMsr3d(const Ptr<const image::BaseImage>& image1,
                                               const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr3dLvl1>::single<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr3dLvl1>
normalizedCrossCorrelationMsr3d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr3dLvl1>::singleAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PlanIndexedNCCResult> multiSlice_normalizedCrossCorrelationMsr3d(const Ptr<const image::BaseImage>& image1,
                                                                     const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr3dLvl1>::everyPlan<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<NormalizedCrossCorrelationMsr3dLvl1>
multiSlice_normalizedCrossCorrelationMsr3d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<NormalizedCrossCorrelationMsr3dLvl1>::everyPlanAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<NCCResult> getAsyncProcessorOutput(const Ptr<NormalizedCrossCorrelationMsr3dLvl1>& processor)
{
    return CallingForms<NormalizedCrossCorrelationMsr3dLvl1>::output(processor);
}

Ptr<PlanIndexedNCCResult> getAsyncProcessorMultiSliceOutput(const Ptr<NormalizedCrossCorrelationMsr3dLvl1>& processor)
{
    return CallingForms<NormalizedCrossCorrelationMsr3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
