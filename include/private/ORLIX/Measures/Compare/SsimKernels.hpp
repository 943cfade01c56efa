#pragma once

#include <framework/process/KernelsByType.hpp>

#include <cstddef>
#include <cstdint>

namespace orlix::measures
{

using namespace imaproc;

/// What of two images a, b is summed over windows: a, b, a^2, b^2, a b.
inline constexpr std::size_t nbSsimSums = 5;

/// The weights of the pixels of a window, the same in both directions.
struct SsimWeights
{
    static constexpr std::size_t step = 16; ///< rows have room for that many more elements

    const double* weights;
    std::size_t size; ///< of a window
    bool isUniform;   ///< all weights are 1
};

/// Sums over parts of a row, as wide as a window.
struct SsimRow
{
    SsimWeights window;
    const double* pixels[2]; ///< from the first one of the first part on
    std::size_t size;        ///< the number of parts
    double* sums[nbSsimSums];
};

/// The windows that rows of such sums make. With S.. for the sums over a window and n for that of the weights, and all
/// brackets of the definition times n^2,
///
///     SSIM = (2 Sa Sb + C1)(2 f (n Sab - Sa Sb) + C2) / ((Sa^2 + Sb^2 + C1)(f (n Saa - Sa^2 + n Sbb - Sb^2) + C2))
///
/// Z. Wang et al., Image quality assessment: from error visibility to structural similarity, IEEE Trans. Image Process.
/// 13 (2004).
struct SsimWindows
{
    static constexpr int unit = -50; ///< of sums: 2^-50, into which a similarity is rounded

    SsimWeights window;
    const double* const* rows[nbSsimSums]; ///< of each sum, the rows of a window
    std::size_t size;                      ///< the number of windows
    double n;
    double factor; ///< f
    double c1;     ///< times n^2
    double c2;
    double* values;   ///< the result
    std::int64_t sum; ///< of the values, in units, where none is NaN; of up to 2^12 windows
    bool hasNaN;
};

/// There is one of each, for float. All sets come to the same bits.
template <class T>
using SsimRowKernel = void (*)(const SsimRow& row);
template <class T>
using SsimWindowsKernel = void (*)(SsimWindows& windows);

using SsimRowKernels = KernelsByType<SsimRowKernel>;
using SsimWindowsKernels = KernelsByType<SsimWindowsKernel>;

const KernelTables<SsimRowKernels>& getSsimRowKernels();
const KernelTables<SsimWindowsKernels>& getSsimWindowsKernels();

} // namespace orlix::measures
