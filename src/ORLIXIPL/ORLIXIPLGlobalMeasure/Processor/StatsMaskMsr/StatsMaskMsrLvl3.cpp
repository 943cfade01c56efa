#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsStrip.inl>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass StatsMaskMsrLvl3::processorClass = declareAlgorithm<StatsMaskMsrLvl3>("StatsMaskMsrLvl3", 77);

StatsMaskMsrLvl3::StatsMaskMsrLvl3() = default;
StatsMaskMsrLvl3::~StatsMaskMsrLvl3() = default;

} // namespace orlix::imaproc::glbmsr
