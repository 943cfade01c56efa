#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<HistogramData> histogramMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsrLvl1>::single<InImg>(image);
}

Ptr<HistogramMsrLvl1> histogramMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<HistogramMsrLvl1>::singleAsync<InImg>(image);
}

Ptr<HistogramData> histogramMsr(const Ptr<const image::BaseImage>& image, const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsrLvl1>::single<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramMsrLvl1> histogramMsr_async(const Ptr<const image::BaseImage>& image,
                                         const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<HistogramMsrLvl1>::singleAsync<InImg, InOptHistoMsrParams>(image, params);
}

Ptr<HistogramData> getAsyncProcessorOutput(const Ptr<HistogramMsrLvl1>& processor)
{
    return CallingForms<HistogramMsrLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
