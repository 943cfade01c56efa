#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImg.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<image::BaseImage> seqProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return CallingForms<SeqProjectionImgLvl1>::single<InSeqImg, InProjStatType>(image, statistic);
}

Ptr<image::BaseImage> seqProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                       const Ptr<image::BaseImage>& output)
{
    return CallingForms<SeqProjectionImgLvl1>::single<InSeqImg, InProjStatType, OutSingleImg>(image, statistic, output);
}

Ptr<SeqProjectionImgLvl1> seqProjectionImg_async(const Ptr<const image::BaseImage>& image,
                                                 const eProjStatType& statistic)
{
    return CallingForms<SeqProjectionImgLvl1>::singleAsync<InSeqImg, InProjStatType>(image, statistic);
}

Ptr<SeqProjectionImgLvl1> seqProjectionImg_async(const Ptr<const image::BaseImage>& image,
                                                 const eProjStatType& statistic, const Ptr<image::BaseImage>& output)
{
    return CallingForms<SeqProjectionImgLvl1>::singleAsync<InSeqImg, InProjStatType, OutSingleImg>(image, statistic,
                                                                                                   output);
}

Ptr<image::BaseImage> getAsyncProcessorOutput(const Ptr<SeqProjectionImgLvl1>& processor)
{
    return CallingForms<SeqProjectionImgLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
