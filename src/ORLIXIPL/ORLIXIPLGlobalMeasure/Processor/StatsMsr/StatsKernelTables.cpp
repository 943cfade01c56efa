#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernelTables.hpp>

namespace orlix::imaproc::glbmsr
{

using enum core::eInstructionExtension;

const KernelTables<StatsKernels>& getStatsKernels()
{
    static const KernelTables<StatsKernels> tables{
        statsKernels_generic, statsKernels_sse2, statsKernels_avx, statsKernels_avx2,
        withExtension(withExtension(statsKernels_avx512, eIE_Avx512Vnni, statsKernels_avx512vnni), eIE_Avx512Ifma,
                      statsKernels_avx512ifma)};
    return tables;
}

const KernelTables<StatsMaskKernels>& getStatsMaskKernels()
{
    static const KernelTables<StatsMaskKernels> tables{
        statsMaskKernels_generic,
        statsMaskKernels_sse2,
        {},
        statsMaskKernels_avx2,
        withExtension(withExtension(statsMaskKernels_avx512, eIE_Avx512Vnni, statsMaskKernels_avx512vnni),
                      eIE_Avx512Ifma, statsMaskKernels_avx512ifma)};
    return tables;
}

} // namespace orlix::imaproc::glbmsr
