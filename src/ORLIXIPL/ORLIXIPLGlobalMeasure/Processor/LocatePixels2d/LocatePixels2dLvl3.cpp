#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass LocatePixels2dLvl3::processorClass = declareAlgorithm<LocatePixels2dLvl3>("LocatePixels2dLvl3", 36);

LocatePixels2dLvl3::LocatePixels2dLvl3() = default;
LocatePixels2dLvl3::~LocatePixels2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
