#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernelTables.hpp>

#include <type_traits>

namespace orlix::imaproc::glbmsr
{

namespace
{

StatsKernels chooseAvx512Kernels()
{
    StatsKernels kernels = statsKernels_avx512;
    const auto take = [&]<class... T>(const StatsKernels& better, std::type_identity<T>...) {
        ((kernelOf<T>(kernels) = kernelOf<T>(better)), ...);
    };
    if (core::isAvailable(core::eInstructionExtension::eIE_Avx512Vnni)) {
        take(statsKernels_avx512vnni, std::type_identity<unsigned char>{}, std::type_identity<signed char>{},
             std::type_identity<unsigned short>{}, std::type_identity<short>{});
    }
    if (core::isAvailable(core::eInstructionExtension::eIE_Avx512Ifma)) {
        take(statsKernels_avx512ifma, std::type_identity<unsigned int>{}, std::type_identity<int>{});
    }
    return kernels;
}

} // namespace

const StatsKernels& getStatsKernels(core::eInstructionSet::domain domain)
{
    static const StatsKernels avx512 = chooseAvx512Kernels();
    switch (domain) {
    case core::eInstructionSet::eIS_SSE2:
        return statsKernels_sse2;
    case core::eInstructionSet::eIS_AVX:
        return statsKernels_avx;
    case core::eInstructionSet::eIS_AVX2:
        return statsKernels_avx2;
    case core::eInstructionSet::eIS_AVX512:
        return avx512;
    default:
        return statsKernels_generic;
    }
}

} // namespace orlix::imaproc::glbmsr
