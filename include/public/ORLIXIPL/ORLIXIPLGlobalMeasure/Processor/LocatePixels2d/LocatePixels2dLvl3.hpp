#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The set pixels of one strip of rows.
class ORLIX_API LocatePixels2dLvl3 final : public LocateStrip<LocatePixels2dLvl3, InBinYStrip2d, OutPixels2d>
{
public:
    LocatePixels2dLvl3();
    ~LocatePixels2dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
