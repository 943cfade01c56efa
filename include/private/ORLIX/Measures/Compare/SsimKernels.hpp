#pragma once

#include <framework/process/KernelsByType.hpp>

#include <cstddef>

namespace orlix::measures
{

using namespace imaproc;

/// The windows centred on pixels of one row. With S.. for the weighted sums of pixels and products over a window and n
/// for that of the weights, and all brackets of the definition times n^2,
///
///     SSIM = (2 Sa Sb + C1)(2 f (n Sab - Sa Sb) + C2) / ((Sa^2 + Sb^2 + C1)(f (n Saa - Sa^2 + n Sbb - Sb^2) + C2))
///
/// Z. Wang et al., Image quality assessment: from error visibility to structural similarity, IEEE Trans. Image Process.
/// 13 (2004).
struct SsimRow
{
    static constexpr std::size_t step = 32; ///< everything has room for that many more elements

    const double* const* rows[2]; ///< of each image, the rows of a window, from the first column of the first window on
    const double* weights;        ///< of rows and of columns
    std::size_t window;           ///< the number of them
    std::size_t size;             ///< the number of windows
    double n;
    double factor; ///< f
    double c1;     ///< times n^2
    double c2;
    double* columns[5]; ///< room for sums
    double* values;     ///< the result
};

/// There is one, for float. All sets come to the same bits.
template <class T>
using SsimKernel = void (*)(const SsimRow& row);

using SsimKernels = KernelsByType<SsimKernel>;

const KernelTables<SsimKernels>& getSsimKernels();

} // namespace orlix::measures
