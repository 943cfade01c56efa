#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::imaproc::glbmsr
{

/// What a noise kernel accumulates over the rows of a strip.
struct AbsResponses
{
    static constexpr std::size_t lanes = 16;

    Int128 sum;             ///< of integer pixels
    double laneSums[lanes]; ///< the response at column x of a float image is added to lane x mod 16
};

/// Adds the absolute responses at the pixels of a row `at`, between those `above` and `below` it.
template <class T>
using GaussianNoiseKernel = void (*)(const T* above, const T* at, const T* below, std::size_t size, AbsResponses&);

using GaussianNoiseKernels = KernelsByType<GaussianNoiseKernel>;

const KernelTables<GaussianNoiseKernels>& getGaussianNoiseKernels();

} // namespace orlix::imaproc::glbmsr
