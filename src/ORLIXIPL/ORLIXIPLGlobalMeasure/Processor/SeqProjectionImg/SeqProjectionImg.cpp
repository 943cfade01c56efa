#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImg.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<SeqProjectionImgLvl1>;

Ptr<image::BaseImage> seqProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic)
{
    return Forms::single<InSeqImg, InProjStatType>(image, statistic);
}

Ptr<image::BaseImage> seqProjectionImg(const Ptr<const image::BaseImage>& image, const eProjStatType& statistic,
                                       const Ptr<image::BaseImage>& output)
{
    return Forms::single<InSeqImg, InProjStatType, OutSingleImg>(image, statistic, output);
}

Ptr<SeqProjectionImgLvl1> seqProjectionImg_async(const Ptr<const image::BaseImage>& image,
                                                 const eProjStatType& statistic)
{
    return Forms::singleAsync<InSeqImg, InProjStatType>(image, statistic);
}

Ptr<SeqProjectionImgLvl1> seqProjectionImg_async(const Ptr<const image::BaseImage>& image,
                                                 const eProjStatType& statistic, const Ptr<image::BaseImage>& output)
{
    return Forms::singleAsync<InSeqImg, InProjStatType, OutSingleImg>(image, statistic, output);
}

Ptr<image::BaseImage> getAsyncProcessorOutput(const Ptr<SeqProjectionImgLvl1>& processor)
{
    return Forms::output(processor);
}

} // namespace orlix::imaproc::glbmsr
