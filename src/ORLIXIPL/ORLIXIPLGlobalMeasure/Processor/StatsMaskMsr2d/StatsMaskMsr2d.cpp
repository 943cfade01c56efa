#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<StatsResult> statsMaskMsr2d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr2dLvl1>::single<InImg, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr2dLvl1> statsMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr2dLvl1>::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMaskMsr2d(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr2dLvl1>::everyPlan<InImg, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr2dLvl1> multiSlice_statsMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsr2dLvl1>::everyPlanAsync<InImg, InMaskImg>(image, mask);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsr2dLvl1>& processor)
{
    return CallingForms<StatsMaskMsr2dLvl1>::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMaskMsr2dLvl1>& processor)
{
    return CallingForms<StatsMaskMsr2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
