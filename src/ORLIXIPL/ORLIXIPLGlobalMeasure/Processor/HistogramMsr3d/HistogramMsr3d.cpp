#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<HistogramMsr3dLvl1>;

Ptr<HistogramData> histogramMsr3d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg3d>(image);
}

Ptr<HistogramMsr3dLvl1> histogramMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg3d>(image);
}

Ptr<HistogramData> histogramMsr3d(const Ptr<const image::BaseImage>& image, const Ptr<const HistoMsrParams>& params)
{
    return Forms::single<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr3dLvl1> histogramMsr3d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const HistoMsrParams>& params)
{
    return Forms::singleAsync<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr3d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg3d>(image);
}

Ptr<HistogramMsr3dLvl1> multiSlice_histogramMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg3d>(image);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr3d(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return Forms::everyPlan<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr3dLvl1> multiSlice_histogramMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return Forms::everyPlanAsync<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsr3dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMsr3dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
