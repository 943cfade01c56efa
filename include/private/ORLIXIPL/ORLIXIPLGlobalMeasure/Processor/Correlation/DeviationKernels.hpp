#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelsByType.hpp>

#include <cstddef>

namespace orlix::imaproc::glbmsr
{

/// Pixels less a number, in its precision.
template <class T, class Number>
struct DeviationsOf
{
    const T* pixels;
    Number mean;
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

/// What is summed of pixels of type T and those of another image: of the same type, or of any type, as deviations that
/// its own kernel has read. All sets give the same bits. A segment may come in parts of multiples of `lanes` pixels,
/// but for the last.
template <class T>
struct DeviationKernel
{
    void (*readFloats)(DeviationsOf<T, float>, std::size_t size, float* deviations);
    void (*readDoubles)(DeviationsOf<T, double>, std::size_t size, double* deviations);
    void (*addCross)(DeviationsOf<T, float>, const float* deviations, std::size_t size, CrossSums&);
    void (*addCrossOfPair)(DeviationsOf<T, float>, DeviationsOf<T, float>, std::size_t size, CrossSums&);
    void (*addProducts)(DeviationsOf<T, double>, const double* deviations, std::size_t size, ProductSum&);
    void (*addProductsOfPair)(DeviationsOf<T, double>, DeviationsOf<T, double>, std::size_t size, ProductSum&);
};

using DeviationKernels = KernelsByType<DeviationKernel>;

// One table per kernel file, each usable only where its instruction set is.
extern const DeviationKernels deviationKernels_generic;
extern const DeviationKernels deviationKernels_sse2;
extern const DeviationKernels deviationKernels_avx2;
extern const DeviationKernels deviationKernels_avx512;

} // namespace orlix::imaproc::glbmsr
