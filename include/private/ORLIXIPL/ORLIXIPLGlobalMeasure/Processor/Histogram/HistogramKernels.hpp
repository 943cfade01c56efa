#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/kernel/ValueTables.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::imaproc::glbmsr
{

/// The bins of a histogram, as pixels see them.
struct BinRule
{
    double min;
    double binWidth;
    float minF; ///< the bounds as pixels are compared with them, in single precision
    float maxF;
    std::uint32_t size; ///< bins and the guard bin
};

/// What a histogram kernel counts into.
struct BinCounts : ValueTables
{
    /// Integer pixels: they are counted by value, and bins come later; as pixels of 8 bits always are.
    bool byValue;
    /// Else entry i is bin i.
    BinRule rule;
    /// Vector kernels find the bin of a pixel as (pixel - base) * inverse in single precision, and ask the rule where
    /// the product is closer to a bin border than its error. `approximate` tells whether that is worth while.
    bool approximate;
    float base;
    float inverse;
    float slack; ///< the part of the error that does not grow with the bin
};

template <class T>
using HistogramKernel = void (*)(Run<T>, const BinCounts&);
template <class T>
using HistogramMaskKernel = void (*)(MaskedRun<T>, const BinCounts&);

using HistogramKernels = KernelsByType<HistogramKernel>;
using HistogramMaskKernels = KernelsByType<HistogramMaskKernel>;

const KernelTables<HistogramKernels>& getHistogramKernels();
const KernelTables<HistogramMaskKernels>& getHistogramMaskKernels();

namespace
{

/// The bin of a pixel; `size`, which is none, for a pixel that does not count. Rounding to single precision may lift
/// a value just below the upper bound into the guard bin.
[[gnu::always_inline]] inline std::uint32_t binOf(float pixel, const BinRule& rule)
{
    if (pixel >= rule.minF && pixel < rule.maxF) {
        const float quotient = float((double(pixel) - rule.min) / rule.binWidth);
        // Below 0 where the bounds are finer than single precision, NaN where the width is 0.
        const bool isIndex = quotient > -1 && quotient < 0x1p32f;
        const std::uint32_t index = isIndex ? std::uint32_t(std::int64_t(quotient)) : rule.size;
        return index < rule.size ? index : rule.size;
    }
    return pixel == rule.maxF ? rule.size - 2 : rule.size;
}

} // namespace

} // namespace orlix::imaproc::glbmsr
