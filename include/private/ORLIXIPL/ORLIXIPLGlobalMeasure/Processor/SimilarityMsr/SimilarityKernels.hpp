#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::imaproc::glbmsr
{

/// What a kernel accumulates over the segments of a pair of strips.
struct SquaredDifferences
{
    static constexpr std::size_t lanes = 16;

    Int128 sum;             ///< of integer pixels
    std::size_t position;   ///< float pixels so far
    double laneSums[lanes]; ///< float pixel i is added to lane i mod 16; the generic kernel uses only lane 0
};

/// Adds the squares of the differences of two runs of one size.
template <class T>
using SimilarityKernel = void (*)(Run<T>, Run<T>, SquaredDifferences&);

using SimilarityKernels = KernelsByType<SimilarityKernel>;

const KernelTables<SimilarityKernels>& getSimilarityKernels();

} // namespace orlix::imaproc::glbmsr
