#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<StatsResult> statsMaskMsr3d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr3dLvl1>::single<InImg3d, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr3dLvl1> statsMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr3dLvl1>::singleAsync<InImg3d, InMaskImg>(image, mask);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMaskMsr3d(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr3dLvl1>::everyPlan<InImg3d, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr3dLvl1> multiSlice_statsMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr3dLvl1>::everyPlanAsync<InImg3d, InMaskImg>(image, mask);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsr3dLvl1>& processor)
{
    return CallingForms<StatsMaskMsr3dLvl1>::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMaskMsr3dLvl1>& processor)
{
    return CallingForms<StatsMaskMsr3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
