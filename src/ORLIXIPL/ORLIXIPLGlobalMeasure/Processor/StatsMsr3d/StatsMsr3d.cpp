#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<StatsResult> statsMsr3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr3dLvl1>::single<InImg3d>(image);
}

Ptr<StatsMsr3dLvl1> statsMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr3dLvl1>::singleAsync<InImg3d>(image);
}

Ptr<PlanIndexedStatsResult> multiSlice_statsMsr3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr3dLvl1>::everyPlan<InImg3d>(image);
}

Ptr<StatsMsr3dLvl1> multiSlice_statsMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsr3dLvl1>::everyPlanAsync<InImg3d>(image);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsr3dLvl1>& processor)
{
    return CallingForms<StatsMsr3dLvl1>::output(processor);
}

Ptr<PlanIndexedStatsResult> getAsyncProcessorMultiSliceOutput(const Ptr<StatsMsr3dLvl1>& processor)
{
    return CallingForms<StatsMsr3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
