#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<GaussianNoiseMsrLvl1>;

Ptr<GaussianNoiseStats> gaussianNoiseMsr(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<GaussianNoiseMsrLvl1> gaussianNoiseMsr_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<GaussianNoiseStats> getAsyncProcessorOutput(const Ptr<GaussianNoiseMsrLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
