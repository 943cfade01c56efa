#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass StatsMsr2dLvl3::processorClass = declareAlgorithm<StatsMsr2dLvl3>("StatsMsr2dLvl3", 81);

StatsMsr2dLvl3::StatsMsr2dLvl3() = default;
StatsMsr2dLvl3::~StatsMsr2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
