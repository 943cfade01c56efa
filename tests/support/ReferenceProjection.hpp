#pragma once

#include <framework/attribute/Projection.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <type_traits>
#include <vector>

/// Projections, straight as they are told: one pixel after the other.
namespace orlix::test
{

using imaproc::attr::eProjStatType;

/// All statistics, and a value that stands for the maximum.
inline constexpr eProjStatType allStatistics[] = {
    eProjStatType::ePST_Max, eProjStatType::ePST_Mean,   eProjStatType::ePST_Median, eProjStatType::ePST_Min,
    eProjStatType::ePST_Sum, eProjStatType::ePST_StdDev, eProjStatType::ePST_Var,    static_cast<eProjStatType>(9)};

/// What a maximum or minimum begins with: with nothing, so that any number replaces a NaN; with the first pixel, which
/// stays where it is NaN; or with the end of the type.
enum class Begin
{
    Nothing,
    FirstPixel,
    EndOfType
};

template <class T>
double projectPixels(const std::vector<T>& pixels, eProjStatType statistic, Begin begin = Begin::Nothing)
{
    const auto n = static_cast<double>(pixels.size());
    double sum = 0;
    double sumSq = 0;
    T least = begin == Begin::EndOfType ? std::numeric_limits<T>::max() : pixels[0];
    T most = begin == Begin::EndOfType ? std::numeric_limits<T>::lowest() : pixels[0];
    for (const T x : pixels) {
        sum += static_cast<double>(x);
        sumSq += static_cast<double>(x) * static_cast<double>(x);
        least = x < least || (begin == Begin::Nothing && least != least) ? x : least;
        most = x > most || (begin == Begin::Nothing && most != most) ? x : most;
    }
    const double variance = (sumSq - sum * sum / n) / n;
    switch (statistic) {
    case eProjStatType::ePST_Mean:
        return sum / n;
    case eProjStatType::ePST_Median: {
        std::vector<T> sorted = pixels;
        const auto numbers = std::partition(sorted.begin(), sorted.end(), [](T x) { return x == x; });
        std::sort(sorted.begin(), numbers);
        return static_cast<double>(sorted[sorted.size() / 2]);
    }
    case eProjStatType::ePST_Min:
        return static_cast<double>(least);
    case eProjStatType::ePST_StdDev:
        return std::sqrt(variance);
    case eProjStatType::ePST_Sum:
        return sum;
    case eProjStatType::ePST_Var:
        return variance;
    default:
        return static_cast<double>(most);
    }
}

/// A number as a pixel: rounded half away from zero, and limited to the range of the type.
template <class T>
T toPixelType(double x)
{
    if constexpr (std::is_same_v<T, float>) {
        return static_cast<float>(x);
    } else {
        const double rounded = std::isnan(x) ? 0 : std::round(x);
        return static_cast<T>(
            std::clamp<double>(rounded, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
}

inline bool isSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace orlix::test
