#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelsByType.hpp>

#include <cstddef>

namespace orlix::imaproc::glbmsr
{

/// Pixels less a number.
template <class T>
struct DeviationReader
{
    void (*floats)(const T* pixels, std::size_t size, float mean, float* deviations);    ///< in single precision
    void (*doubles)(const T* pixels, std::size_t size, double mean, double* deviations); ///< in double precision
};

/// Sums over one segment. Pixel i of the segment is added to lane i mod `lanes`, whatever the width of the registers.
struct CrossSums
{
    static constexpr std::size_t lanes = 32;

    float squares1[lanes];
    float squares2[lanes];
    float products[lanes];
};

struct ProductSum
{
    static constexpr std::size_t lanes = 16;

    double products[lanes];
};

/// All sets give the same bits. The sums take segments in parts of multiples of `lanes` pixels, but for the last.
struct DeviationKernels : KernelsByType<DeviationReader>
{
    void (*addSquaresAndProducts)(const float* d1, const float* d2, std::size_t size, CrossSums&);
    void (*addProducts)(const double* d1, const double* d2, std::size_t size, ProductSum&);
};

// One table per kernel file, each usable only where its instruction set is.
extern const DeviationKernels deviationKernels_generic;
extern const DeviationKernels deviationKernels_sse2;
extern const DeviationKernels deviationKernels_avx2;
extern const DeviationKernels deviationKernels_avx512;

} // namespace orlix::imaproc::glbmsr
