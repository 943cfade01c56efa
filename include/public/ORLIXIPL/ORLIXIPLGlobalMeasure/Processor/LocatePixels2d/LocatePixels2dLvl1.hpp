#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The set pixels of every 2d plan of a binary image.
class ORLIX_API LocatePixels2dLvl1 final
    : public PlanIndexedLvl1<LocatePixels2dLvl1, LocatePixels2dLvl2, Pass<OutPIPixels2d, OutPixels2d>,
                             Pass<InBinImg, InSubBinImg2d>, Pass<InNbFeatures>>
{
public:
    LocatePixels2dLvl1();
    ~LocatePixels2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
