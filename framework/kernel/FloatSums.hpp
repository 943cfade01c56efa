#pragma once

#include <framework/kernel/FixedPoint.hpp>
#include <framework/kernel/Pack.hpp>

/// Sums of floats and of their products, exact whatever their values and their number.
namespace orlix::imaproc
{

/// In units of 2^-149, the smallest float: 2^53 floats stay below 2^181.
using FloatSum = Words<6>;
/// In units of 2^-298, its square: 2^53 products stay below 2^309.
using FloatProductSum = Words<10>;
inline constexpr int floatUnit = -149;

namespace
{

ORLIX_KERNEL double powerOfTwo(int exponent)
{
    const std::uint64_t bits = std::uint64_t(exponent + 1023) << 52;
    double power;
    __builtin_memcpy(&power, &bits, sizeof power);
    return power;
}

/// Floats of few binades: exponents from `top` down to top - binades, so that they are whole numbers of a unit. So many
/// of them may enter a lane, of which log2 is 7.
struct Binades
{
    static constexpr int binades = 20;
    static constexpr std::size_t additions = 128;

    int top;

    ORLIX_KERNEL int unit() const { return top - binades - 23; }
};

/// The top of the binades that magnitudes of up to these bits lie in: not so low that the unit is below the smallest
/// float.
ORLIX_KERNEL Binades binadesBelow(std::int32_t bits)
{
    const int exponent = int(bits >> 23) - 127;
    const int least = Binades::binades - 126;
    return {exponent < least ? least : exponent};
}

/// The least bits of a magnitude in the binades; 0 where they reach down to the smallest float.
ORLIX_KERNEL std::int32_t leastBits(Binades range)
{
    const int exponent = range.top - Binades::binades;
    return exponent <= -126 ? 0 : std::int32_t(exponent + 127) << 23;
}

/// Lanes that sum numbers of a unit, less than 2^51 of them. They start at 1.5 * 2^52 units and stay in that binade: no
/// addition rounds, and the bits of the double count units.
template <Domain::domain D, std::size_t N = 1>
struct UnitLanes
{
    using Doubles = Pack<double, D>;
    using Bits = Pack<std::int64_t, D>;

    ORLIX_KERNEL explicit UnitLanes(int unit)
    {
        for (std::size_t k = 0; k < N; ++k) {
            lane[k] = start(unit);
        }
    }
    ORLIX_KERNEL static Doubles start(int unit) { return splat<Doubles>(1.5 * powerOfTwo(52 + unit)); }

    ORLIX_KERNEL void add(Doubles x, std::size_t k = 0)
    {
        lane[k] = multiplyAdd<D>(x, splat<Doubles>(1.0), lane[k]); // multiplications have room where additions have not
    }
    /// Whether all numbers were finite.
    ORLIX_KERNEL bool isFinite(int unit) const
    {
        Bits left{};
        for (std::size_t k = 0; k < N; ++k) {
            left |= ((Bits)lane[k] ^ (Bits)start(unit)) >> 52;
        }
        return addLanes<std::uint64_t, std::uint64_t>(left & 0xfff) == 0;
    }
    /// sum += what the lanes hold, where the sum counts units of 2^sumUnit.
    template <std::size_t Size>
    ORLIX_KERNEL void flush(int unit, Words<Size>& sum, int sumUnit) const
    {
        Bits units{};
        for (std::size_t k = 0; k < N; ++k) {
            units += (Bits)lane[k] - (Bits)start(unit);
        }
        addShifted(sum, addLanes<std::int64_t, std::int64_t>(units), unsigned(unit - sumUnit));
    }

    Doubles lane[N];
};

/// Lanes that sum products of floats of few binades, which have twice the digits: a sum of large units takes up the
/// upper part of a product in rounding, and what that leaves goes to a sum of small ones. 128 products, each below
/// 2^(top + top + 2), stay below 2^51 units of 2^(top + top - 42); 128 rests, each at most half such a unit, below 2^51
/// of those that the products have, 2^(top + top - 86).
template <Domain::domain D, std::size_t N = 1>
struct ProductLanes
{
    using Doubles = Pack<double, D>;

    ORLIX_KERNEL ProductLanes(Binades a, Binades b) : high{highUnit(a, b)}, low{a.unit() + b.unit()} {}
    ORLIX_KERNEL static int highUnit(Binades a, Binades b) { return a.top + b.top - 42; }

    ORLIX_KERNEL void add(Doubles x, Doubles y, std::size_t k = 0)
    {
        const Doubles next = multiplyAdd<D>(x, y, high.lane[k]);
        low.lane[k] += multiplyAdd<D>(x, y, high.lane[k] - next);
        high.lane[k] = next;
    }
    ORLIX_KERNEL void flush(Binades a, Binades b, FloatProductSum& sum) const
    {
        high.flush(highUnit(a, b), sum, 2 * floatUnit);
        low.flush(a.unit() + b.unit(), sum, 2 * floatUnit);
    }

    UnitLanes<D, N> high;
    UnitLanes<D, N> low;
};

} // namespace

} // namespace orlix::imaproc
