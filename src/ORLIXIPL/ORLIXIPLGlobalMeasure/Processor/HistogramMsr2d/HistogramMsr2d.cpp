#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<HistogramData> histogramMsr2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr2dLvl1>::single<InImg>(image);
}

Ptr<HistogramMsr2dLvl1> histogramMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr2dLvl1>::singleAsync<InImg>(image);
}

Ptr<HistogramData> histogramMsr2d(const Ptr<const image::BaseImage>& image, const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr2dLvl1>::single<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr2dLvl1> histogramMsr2d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr2dLvl1>::singleAsync<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr2dLvl1>::everyPlan<InImg>(image);
}

Ptr<HistogramMsr2dLvl1> multiSlice_histogramMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr2dLvl1>::everyPlanAsync<InImg>(image);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr2d(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr2dLvl1>::everyPlan<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr2dLvl1> multiSlice_histogramMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr2dLvl1>::everyPlanAsync<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsr2dLvl1>& processor)
{
    return CallingForms<HistogramMsr2dLvl1>::output(processor);
}

Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMsr2dLvl1>& processor)
{
    return CallingForms<HistogramMsr2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
