#pragma once

#include <framework/process/MeasureState.hpp>

#include <cmath>
#include <limits>

namespace orlix::measures
{

/// An extreme value and where the first of its kind lies.
struct Extreme
{
    double value = std::numeric_limits<double>::quiet_NaN(); ///< NaN: none yet
    imaproc::Position at;

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(value), stream(at);
    }
};

/// `isBetter(a, b)`: whether value a takes the place of b.
template <class IsBetter>
void replace(Extreme& old, const Extreme& other, IsBetter isBetter)
{
    if (std::isnan(old.value) || isBetter(other.value, old.value) || (other.value == old.value && other.at < old.at)) {
        old = std::isnan(other.value) ? old : other;
    }
}

} // namespace orlix::measures
