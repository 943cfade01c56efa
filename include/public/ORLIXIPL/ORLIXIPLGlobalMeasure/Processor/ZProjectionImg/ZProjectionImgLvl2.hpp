#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every pixel over the planes of one volume.
class ORLIX_API ZProjectionImgLvl2 final : public SeqProjectionLvl2<ZProjectionImgLvl2, InSubImg3d, OutImg2d>
{
public:
    ZProjectionImgLvl2();
    ~ZProjectionImgLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
