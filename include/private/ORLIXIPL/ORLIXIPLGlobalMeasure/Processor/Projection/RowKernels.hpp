#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsKernels.hpp>

namespace orlix::imaproc::glbmsr
{

/// What is made of rows of pixels of type T: parts of what the statistics kernels do. A row may come in several runs;
/// sums and extremes go on from what earlier runs left.
template <class T>
struct RowKernel
{
    StatsKernel<T> sum;      ///< fills in only the sum of Moments
    StatsKernel<T> squares;  ///< fills in sum and sum of squares
    StatsKernel<T> extremes; ///< fills in only minimum and maximum
    /// The pixel of rank size / 2, NaN coming after every number. `scratch` has rowScratchBytes<T>(size) bytes.
    T (*median)(Run<T>, unsigned char* scratch);
};

using RowKernels = KernelsByType<RowKernel>;

const KernelTables<RowKernels>& getRowKernels();

} // namespace orlix::imaproc::glbmsr
