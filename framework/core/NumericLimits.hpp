#pragma once

#include <limits>

namespace orlix::core
{

/// The least and greatest finite value of a pixel or result type.
template <class T>
struct NumericLimits
{
    static constexpr T s_min = std::numeric_limits<T>::lowest();
    static constexpr T s_max = std::numeric_limits<T>::max();
};

} // namespace orlix::core
