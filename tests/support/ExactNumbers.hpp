#pragma once

#include <boost/multiprecision/cpp_int.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace orlix::test
{

using Rational = boost::multiprecision::cpp_rational;

template <class T>
std::vector<Rational> toRationals(const std::vector<T>& pixels)
{
    std::vector<Rational> numbers;
    for (const T x : pixels) {
        numbers.emplace_back(static_cast<double>(x));
    }
    return numbers;
}

/// Whether no double is nearer to the exact value.
inline testing::AssertionResult isNearest(double x, const Rational& exact)
{
    if (!std::isfinite(x)) {
        return testing::AssertionFailure() << x << " is not finite";
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Rational error = abs(Rational{x} - exact);
    for (const double other : {std::nextafter(x, infinity), std::nextafter(x, -infinity)}) {
        if (std::isfinite(other) && abs(Rational{other} - exact) < error) {
            return testing::AssertionFailure() << other << " is nearer to " << exact << " than " << x;
        }
    }
    return testing::AssertionSuccess();
}

/// The same for the root of an exact value: which side of the middles between x and its neighbours it lies on.
inline testing::AssertionResult isNearestRoot(double x, const Rational& square)
{
    if (!(x >= 0) || std::isinf(x)) {
        return testing::AssertionFailure() << x << " is no root";
    }
    const Rational above = (Rational{x} + Rational{std::nextafter(x, std::numeric_limits<double>::infinity())}) / 2;
    const Rational below = x == 0 ? Rational{0} : (Rational{x} + Rational{std::nextafter(x, 0.0)}) / 2;
    return below * below <= square && square <= above * above
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << x << " is not nearest to the root of " << square;
}

} // namespace orlix::test
