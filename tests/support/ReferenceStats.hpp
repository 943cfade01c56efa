#pragma once

#include <framework/attribute/StatsResult.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <vector>

namespace orlix::test
{

__extension__ using Int128 = __int128;

/// Statistics by the straight road: exact 128-bit sums for integers, long double for float.
struct ReferenceStats
{
    std::size_t n = 0;
    long double sum = 0;
    long double sumSq = 0;
    long double sumAbs = 0;
    double min = std::numeric_limits<double>::max();
    double max = std::numeric_limits<double>::lowest();

    long double mean() const { return sum / static_cast<long double>(n); }
    long double variance() const { return sumSq / static_cast<long double>(n) - mean() * mean(); }
};

template <class T>
ReferenceStats referenceStats(const std::vector<T>& values)
{
    using Sum = std::conditional_t<std::is_integral_v<T>, Int128, long double>;
    Sum sum = 0;
    Sum sumSq = 0;
    ReferenceStats stats;
    stats.n = values.size();
    for (const T value : values) {
        const auto x = static_cast<Sum>(value);
        sum += x;
        sumSq += x * x;
        stats.sumAbs += std::fabs(static_cast<long double>(value));
        const double pixel = value;
        stats.min = stats.min < pixel ? stats.min : pixel;
        stats.max = stats.max > pixel ? stats.max : pixel;
    }
    stats.sum = static_cast<long double>(sum);
    stats.sumSq = static_cast<long double>(sumSq);
    return stats;
}

/// What one strip must give: exact for integers, within the rounding of sums for floats.
template <class T>
void expectReference(const imaproc::attr::StatsResult& result, const std::vector<T>& values)
{
    const ReferenceStats expected = referenceStats(values);
    const auto n = static_cast<double>(values.size());
    EXPECT_EQ(result.NbPixels, values.size());
    EXPECT_EQ(result.Min, expected.min);
    EXPECT_EQ(result.Max, expected.max);
    EXPECT_EQ(result.Mean, result.Sum / n);
    if constexpr (std::is_integral_v<T>) {
        const auto sumSq = static_cast<double>(expected.sumSq);
        EXPECT_EQ(result.Sum, static_cast<double>(expected.sum));
        const double deviation = std::sqrt(sumSq / n - result.Mean * result.Mean);
        // Not clamped: NaN where rounding makes the variance negative.
        EXPECT_EQ(std::isnan(result.StdDev), std::isnan(deviation));
        EXPECT_TRUE(result.StdDev == deviation || std::isnan(deviation)) << result.StdDev << " " << deviation;
    } else {
        EXPECT_NEAR(result.Sum, static_cast<double>(expected.sum), 1e-15 * n * static_cast<double>(expected.sumAbs));
        const double deviation = std::sqrt(static_cast<double>(expected.variance()));
        EXPECT_NEAR(result.StdDev, deviation, 1e-9 * (1 + deviation));
    }
}

} // namespace orlix::test
