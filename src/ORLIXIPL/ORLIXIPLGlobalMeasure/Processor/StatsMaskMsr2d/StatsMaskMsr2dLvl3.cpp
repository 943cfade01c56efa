#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass StatsMaskMsr2dLvl3::processorClass = declareAlgorithm<StatsMaskMsr2dLvl3>("StatsMaskMsr2dLvl3", 71);

StatsMaskMsr2dLvl3::StatsMaskMsr2dLvl3() = default;
StatsMaskMsr2dLvl3::~StatsMaskMsr2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
