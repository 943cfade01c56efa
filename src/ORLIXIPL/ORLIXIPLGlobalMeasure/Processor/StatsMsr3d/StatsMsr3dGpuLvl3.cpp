#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dGpuLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.inl>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

CudaAlgorithmClass StatsMsr3dGpuLvl3::processorClass{makeIdentity("StatsMsr3dGpuLvl3", 82, __builtin_FILE()),
                                                     creators(), &functionRegistration};

StatsMsr3dGpuLvl3::StatsMsr3dGpuLvl3() = default;
StatsMsr3dGpuLvl3::~StatsMsr3dGpuLvl3() = default;

namespace
{
const bool statsMsr3dOffered = ((StatsMsr3dLvl2::gpuVariant = makeGpuVariant<StatsMsr3dGpuLvl3, InSubImg3d>()), true);
} // namespace

} // namespace orlix::imaproc::glbmsr
