#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernelTables.hpp>

namespace orlix::imaproc::glbmsr
{

template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_Generic>()
{
    return statsKernels_generic;
}

template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_SSE2>()
{
    return statsKernels_sse2;
}

template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_AVX>()
{
    return statsKernels_avx;
}

template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_AVX2>()
{
    return statsKernels_avx2;
}

template <>
const StatsKernels& statsKernels<core::eInstructionSet::eIS_AVX512>()
{
    static const StatsKernels best = [] {
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
    }();
    return best;
}

} // namespace orlix::imaproc::glbmsr
