#pragma once

#include <framework/attribute/HistogramData.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace orlix::test
{

/// The frequencies of these bins, guard bin included, by the straight road: a division in double, rounded to
/// single. What falls outside the vector does not count.
template <class T>
std::vector<std::uint64_t> referenceFrequencies(const std::vector<T>& values, double min, double max, double binWidth,
                                                std::size_t size)
{
    std::vector<std::uint64_t> frequencies(size, 0);
    const auto low = static_cast<float>(min);
    const auto high = static_cast<float>(max);
    for (const T value : values) {
        const auto pixel = static_cast<float>(value);
        if (pixel == high && !(pixel >= low && pixel < high)) {
            ++frequencies[size - 2];
        } else if (pixel >= low && pixel < high) {
            const auto quotient = static_cast<float>((static_cast<double>(pixel) - min) / binWidth);
            const double whole = std::trunc(static_cast<double>(quotient));
            if (whole >= 0 && whole < static_cast<double>(size)) {
                ++frequencies[static_cast<std::size_t>(whole)];
            }
        }
    }
    return frequencies;
}

} // namespace orlix::test
