#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

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
    std::uint64_t selected; ///< pixels that count, of masked runs only
    std::size_t position;   ///< float pixels so far
    double laneSums[lanes]; ///< float pixel i is added to lane i mod 16; the generic kernel uses only lane 0
    double laneSquares[lanes];
};

template <class T>
using StatsKernel = void (*)(Run<T>, Moments&);

using StatsKernels = KernelsByType<StatsKernel>;

template <class T>
using StatsMaskKernel = void (*)(MaskedRun<T>, Moments&);

using StatsMaskKernels = KernelsByType<StatsMaskKernel>;

const KernelTables<StatsKernels>& getStatsKernels();
const KernelTables<StatsMaskKernels>& getStatsMaskKernels();

} // namespace orlix::imaproc::glbmsr
