#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelsByType.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Run.hpp>

namespace orlix::imaproc::glbmsr
{

/// What a statistics kernel accumulates over the runs of a strip. It does not matter how the strip is cut into runs.
struct Moments
{
    static constexpr std::size_t lanes = 16;

    double min; ///< minimum and maximum start where the caller wants them, the rest at 0
    double max;
    Int128 sum; ///< of integer pixels
    Int128 sumSq;
    std::uint64_t selected; ///< pixels that count, of masked runs alone
    std::size_t position;   ///< float pixels so far
    double laneSums[lanes]; ///< float pixel i is added to lane i mod 16; the generic kernel uses lane 0 alone
    double laneSquares[lanes];
};

template <class T>
using StatsKernel = void (*)(Run<T>, Moments&);

using StatsKernels = KernelsByType<StatsKernel>;

template <class T>
using StatsMaskKernel = void (*)(MaskedRun<T>, Moments&);

using StatsMaskKernels = KernelsByType<StatsMaskKernel>;

// One table per kernel file, each usable only where its instruction set is.
extern const StatsKernels statsKernels_generic;
extern const StatsKernels statsKernels_sse2;
extern const StatsKernels statsKernels_avx; ///< float alone
extern const StatsKernels statsKernels_avx2;
extern const StatsKernels statsKernels_avx512;
extern const StatsKernels statsKernels_avx512vnni; ///< 8 and 16 bits
extern const StatsKernels statsKernels_avx512ifma; ///< 32-bit integers

extern const StatsMaskKernels statsMaskKernels_generic;
extern const StatsMaskKernels statsMaskKernels_sse2;
extern const StatsMaskKernels statsMaskKernels_avx2;
extern const StatsMaskKernels statsMaskKernels_avx512;
extern const StatsMaskKernels statsMaskKernels_avx512vnni; ///< 8 and 16 bits
extern const StatsMaskKernels statsMaskKernels_avx512ifma; ///< 32-bit integers

} // namespace orlix::imaproc::glbmsr
