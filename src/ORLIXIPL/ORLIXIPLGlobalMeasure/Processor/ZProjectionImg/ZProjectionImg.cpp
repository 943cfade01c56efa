#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImg.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<image::BaseImage> zProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<ZProjectionImgLvl1>::single<InImg3d, InProjStatType>(image, statistic);
}

Ptr<image::BaseImage> zProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                     const Ptr<image::BaseImage>& output)
{
    return CallingForms<ZProjectionImgLvl1>::single<InImg3d, InProjStatType, OutImg2d>(image, statistic, output);
}

Ptr<ZProjectionImgLvl1> zProjectionImg_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<ZProjectionImgLvl1>::singleAsync<InImg3d, InProjStatType>(image, statistic);
}

Ptr<ZProjectionImgLvl1> zProjectionImg_async(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                             const Ptr<image::BaseImage>& output)
{
    return CallingForms<ZProjectionImgLvl1>::singleAsync<InImg3d, InProjStatType, OutImg2d>(image, statistic, output);
}

Ptr<image::BaseImage> getAsyncProcessorOutput(const Ptr<ZProjectionImgLvl1>& processor)
{
    return CallingForms<ZProjectionImgLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
