#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<GlobalEntropyMsr2dLvl1>;

namespace
{

Ptr<const PlanIndexedHistoMsrParams> forFirstPlan(const Ptr<const HistoMsrParams>& params)
{
    if (!params) {
        return nullptr;
    }
    auto collection = makePtr<PlanIndexedHistoMsrParams>();
    collection->insert({0, 0, 0}, makePtr<HistoMsrParams>(*params));
    return collection;
}

} // namespace

Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                                            const Ptr<const HistoMsrParams>& params)
{
    return Forms::single<InImg, InOptPIHistoMsrParams>(image, forFirstPlan(params));
}

Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const HistoMsrParams>& params)
{
    return Forms::singleAsync<InImg, InOptPIHistoMsrParams>(image, forFirstPlan(params));
}

Ptr<PlanIndexedGlobalEntropyResult> multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg>(image);
}

Ptr<GlobalEntropyMsr2dLvl1> multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg>(image);
}

Ptr<PlanIndexedGlobalEntropyResult> multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                                                                  const Ptr<const PlanIndexedHistoMsrParams>& params)
{
    return Forms::everyPlan<InImg, InOptPIHistoMsrParams>(image, params);
}

Ptr<GlobalEntropyMsr2dLvl1> multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const PlanIndexedHistoMsrParams>& params)
{
    return Forms::everyPlanAsync<InImg, InOptPIHistoMsrParams>(image, params);
}

Ptr<GlobalEntropyResult> getAsyncProcessorOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedGlobalEntropyResult> getAsyncProcessorMultiSliceOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
