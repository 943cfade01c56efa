#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<StatsResult> statsMaskMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsrLvl1>::single<InImg, InMaskImg>(image, mask);
}

Ptr<StatsMaskMsrLvl1> statsMaskMsr_async(const Ptr<const image::BaseImage>& image,
                                         const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<StatsMaskMsrLvl1>::singleAsync<InImg, InMaskImg>(image, mask);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMaskMsrLvl1>& processor)
{
    return CallingForms<StatsMaskMsrLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
