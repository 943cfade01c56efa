#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelsByType.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Run.hpp>

namespace orlix::imaproc::glbmsr
{

/// What a statistics kernel accumulates over the runs of a strip.
struct Moments
{
    double sum;
    double sumSq;
    double min;
    double max;
};

template <class T>
using StatsKernel = void (*)(Run<T>, Moments&);

using StatsKernels = KernelsByType<StatsKernel>;

// One table per kernel file, each usable only where its instruction set is.
extern const StatsKernels statsKernels_generic;
extern const StatsKernels statsKernels_sse2;
extern const StatsKernels statsKernels_avx; ///< float alone
extern const StatsKernels statsKernels_avx2;
extern const StatsKernels statsKernels_avx512;
extern const StatsKernels statsKernels_avx512vnni; ///< 8 and 16 bits
extern const StatsKernels statsKernels_avx512ifma; ///< 32-bit integers

} // namespace orlix::imaproc::glbmsr
