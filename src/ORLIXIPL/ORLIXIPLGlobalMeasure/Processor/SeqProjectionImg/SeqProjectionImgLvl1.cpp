#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImgLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass SeqProjectionImgLvl1::processorClass = declare<SeqProjectionImgLvl1>("SeqProjectionImgLvl1", 57);

SeqProjectionImgLvl1::SeqProjectionImgLvl1() = default;
SeqProjectionImgLvl1::~SeqProjectionImgLvl1() = default;

} // namespace orlix::imaproc::glbmsr
