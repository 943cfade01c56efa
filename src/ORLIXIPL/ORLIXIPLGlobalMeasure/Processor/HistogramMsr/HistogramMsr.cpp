#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<HistogramMsrLvl1>;

Ptr<HistogramData> histogramMsr(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<HistogramMsrLvl1> histogramMsr_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<HistogramData> histogramMsr(const Ptr<const image::BaseImage>& image, const Ptr<const HistoMsrParams>& params)
{
    return Forms::single<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsrLvl1> histogramMsr_async(const Ptr<const image::BaseImage>& image,
                                         const Ptr<const HistoMsrParams>& params)
{
    return Forms::singleAsync<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsrLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
