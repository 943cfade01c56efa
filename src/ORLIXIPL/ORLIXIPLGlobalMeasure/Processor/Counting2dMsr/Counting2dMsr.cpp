#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<Counting2dMsrLvl1>;

Ptr<IndexableUInt64> counting2dMsr(const Ptr<const image::BaseImage>& labelImage)
{
    return Forms::single<InLabelImg>(labelImage);
}

Ptr<Counting2dMsrLvl1> counting2dMsr_async(const Ptr<const image::BaseImage>& labelImage)
{
    return Forms::singleAsync<InLabelImg>(labelImage);
}

Ptr<PlanIndexedIndexableUInt64> multiSlice_counting2dMsr(const Ptr<const image::BaseImage>& labelImage)
{
    return Forms::everyPlan<InLabelImg>(labelImage);
}

Ptr<Counting2dMsrLvl1> multiSlice_counting2dMsr_async(const Ptr<const image::BaseImage>& labelImage)
{
    return Forms::everyPlanAsync<InLabelImg>(labelImage);
}

Ptr<IndexableUInt64> getAsyncProcessorOutput(const Ptr<Counting2dMsrLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedIndexableUInt64> getAsyncProcessorMultiSliceOutput(const Ptr<Counting2dMsrLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
