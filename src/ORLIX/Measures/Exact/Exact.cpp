#include <ORLIX/Measures/Exact.hpp>

#include <cmath>
#include <limits>

namespace orlix::measures
{

using imaproc::UInt128;

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

int getBits(const Integer& x)
{
    return static_cast<int>(boost::multiprecision::msb(x)) + 1;
}

/// Shifts p / q by `bits` binary places to the left.
void shift(Integer& p, Integer& q, int bits)
{
    (bits > 0 ? p : q) <<= static_cast<unsigned>(std::abs(bits));
}

/// The double nearest to `digits`, which has 55 bits or more, or a little more where there `isMore`: what is below the
/// bits of a double is no tie then.
double round(const Integer& digits, bool isMore)
{
    return static_cast<double>(static_cast<std::uint64_t>(digits) << 1 | std::uint64_t{isMore});
}

/// The integer below the root of `square`, which has 114 bits at most.
std::uint64_t rootOf(UInt128 square)
{
    auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<long double>(square))); // or one beside it
    while (UInt128{root} * root > square) {
        --root;
    }
    while (UInt128{root + 1} * (root + 1) <= square) {
        ++root;
    }
    return root;
}

} // namespace

double roundQuotient(Integer p, Integer q, int exponent)
{
    if (q == 0) {
        return nan;
    }
    if (p == 0) {
        return 0;
    }
    const bool isNegative = (p < 0) != (q < 0);
    p = abs(p);
    q = abs(q);
    const auto zeros = static_cast<int>(boost::multiprecision::lsb(p));
    if (getBits(p) - zeros <= 53 && getBits(q) <= 53) { // doubles, whose quotient is rounded once
        const double quotient = static_cast<double>(static_cast<std::uint64_t>(p >> zeros)) /
                                static_cast<double>(static_cast<std::uint64_t>(q));
        return std::ldexp(isNegative ? -quotient : quotient, exponent + zeros);
    }
    const int bits = 56 - (getBits(p) - getBits(q)); // the quotient has 56 or 57
    shift(p, q, bits);
    Integer digits;
    Integer rest;
    divide_qr(p, q, digits, rest);
    const double magnitude = std::ldexp(round(digits, rest != 0), exponent - bits - 1);
    return isNegative ? -magnitude : magnitude;
}

double roundRoot(Integer p, Integer q, int exponent)
{
    if (q <= 0 || p < 0) {
        return nan;
    }
    if (p == 0) {
        return 0;
    }
    int bits = 112 - (getBits(p) - getBits(q)); // the quotient has 112 or 113 and one more; its root 56 or 57
    bits += (exponent - bits) % 2 != 0;
    shift(p, q, bits);
    Integer square;
    Integer rest;
    divide_qr(p, q, square, rest);
    const auto whole = static_cast<UInt128>(square);
    const std::uint64_t digits = rootOf(whole);
    return std::ldexp(round(digits, rest != 0 || UInt128{digits} * digits != whole), (exponent - bits) / 2 - 1);
}

} // namespace orlix::measures
