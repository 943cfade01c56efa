#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<HistogramData> histogramMsr3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr3dLvl1>::single<InImg3d>(image);
}

Ptr<HistogramMsr3dLvl1> histogramMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr3dLvl1>::singleAsync<InImg3d>(image);
}

Ptr<HistogramData> histogramMsr3d(const Ptr<const image::BaseImage>& image, const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr3dLvl1>::single<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr3dLvl1> histogramMsr3d_async(const Ptr<const image::BaseImage>& image,
                                             const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr3dLvl1>::singleAsync<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr3dLvl1>::everyPlan<InImg3d>(image);
}

Ptr<HistogramMsr3dLvl1> multiSlice_histogramMsr3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsr3dLvl1>::everyPlanAsync<InImg3d>(image);
}

Ptr<PlanIndexedHistogramData> multiSlice_histogramMsr3d(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr3dLvl1>::everyPlan<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsr3dLvl1> multiSlice_histogramMsr3d_async(const Ptr<const image::BaseImage>& image,
                                                        const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsr3dLvl1>::everyPlanAsync<InImg3d, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsr3dLvl1>& processor)
{
    return CallingForms<HistogramMsr3dLvl1>::output(processor);
}

Ptr<PlanIndexedHistogramData> getAsyncProcessorMultiSliceOutput(const Ptr<HistogramMsr3dLvl1>& processor)
{
    return CallingForms<HistogramMsr3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
