#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass StatsMsr3dLvl3::processorClass = declareAlgorithm<StatsMsr3dLvl3>("StatsMsr3dLvl3", 85);

StatsMsr3dLvl3::StatsMsr3dLvl3() = default;
StatsMsr3dLvl3::~StatsMsr3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
