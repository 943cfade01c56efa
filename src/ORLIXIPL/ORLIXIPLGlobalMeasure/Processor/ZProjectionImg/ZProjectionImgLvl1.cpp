#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImgLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass ZProjectionImgLvl1::processorClass = declare<ZProjectionImgLvl1>("ZProjectionImgLvl1", 111);

ZProjectionImgLvl1::ZProjectionImgLvl1() = default;
ZProjectionImgLvl1::~ZProjectionImgLvl1() = default;

} // namespace orlix::imaproc::glbmsr
