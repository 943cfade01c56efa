#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass AreaPercent2dMsrLvl3::processorClass = declareAlgorithm<AreaPercent2dMsrLvl3>("AreaPercent2dMsrLvl3", 2);

AreaPercent2dMsrLvl3::AreaPercent2dMsrLvl3() = default;
AreaPercent2dMsrLvl3::~AreaPercent2dMsrLvl3() = default;

} // namespace orlix::imaproc::glbmsr
