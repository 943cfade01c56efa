#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImgLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/SeqProjectionLvl2.inl>

namespace orlix::imaproc::glbmsr
{

ProcessorClass ZProjectionImgLvl2::processorClass = declare<ZProjectionImgLvl2>("ZProjectionImgLvl2", 112);

ZProjectionImgLvl2::ZProjectionImgLvl2() = default;
ZProjectionImgLvl2::~ZProjectionImgLvl2() = default;

} // namespace orlix::imaproc::glbmsr
