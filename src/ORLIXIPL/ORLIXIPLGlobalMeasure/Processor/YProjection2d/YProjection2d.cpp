#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<Doubles> yProjection2d(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<YProjection2dLvl1>::single<InSubImg2d, InProjStatType>(image, statistic);
}

Ptr<YProjection2dLvl1> yProjection2d_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<YProjection2dLvl1>::singleAsync<InSubImg2d, InProjStatType>(image, statistic);
}

Ptr<Doubles> getAsyncProcessorOutput(const Ptr<YProjection2dLvl1>& processor)
{
    return CallingForms<YProjection2dLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
