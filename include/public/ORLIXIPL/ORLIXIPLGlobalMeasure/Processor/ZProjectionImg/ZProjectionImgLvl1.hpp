#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImgLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// A statistic of every pixel over the planes of an image, for each channel and time.
class ORLIX_API ZProjectionImgLvl1 final : public ImageLvl1<ZProjectionImgLvl1, ZProjectionImgLvl2, Pass<OutImg2d>,
                                                            Pass<InImg3d, InSubImg3d>, Pass<InProjStatType>>
{
public:
    ZProjectionImgLvl1();
    ~ZProjectionImgLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
