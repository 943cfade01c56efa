#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsKernels.hpp>

#include <algorithm>
#include <type_traits>

/// What a kernel of pixels of type T has summed, as doubles.
namespace orlix::imaproc::glbmsr
{

/// In pairs, then pairs of pairs, ...: an order that does not depend on the instruction set.
inline double addLanes(const double (&lanes)[Moments::lanes])
{
    double lane[Moments::lanes];
    std::copy_n(lanes, Moments::lanes, lane);
    for (std::size_t width = Moments::lanes / 2; width != 0; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            lane[k] += lane[k + width];
        }
    }
    return lane[0];
}

/// Rounded once. (Compilers call a slow function for 128 bits.)
inline double toDouble(Int128 sum)
{
    const auto low = static_cast<std::int64_t>(sum);
    return low == sum ? static_cast<double>(low) : static_cast<double>(sum);
}

template <class T>
double getSum(const Moments& moments)
{
    return std::is_floating_point_v<T> ? addLanes(moments.laneSums) : toDouble(moments.sum);
}

template <class T>
double getSumOfSquares(const Moments& moments)
{
    return std::is_floating_point_v<T> ? addLanes(moments.laneSquares) : toDouble(moments.sumSq);
}

} // namespace orlix::imaproc::glbmsr
