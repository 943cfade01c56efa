#pragma once

#include <framework/kernel/FixedPoint.hpp>
#include <framework/kernel/Pack.hpp>

/// Sums of floats and of their squares, exact whatever their values and their number.
namespace orlix::imaproc
{

/// In units of 2^-149, the smallest float: 2^53 floats stay below 2^181.
using FloatSum = Words<6>;
/// In units of 2^-298, its square: 2^53 squares stay below 2^309.
using FloatSquares = Words<10>;
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

/// Lanes that sum floats of few binades. A sum starts at 1.5 * 2^52 units and stays in that binade, so that no addition
/// rounds, and the bits of the double count units. A square has twice the digits: its upper part is what a sum of
/// larger units takes up in rounding, and what that leaves goes to a sum of small ones.
template <Domain::domain D>
struct BinadeSums
{
    using Doubles = Pack<double, D>;
    using Bits = Pack<std::int64_t, D>;

    static constexpr std::size_t packs = 4;
    /// So many floats enter a lane; log2 of it is 7.
    static constexpr std::size_t additions = 128;
    /// Floats may have exponents from `top` down to top - binades. With 24 digits each and 7 for the additions, a sum
    /// has 20 + 24 + 7 = 51. Upper parts of squares are units of 2^(2 top - 43), so that 128 squares, each below
    /// 2^(2 top + 2), stay below 2^52 of them; 128 rests, each at most half such a unit, stay below
    /// 2^(2 top - 37), which is 2^49 of the units that the squares have, 2^(2 top - 86).
    static constexpr int binades = 20;

    ORLIX_KERNEL explicit BinadeSums(int top_) : top{top_}
    {
        for (std::size_t k = 0; k < packs; ++k) {
            sum[k] = splat<Doubles>(start(unit(), 1.5));
            high[k] = splat<Doubles>(start(highUnit(), 1));
            low[k] = splat<Doubles>(start(lowUnit(), 1.5));
        }
    }

    ORLIX_KERNEL void add(std::size_t k, Doubles x)
    {
        const Doubles next = addSquare<D>(high[k], x);
        sum[k] = multiplyAdd<D>(x, splat<Doubles>(1.0), sum[k]); // where additions are not, multiplications have room
        low[k] += addSquare<D>(high[k] - next, x);
        high[k] = next;
    }

    /// Adds what the lanes hold, unless a number was not finite.
    ORLIX_KERNEL bool flush(FloatSum& sums, FloatSquares& squares) const
    {
        const Bits sumStart = (Bits)splat<Doubles>(start(unit(), 1.5));
        const Bits highStart = (Bits)splat<Doubles>(start(highUnit(), 1));
        const Bits lowStart = (Bits)splat<Doubles>(start(lowUnit(), 1.5));
        Bits left{};
        Bits units{};
        Bits highUnits{};
        Bits lowUnits{};
        for (std::size_t k = 0; k < packs; ++k) {
            left |= ((Bits)sum[k] ^ sumStart) >> 52;
            units += (Bits)sum[k] - sumStart;
            highUnits += (Bits)high[k] - highStart;
            lowUnits += (Bits)low[k] - lowStart;
        }
        if (addLanes<std::uint64_t, std::uint64_t>(left & 0xfff) != 0) {
            return false;
        }
        addShifted(sums, addLanes<std::int64_t, std::int64_t>(units), unsigned(unit() - floatUnit));
        addShifted(squares, addLanes<std::int64_t, std::int64_t>(highUnits), unsigned(highUnit() - 2 * floatUnit));
        addShifted(squares, addLanes<std::int64_t, std::int64_t>(lowUnits), unsigned(lowUnit() - 2 * floatUnit));
        return true;
    }

    ORLIX_KERNEL int unit() const { return top - binades - 23; }
    ORLIX_KERNEL int highUnit() const { return 2 * top - 43; }
    ORLIX_KERNEL int lowUnit() const { return 2 * unit(); }
    ORLIX_KERNEL static double start(int unitExponent, double factor) { return factor * powerOfTwo(52 + unitExponent); }

    int top;
    Doubles sum[packs];
    Doubles high[packs];
    Doubles low[packs];
};

} // namespace

} // namespace orlix::imaproc
