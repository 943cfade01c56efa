#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<Doubles> xProjection2d(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<XProjection2dLvl1>::single<InSubImg2d, InProjStatType>(image, statistic);
}

Ptr<XProjection2dLvl1> xProjection2d_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<XProjection2dLvl1>::singleAsync<InSubImg2d, InProjStatType>(image, statistic);
}

Ptr<Doubles> getAsyncProcessorOutput(const Ptr<XProjection2dLvl1>& processor)
{
    return CallingForms<XProjection2dLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
