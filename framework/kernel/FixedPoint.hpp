#pragma once

#include <framework/kernel/Run.hpp>

/// Exact sums in fixed point: integers of many words, lowest first, in two's complement. Whatever is added in whatever
/// order, the words are the same.
namespace orlix::imaproc
{

__extension__ using UInt128 = unsigned __int128;

/// An integer; what it counts, the one who keeps it knows.
template <std::size_t N>
struct Words
{
    std::uint64_t word[N];

    friend constexpr bool operator==(const Words&, const Words&) = default;
};

namespace
{

/// words += value * 2^shift, where the result fits and |value| < 2^126.
template <std::size_t N>
[[gnu::always_inline]] inline void addShifted(Words<N>& words, Int128 value, unsigned shift)
{
    const std::size_t first = shift / 64;
    const unsigned bits = shift % 64;
    const auto low = std::uint64_t(value);
    const auto high = std::uint64_t(value >> 64);
    const auto sign = std::uint64_t(value >> 127);
    const std::uint64_t part[3] = {low << bits, bits == 0 ? high : high << bits | low >> (64 - bits),
                                   bits == 0 ? sign : sign << bits | high >> (64 - bits)};
    UInt128 carry = 0;
    for (std::size_t k = first; k < N; ++k) {
        const std::uint64_t add = k - first < 3 ? part[k - first] : sign;
        if (k - first >= 3 && std::uint64_t(add + carry) == 0) {
            return; // 0, or -1 and a carry
        }
        carry += words.word[k];
        carry += add;
        words.word[k] = std::uint64_t(carry);
        carry >>= 64;
    }
}

/// words += value, which is not below 0
[[gnu::always_inline]] inline void add(Words<2>& words, UInt128 value)
{
    value += UInt128{words.word[1]} << 64 | words.word[0];
    words = {{std::uint64_t(value), std::uint64_t(value >> 64)}};
}

/// words += other
template <std::size_t N>
[[gnu::always_inline]] inline void add(Words<N>& words, const Words<N>& other)
{
    UInt128 carry = 0;
    for (std::size_t k = 0; k < N; ++k) {
        carry += words.word[k];
        carry += other.word[k];
        words.word[k] = std::uint64_t(carry);
        carry >>= 64;
    }
}

} // namespace

} // namespace orlix::imaproc
