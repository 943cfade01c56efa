#pragma once

#include <framework/kernel/FixedPoint.hpp>
#include <framework/process/KernelsByType.hpp>

#include <cstddef>
#include <cstdint>

namespace orlix::measures
{

using namespace imaproc;

/// What is summed over pairs of pixels a, b, in units of 2^-149 and 2^-298.
struct CompareFigures
{
    std::uint64_t nbPairs; ///< that count, infinite ones too
    std::uint64_t nbNaN;
    std::uint64_t nbInfinite; ///< pairs with an infinity; they enter no sum
    Words<6> sum[2];
    Words<6> larger[2];     ///< of a where it is not less than b, and of b elsewhere
    Words<6> coincident[2]; ///< of a where b is above its threshold, and of b where a is
    Words<10> squares[2];
    Words<10> products;
    double maxError; ///< |a - b| as a double; below 0 before the first pair
    double min[2];   ///< infinite before the first pair
    double max[2];
    double threshold[2];
};

/// Pairs as floats, with room for whole packs.
struct PairBlock
{
    static constexpr std::size_t size = 1024;

    alignas(64) float pixels[2][size];
    alignas(64) std::uint8_t counts[size]; ///< not 0 where a pair counts
};

/// Pixels as floats; false if one has more digits than a float.
template <class T>
using ReadKernel = bool (*)(const T* from, std::size_t size, float* to);

/// A block of `size` pairs enters, and returns whether the sums did: otherwise pairs that do not count, or that are not
/// finite, are 0 on return, and whoever calls adds the rest up. There is one, for float.
template <class T>
using CompareKernel = bool (*)(PairBlock& block, std::size_t size, CompareFigures& figures);

using ReadKernels = KernelsByType<ReadKernel>;
using CompareKernels = KernelsByType<CompareKernel>;

const KernelTables<ReadKernels>& getReadKernels();
const KernelTables<CompareKernels>& getCompareKernels();

} // namespace orlix::measures
