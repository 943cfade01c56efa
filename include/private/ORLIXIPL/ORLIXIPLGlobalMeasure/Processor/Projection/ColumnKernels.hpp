#pragma once

#include <framework/kernel/Columns.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::imaproc::glbmsr
{

/// What is made of columns of pixels of type T. All take any part of the columns; sum, squares, minimum and maximum go
/// on from what earlier parts left. All sets give the same bits.
template <class T>
struct ColumnKernel
{
    void (*sum)(Columns<T>, double* sums);
    void (*squares)(Columns<T>, double* sums, double* sumsOfSquares);
    void (*minimum)(Columns<T>, T* minima); ///< m = x < m ? x : m, so that a NaN never replaces a number
    void (*maximum)(Columns<T>, T* maxima); ///< m = x > m ? x : m
    /// The pixels of rank count / 2, NaN coming after every number. `scratch` has scratchBytes(width, count) bytes, or
    /// those of a wider part.
    void (*median)(Columns<T>, unsigned char* scratch, T* medians);
    std::size_t (*scratchBytes)(std::size_t width, std::size_t count);
};

using ColumnKernels = KernelsByType<ColumnKernel>;

const KernelTables<ColumnKernels>& getColumnKernels();

} // namespace orlix::imaproc::glbmsr
