#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<StatsResult> statsMsr2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr2dLvl1>::single<InImg>(image);
}

Ptr<StatsMsr2dLvl1> statsMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr2dLvl1>::singleAsync<InImg>(image);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMsr2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr2dLvl1>::everyPlan<InImg>(image);
}

Ptr<StatsMsr2dLvl1> multiSlice_statsMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr2dLvl1>::everyPlanAsync<InImg>(image);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsr2dLvl1>& processor)
{
    return CallingForms<StatsMsr2dLvl1>::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMsr2dLvl1>& processor)
{
    return CallingForms<StatsMsr2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
