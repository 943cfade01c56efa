#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<StatsMaskMsr3dLvl1>;

Ptr<StatsResult> statsMaskMsr3d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return Forms::single<InImg3d, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr3dLvl1> statsMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const image::BaseImage>& mask)
{
    return Forms::singleAsync<InImg3d, InMaskImg>(image, mask);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMaskMsr3d(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlan<InImg3d, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsr3dLvl1> multiSlice_statsMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlanAsync<InImg3d, InMaskImg>(image, mask);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsr3dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMaskMsr3dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
