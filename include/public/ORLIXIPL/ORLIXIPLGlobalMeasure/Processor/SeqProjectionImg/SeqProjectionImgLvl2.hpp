#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every pixel over the times of one 2d sequence.
class ORLIX_API SeqProjectionImgLvl2 final : public SeqProjectionLvl2<SeqProjectionImgLvl2, InSubSeqImg2d, OutSingleImg>
{
public:
    SeqProjectionImgLvl2();
    ~SeqProjectionImgLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
