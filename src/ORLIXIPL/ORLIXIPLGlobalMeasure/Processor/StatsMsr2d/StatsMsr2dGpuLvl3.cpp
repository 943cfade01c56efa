#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dGpuLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.inl>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

CudaAlgorithmClass StatsMsr2dGpuLvl3::processorClass{makeIdentity("StatsMsr2dGpuLvl3", 78, __builtin_FILE()),
                                                     creators(), &functionRegistration};

StatsMsr2dGpuLvl3::StatsMsr2dGpuLvl3() = default;
StatsMsr2dGpuLvl3::~StatsMsr2dGpuLvl3() = default;

namespace
{
const bool statsMsr2dOffered = ((StatsMsr2dLvl2::gpuVariant = makeGpuVariant<StatsMsr2dGpuLvl3, InSubImg2d>()), true);
} // namespace

} // namespace orlix::imaproc::glbmsr
