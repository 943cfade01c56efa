#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<HistogramMaskMsrLvl1>;

Ptr<HistogramData> histogramMaskMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return Forms::single<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramMaskMsrLvl1> histogramMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                 const Ptr<const image::BaseImage>& mask)
{
    return Forms::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<HistogramData> histogramMaskMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask,
                                    const Ptr<const HistoMsrParams>& params)
{
    return Forms::single<InImg, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramMaskMsrLvl1> histogramMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                                 const Ptr<const image::BaseImage>& mask,
                                                 const Ptr<const HistoMsrParams>& params)
{
    return Forms::singleAsync<InImg, InMaskImg, InOptHistoMsrParams>(image, mask, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMaskMsrLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
