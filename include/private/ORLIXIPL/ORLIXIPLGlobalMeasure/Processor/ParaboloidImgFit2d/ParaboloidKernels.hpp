#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::imaproc::glbmsr
{

/// Sums over the pixels z of one row at columns x.
struct RowSums
{
    double z = 0;
    double xz = 0;
    double x2z = 0;
    // Over the pixels that the mask selects.
    double n = 0;
    double x = 0;
    double x2 = 0;
    double x3 = 0;
    double x4 = 0;
};

/// `columns` are 0, 1, 2, ... . Pixel i is added to lane i mod 16, whatever the width of the registers.
template <class T>
struct ParaboloidKernel
{
    RowSums (*sum)(Run<T>, const double* columns);
    RowSums (*sumMasked)(MaskedRun<T>, const double* columns);
};

using ParaboloidKernels = KernelsByType<ParaboloidKernel>;

const KernelTables<ParaboloidKernels>& getParaboloidKernels();

} // namespace orlix::imaproc::glbmsr
