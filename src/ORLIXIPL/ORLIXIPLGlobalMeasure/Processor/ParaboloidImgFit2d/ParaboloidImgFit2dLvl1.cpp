#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass ParaboloidImgFit2dLvl1::processorClass = declare<ParaboloidImgFit2dLvl1>("ParaboloidImgFit2dLvl1", 47);

ParaboloidImgFit2dLvl1::ParaboloidImgFit2dLvl1() = default;
ParaboloidImgFit2dLvl1::~ParaboloidImgFit2dLvl1() = default;

} // namespace orlix::imaproc::glbmsr
