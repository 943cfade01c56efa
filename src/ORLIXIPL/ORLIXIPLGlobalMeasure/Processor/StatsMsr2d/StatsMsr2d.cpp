#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<StatsMsr2dLvl1>;

Ptr<StatsResult> statsMsr2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<StatsMsr2dLvl1> statsMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMsr2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg>(image);
}

Ptr<StatsMsr2dLvl1> multiSlice_statsMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg>(image);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsr2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMsr2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
