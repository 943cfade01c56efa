#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass LocatePixels2dLvl2::processorClass = declare<LocatePixels2dLvl2>("LocatePixels2dLvl2", 35);

LocatePixels2dLvl2::LocatePixels2dLvl2() = default;
LocatePixels2dLvl2::~LocatePixels2dLvl2() = default;

} // namespace orlix::imaproc::glbmsr
