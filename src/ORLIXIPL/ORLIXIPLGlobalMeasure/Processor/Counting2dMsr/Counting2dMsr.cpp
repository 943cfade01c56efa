#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<IndexableUInt64> counting2dMsr(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting2dMsrLvl1>::single<InLabelImg>(labelImage);
}

Ptr<Counting2dMsrLvl1> counting2dMsr_async(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting2dMsrLvl1>::singleAsync<InLabelImg>(labelImage);
}

Ptr<PlanIndexedIndexableUInt64> multiSlice_counting2dMsr(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting2dMsrLvl1>::everyPlan<InLabelImg>(labelImage);
}

Ptr<Counting2dMsrLvl1> multiSlice_counting2dMsr_async(const Ptr<const image::BaseImage>& labelImage)
{
    return CallingForms<Counting2dMsrLvl1>::everyPlanAsync<InLabelImg>(labelImage);
}

Ptr<IndexableUInt64> getAsyncProcessorOutput(const Ptr<Counting2dMsrLvl1>& processor)
{
    return CallingForms<Counting2dMsrLvl1>::output(processor);
}

Ptr<PlanIndexedIndexableUInt64> getAsyncProcessorMultiSliceOutput(const Ptr<Counting2dMsrLvl1>& processor)
{
    return CallingForms<Counting2dMsrLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
