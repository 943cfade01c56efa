#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<HistogramData> histogramMaskMsr2d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::single<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramMaskMsr2dLvl1> histogramMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramData> histogramMaskMsr2d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask,
                                      const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::single<InImg, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramMaskMsr2dLvl1> histogramMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask,
                                                     const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::singleAsync<InImg, InMaskImg, InOptHistoMsrParams>(image, mask,
                                                                                                    params);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMaskMsr2d(const Ptr<const image::BaseImage>& image,
                                                            const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::everyPlan<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramMaskMsr2dLvl1> multiSlice_histogramMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::everyPlanAsync<InImg, InMaskImg>(image, mask);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMaskMsr2d(const Ptr<const image::BaseImage>& image,
                                                            const Ptr<const image::BaseImage>& mask,
                                                            const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::everyPlan<InImg, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramMaskMsr2dLvl1> multiSlice_histogramMaskMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask,
                                                                const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::everyPlanAsync<InImg, InMaskImg, InOptHistoMsrParams>(image, mask,
                                                                                                       params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMaskMsr2dLvl1>& processor)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::output(processor);
}

Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMaskMsr2dLvl1>& processor)
{
    return CallingForms<HistogramMaskMsr2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
