#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass StatsMaskMsr3dLvl3::processorClass = declareAlgorithm<StatsMaskMsr3dLvl3>("StatsMaskMsr3dLvl3", 74);

StatsMaskMsr3dLvl3::StatsMaskMsr3dLvl3() = default;
StatsMaskMsr3dLvl3::~StatsMaskMsr3dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
