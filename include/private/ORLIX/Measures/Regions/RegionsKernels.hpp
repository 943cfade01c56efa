#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/process/KernelsByType.hpp>

#include <cstddef>
#include <cstdint>

namespace orlix::measures
{

using namespace imaproc;

/// Pixels of a row that lie in one region.
template <class T>
struct RegionRun
{
    static constexpr std::size_t mostPixels = 128;

    const T* pixels;
    std::size_t size;
    std::size_t room; ///< so many pixels may be read, though they belong to others
};

/// Exact sums over a run of whole numbers of 2^unit.
struct RunSums
{
    Int128 squares;
    std::int64_t sum;
    std::int64_t products; ///< with the number of the pixel in the run
    double min;            ///< pixels
    double max;
};

/// False if a pixel is no whole number of 2^unit, or is 2^46 of them or more; of integer pixels, the unit is 1.
template <class T>
using RegionsKernel = bool (*)(const RegionRun<T>& run, int unit, RunSums& sums);
using RegionsKernels = KernelsByType<RegionsKernel>;

const KernelTables<RegionsKernels>& getRegionsKernels();

} // namespace orlix::measures
