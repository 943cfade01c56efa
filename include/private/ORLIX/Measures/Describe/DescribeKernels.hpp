#pragma once

#include <framework/kernel/FixedPoint.hpp>
#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::measures
{

using namespace imaproc;

/// What a kernel finds in the runs of a strip. It does not matter how the strip is cut into runs.
struct DescribeFigures
{
    std::uint64_t nbNumbers; ///< pixels that count, and are no NaN
    std::uint64_t nbNaN;
    std::uint64_t nbPositiveInfinity;
    std::uint64_t nbNegativeInfinity;
    std::uint64_t nbSaturated; ///< integer pixels at the limits of their type, where `countsSaturated`
    Words<6> sum;              ///< of the finite ones: of float pixels in units of 2^-149, of others in ones
    Words<10> squares;         ///< of float pixels in units of 2^-298
    double min;                ///< NaN before the first number
    double max;
    const void* minBlock; ///< where the kernel came upon it: at this pixel or less than `extremeBlock` bytes behind it
    const void* maxBlock;
    bool countsSaturated;
};

inline constexpr std::size_t extremeBlock = std::size_t{1} << 16;

template <class T>
using DescribeKernel = void (*)(Run<T>, DescribeFigures&);
template <class T>
using DescribeMaskKernel = void (*)(MaskedRun<T>, DescribeFigures&);

using DescribeKernels = KernelsByType<DescribeKernel>;
using DescribeMaskKernels = KernelsByType<DescribeMaskKernel>;

const KernelTables<DescribeKernels>& getDescribeKernels();
const KernelTables<DescribeMaskKernels>& getDescribeMaskKernels();

} // namespace orlix::measures
