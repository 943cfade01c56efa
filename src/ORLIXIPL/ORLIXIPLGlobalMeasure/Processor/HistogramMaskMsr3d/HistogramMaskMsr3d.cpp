#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<HistogramData> histogramMaskMsr3d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::single<InImg3d, InMaskImg>(image, mask);
}

Ptr<HistogramMaskMsr3dLvl1> histogramMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::singleAsync<InImg3d, InMaskImg>(image, mask);
}

Ptr<HistogramData> histogramMaskMsr3d(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask,
                                      const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::single<InImg3d, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramMaskMsr3dLvl1> histogramMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask,
                                                     const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::singleAsync<InImg3d, InMaskImg, InOptHistoMsrParams>(image, mask,
                                                                                                      params);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMaskMsr3d(const Ptr<const image::BaseImage>& image,
                                                            const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::everyPlan<InImg3d, InMaskImg>(image, mask);
}

Ptr<HistogramMaskMsr3dLvl1> multiSlice_histogramMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::everyPlanAsync<InImg3d, InMaskImg>(image, mask);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMaskMsr3d(const Ptr<const image::BaseImage>& image,
                                                            const Ptr<const image::BaseImage>& mask,
                                                            const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::everyPlan<InImg3d, InMaskImg, InOptHistoMsrParams>(image, mask,
                                                                                                    params);
}

Ptr<HistogramMaskMsr3dLvl1> multiSlice_histogramMaskMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask,
                                                                const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::everyPlanAsync<InImg3d, InMaskImg, InOptHistoMsrParams>(image, mask,
                                                                                                         params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMaskMsr3dLvl1>& processor)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::output(processor);
}

Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMaskMsr3dLvl1>& processor)
{
    return CallingForms<HistogramMaskMsr3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
