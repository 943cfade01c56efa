#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

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

/// Sums over deviations. Of a segment, deviation i is added to float lane i mod 16; then lanes k and k + 8 to double
/// lane k.
struct CrossSums
{
    static constexpr std::size_t lanes = 8;
    static constexpr std::size_t segment = 1024; ///< the longest, so that sums in single precision stay short

    double squares1[lanes];
    double squares2[lanes];
    double products[lanes];
};

/// Products of deviations: number i of a row, or of its part from a multiple of `lanes` on, is added to lane i mod 16.
struct ProductSums
{
    static constexpr std::size_t lanes = 16;

    double products[lanes];
};

/// Exact sums over pairs of pixels.
struct PairTotals
{
    Int128 sum1;
    Int128 sum2;
    Int128 squares1;
    Int128 squares2;
    Int128 products;
};

/// How pixels of type T are summed with those of another image: of any type, as deviations that its own kernel has
/// read, or of the same type. Pairs of 8 and 16 bits are summed exactly, others as deviations; the way that is not
/// theirs is null.
template <class T, class Number, class Sums>
struct SumKernel
{
    void (*add)(DeviationsOf<T, Number>, const Number* deviations, std::size_t size, Sums&);
    void (*addPair)(DeviationsOf<T, Number>, DeviationsOf<T, Number>, std::size_t size, Sums&);
    void (*addPairExactly)(Run<T>, Run<T>, PairTotals&); ///< squares where Sums has them
};

/// All sets give the same bits.
template <class T>
struct DeviationKernel
{
    void (*readFloats)(DeviationsOf<T, float>, std::size_t size, float* deviations);
    void (*readDoubles)(DeviationsOf<T, double>, std::size_t size, double* deviations);
    SumKernel<T, float, CrossSums> cross;
    SumKernel<T, double, ProductSums> products;
};

using DeviationKernels = KernelsByType<DeviationKernel>;

const KernelTables<DeviationKernels>& getDeviationKernels();

} // namespace orlix::imaproc::glbmsr
