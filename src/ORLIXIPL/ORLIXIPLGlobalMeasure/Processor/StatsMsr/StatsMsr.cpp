#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<StatsResult> statsMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsrLvl1>::single<InImg>(image);
}

Ptr<StatsMsrLvl1> statsMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<StatsMsrLvl1>::singleAsync<InImg>(image);
}

Ptr<StatsResult> getAsyncProcessorOutput(const Ptr<StatsMsrLvl1>& processor)
{
    return CallingForms<StatsMsrLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
