#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<StatsMsr3dLvl1>;

Ptr<StatsResult> statsMsr3d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg3d>(image);
}

Ptr<StatsMsr3dLvl1> statsMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg3d>(image);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMsr3d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg3d>(image);
}

Ptr<StatsMsr3dLvl1> multiSlice_statsMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg3d>(image);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsr3dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMsr3dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
