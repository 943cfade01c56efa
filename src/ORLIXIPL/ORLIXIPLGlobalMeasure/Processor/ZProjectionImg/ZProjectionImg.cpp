#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImg.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<ZProjectionImgLvl1>;

Ptr<image::BaseImage> zProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return Forms::single<InImg3d, InProjStatType>(image, statistic);
}

Ptr<image::BaseImage> zProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                     const Ptr<image::BaseImage>& output)
{
    return Forms::single<InImg3d, InProjStatType, OutImg2d>(image, statistic, output);
}

Ptr<ZProjectionImgLvl1> zProjectionImg_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return Forms::singleAsync<InImg3d, InProjStatType>(image, statistic);
}

Ptr<ZProjectionImgLvl1> zProjectionImg_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                             const Ptr<image::BaseImage>& output)
{
    return Forms::singleAsync<InImg3d, InProjStatType, OutImg2d>(image, statistic, output);
}

Ptr<image::BaseImage> getAsyncProcessorOutput(const Ptr<ZProjectionImgLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
