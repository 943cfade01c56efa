#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<HistogramMsr2dLvl1>;

Ptr<HistogramData> histogramMsr2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<HistogramMsr2dLvl1> histogramMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<HistogramData> histogramMsr2d(const Ptr<const image::BaseImage>& image, const Ptr<const HistoMsrParams>& params)
{
    return Forms::single<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr2dLvl1> histogramMsr2d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const HistoMsrParams>& params)
{
    return Forms::singleAsync<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg>(image);
}

Ptr<HistogramMsr2dLvl1> multiSlice_histogramMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg>(image);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr2d(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return Forms::everyPlan<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr2dLvl1> multiSlice_histogramMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return Forms::everyPlanAsync<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsr2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMsr2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
