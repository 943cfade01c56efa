#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<StatsMaskMsr2dLvl1>;

Ptr<StatsResult> statsMaskMsr2d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return Forms::single<InImg, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr2dLvl1> statsMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const image::BaseImage>& mask)
{
    return Forms::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMaskMsr2d(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlan<InImg, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr2dLvl1> multiSlice_statsMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlanAsync<InImg, InMaskImg>(image, mask);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsr2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMaskMsr2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
