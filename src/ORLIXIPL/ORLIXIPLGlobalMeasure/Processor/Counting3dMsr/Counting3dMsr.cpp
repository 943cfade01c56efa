#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<IndexableUInt64> counting3dMsr(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting3dMsrLvl1>::single<InLabelImg3d>(labelImage);
}

Ptr<Counting3dMsrLvl1> counting3dMsr_async(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting3dMsrLvl1>::singleAsync<InLabelImg3d>(labelImage);
}

Ptr<PlanIndexedIndexableUInt64> multiSlice_counting3dMsr(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting3dMsrLvl1>::everyPlan<InLabelImg3d>(labelImage);
}

Ptr<Counting3dMsrLvl1> multiSlice_counting3dMsr_async(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting3dMsrLvl1>::everyPlanAsync<InLabelImg3d>(labelImage);
}

Ptr<IndexableUInt64> getAsyncProcessorOutput(const Ptr<Counting3dMsrLvl1>& processor)
{
    return CallingForms<Counting3dMsrLvl1>::output(processor);
}

Ptr<PlanIndexedIndexableUInt64> getAsyncProcessorMultiSliceOutput(const Ptr<Counting3dMsrLvl1>& processor)
{
    return CallingForms<Counting3dMsrLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
