#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass StatsMsrLvl3::processorClass = declareAlgorithm<StatsMsrLvl3>("StatsMsrLvl3", 89);

StatsMsrLvl3::StatsMsrLvl3() = default;
StatsMsrLvl3::~StatsMsrLvl3() = default;

} // namespace orlix::imaproc::glbmsr
