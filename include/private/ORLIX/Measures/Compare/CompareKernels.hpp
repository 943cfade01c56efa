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
    Words<6> larger;        ///< of a where it is not less than b, and of b elsewhere
    Words<6> coincident[2]; ///< of a where b is above its threshold, and of b where a is
    Words<10> squares[2];
    Words<10> products;
    double maxError; ///< |a - b| as a double; below 0 before the first pair
    double min[2];   ///< infinite before the first pair
    double max[2];
    double threshold[2];
};

/// Pairs of pixels on their way into sums, with room for whole packs.
struct PairBlock
{
    static constexpr std::size_t size = 4096;

    alignas(64) float pixels[2][size];       ///< of any type that has no more digits
    alignas(64) std::int16_t words[2][size]; ///< of 8 and 16 bits, less `bias`
    alignas(64) std::uint8_t counts[size];   ///< not 0 where a pair counts
    const float* from[2];                    ///< where the floats are read: above, or in an image
    std::int32_t bias;                       ///< 0, or 32768 where one is unsigned and has 16 bits
};

/// Pixels as floats; false if one has more digits than a float.
template <class T>
using ReadKernel = bool (*)(const T* from, std::size_t size, float* to);

/// Pixels of 8 or 16 bits, less the bias.
template <class T>
using ReadWordsKernel = void (*)(const T* from, std::size_t size, std::int32_t bias, std::int16_t* to);

/// A block of `size` pairs enters, and returns whether the sums did. If those of floats did not, whoever calls adds up
/// the pairs of `pixels` that `counts` selects then: one that is not to enter is 0, beside others that are, or it is
/// not selected. If those of words did not, nothing is changed. There is one for float and one for short.
template <class T>
using CompareKernel = bool (*)(PairBlock& block, std::size_t size, CompareFigures& figures);

using ReadKernels = KernelsByType<ReadKernel>;
using ReadWordsKernels = KernelsByType<ReadWordsKernel>;
using CompareKernels = KernelsByType<CompareKernel>;

const KernelTables<ReadKernels>& getReadKernels();
const KernelTables<ReadWordsKernels>& getReadWordsKernels();
const KernelTables<CompareKernels>& getCompareKernels();

} // namespace orlix::measures
