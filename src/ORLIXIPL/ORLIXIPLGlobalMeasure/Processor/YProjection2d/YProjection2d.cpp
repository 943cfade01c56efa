#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<YProjection2dLvl1>;

Ptr<Doubles> yProjection2d(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return Forms::single<InSubImg2d, InProjStatType>(image, statistic);
}

Ptr<YProjection2dLvl1> yProjection2d_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return Forms::singleAsync<InSubImg2d, InProjStatType>(image, statistic);
}

Ptr<Doubles> getAsyncProcessorOutput(const Ptr<YProjection2dLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
