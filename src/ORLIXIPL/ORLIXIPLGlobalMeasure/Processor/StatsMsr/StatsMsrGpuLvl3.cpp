#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrGpuLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsGpu.inl>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

CudaAlgorithmClass StatsMsrGpuLvl3::processorClass{makeIdentity("StatsMsrGpuLvl3", 86, __builtin_FILE()), creators(),
                                                   &functionRegistration};

StatsMsrGpuLvl3::StatsMsrGpuLvl3() = default;
StatsMsrGpuLvl3::~StatsMsrGpuLvl3() = default;

namespace
{
const bool statsMsrOffered = ((StatsMsrLvl2::gpuVariant = makeGpuVariant<StatsMsrGpuLvl3, InSubImg2d>()), true);
} // namespace

} // namespace orlix::imaproc::glbmsr
