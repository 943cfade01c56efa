#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<HistogramData> histogramMaskMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsrLvl1>::single<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramMaskMsrLvl1> histogramMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                 const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<HistogramMaskMsrLvl1>::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramData> histogramMaskMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask,
                                    const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsrLvl1>::single<InImg, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramMaskMsrLvl1> histogramMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                 const Ptr<const image::BaseImage>& mask,
                                                 const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMaskMsrLvl1>::singleAsync<InImg, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMaskMsrLvl1>& processor)
{
    return CallingForms<HistogramMaskMsrLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
