#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImgLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every pixel over the times of an image.
class ORLIX_API SeqProjectionImgLvl1 final
    : public ImageLvl1<SeqProjectionImgLvl1, SeqProjectionImgLvl2, Pass<OutSingleImg>, Pass<InSeqImg, InSubSeqImg2d>,
                       Pass<InProjStatType>>
{
public:
    SeqProjectionImgLvl1();
    ~SeqProjectionImgLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
