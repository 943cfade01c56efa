#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImgLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/SeqProjectionLvl2.inl>

namespace orlix::imaproc::glbmsr
{

ProcessorClass SeqProjectionImgLvl2::processorClass = declare<SeqProjectionImgLvl2>("SeqProjectionImgLvl2", 58);

SeqProjectionImgLvl2::SeqProjectionImgLvl2() = default;
SeqProjectionImgLvl2::~SeqProjectionImgLvl2() = default;

} // namespace orlix::imaproc::glbmsr
