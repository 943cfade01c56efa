#pragma once

#include <framework/kernel/FixedPoint.hpp>

#include <boost/multiprecision/cpp_int.hpp>

/// From exact sums to the nearest doubles: the one place where results round.
namespace orlix::measures
{

/// Of any size; so many bits need no memory of their own.
using Integer = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<768>>;

template <std::size_t N>
Integer toInteger(const imaproc::Words<N>& words)
{
    const bool isNegative = (words.word[N - 1] >> 63) != 0;
    Integer magnitude = 0;
    for (std::size_t k = N; k-- > 0;) {
        magnitude <<= 64;
        magnitude |= isNegative ? ~words.word[k] : words.word[k];
    }
    return isNegative ? -magnitude - 1 : magnitude; // of a negative number the complement is one less
}

/// The double nearest to p / q * 2^exponent, the even one of two; NaN where q is 0. A result has the exponent of a
/// normal double.
double roundQuotient(Integer p, Integer q, int exponent = 0);

/// The double nearest to the root of p / q * 2^exponent; NaN where p is below 0 or q not above.
double roundRoot(Integer p, Integer q, int exponent = 0);

} // namespace orlix::measures
