#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass LocatePixels2dLvl1::processorClass = declare<LocatePixels2dLvl1>("LocatePixels2dLvl1", 34);

LocatePixels2dLvl1::LocatePixels2dLvl1() = default;
LocatePixels2dLvl1::~LocatePixels2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
