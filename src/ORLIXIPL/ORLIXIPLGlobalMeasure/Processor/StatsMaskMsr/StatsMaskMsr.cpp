#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<StatsMaskMsrLvl1>;

Ptr<StatsResult> statsMaskMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return Forms::single<InImg, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsrLvl1> statsMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                         const Ptr<const image::BaseImage>& mask)
{
    return Forms::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsrLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
