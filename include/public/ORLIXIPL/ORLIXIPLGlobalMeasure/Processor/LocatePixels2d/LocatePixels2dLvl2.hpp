#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The set pixels of one 2d plan.
class ORLIX_API LocatePixels2dLvl2 final
    : public LocateSubImage<LocatePixels2dLvl2, LocatePixels2dLvl3, OutPixels2d, Pass<InSubBinImg2d, InBinYStrip2d>>
{
public:
    LocatePixels2dLvl2();
    ~LocatePixels2dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
