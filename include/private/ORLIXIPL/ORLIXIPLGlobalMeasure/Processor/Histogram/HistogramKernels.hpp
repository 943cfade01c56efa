#pragma once

#include <framework/kernel/Run.hpp>
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

/// What a histogram kernel counts into: one, two or eight tables, so that equal neighbours need not wait for each
/// other. Each has an entry `size` for what does not count.
struct BinCounts
{
    /// Where there are eight, they lie this far apart.
    static constexpr std::size_t stride = 2048 + 32;

    std::uint32_t* tables;
    bool eight;
    std::size_t distance; ///< between two tables; 0 where there is one
    std::uint32_t size;
    /// Integer pixels: entry i counts the pixels of value first + i, and bins come later. Pixels of 8 bits are
    /// always counted so, in eight tables, by their byte, with 256 entries more for what a mask excludes.
    bool byValue;
    std::int64_t first;
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
