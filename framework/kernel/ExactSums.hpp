#pragma once

#include <framework/kernel/Pack.hpp>
#include <framework/kernel/Run.hpp>

/// Sums and sums of squares of integer pixels, exact whatever their number. Pixels of either sign are brought to one
/// canonical type per width by flipping their highest bit: y = x - bias.
namespace orlix::imaproc
{

namespace
{

/// Bytes and 32-bit pixels are summed as unsigned numbers, 16-bit pixels as signed ones: that is how the machine
/// multiplies them.
template <std::size_t Size>
struct CanonicalOf;
template <>
struct CanonicalOf<1>
{
    using Type = std::uint8_t;
};
template <>
struct CanonicalOf<2>
{
    using Type = std::int16_t;
};
template <>
struct CanonicalOf<4>
{
    using Type = std::uint32_t;
};
template <class T>
using Canonical = typename CanonicalOf<sizeof(T)>::Type;

/// What a canonical pixel lacks to be the pixel.
template <class T>
inline constexpr std::int64_t bias = isSigned<T> == isSigned<Canonical<T>>
                                         ? 0
                                         : (isSigned<T> ? -1 : 1) * (std::int64_t{1} << (8 * sizeof(T) - 1));

template <class T, Domain::domain D>
ORLIX_KERNEL Pack<Canonical<T>, D> loadCanonical(const T* pixels)
{
    using Y = Pack<Canonical<T>, D>;
    const Y x = load<Y>(pixels);
    if constexpr (bias<T> == 0) {
        return x;
    } else {
        return x ^ splat<Y>(Canonical<T>(Canonical<T>(1) << (8 * sizeof(T) - 1)));
    }
}

/// Holds a sum of squares of 2^20 pixels of `Size` bytes.
template <std::size_t Size>
struct SquaresOf
{
    using Type = std::uint64_t;
};
template <>
struct SquaresOf<4>
{
    using Type = Int128;
};

/// Sums over canonical pixels.
struct Totals
{
    Int128 sum = 0;
    Int128 sumSq = 0;
};

/// The lanes of one block: at most `block` packs may be added before flush().
template <class Y, Domain::domain D>
struct ExactSums;

template <Domain::domain D>
struct ExactSums<std::uint8_t, D>
{
    // A 32-bit lane gains at most 4 * 255^2 from a pack: 8192 * 260100 < 2^32.
    static constexpr std::size_t block = 8192;
    using Words = Pack<std::uint16_t, D>;

    ORLIX_KERNEL void add(Pack<std::uint8_t, D> y)
    {
        const Words even = (Words)y & splat<Words>(std::uint16_t{0xff});
        const Words odd = (Words)y >> 8;
        sum += addBytes<D>(y);
        sumSq += multiplyAddPairs<D>(even, even) + multiplyAddPairs<D>(odd, odd);
    }
    ORLIX_KERNEL void flush(Totals& totals)
    {
        totals.sum += addLanes<std::uint64_t, std::uint64_t>(sum);
        totals.sumSq += addLanes<std::uint32_t, std::uint64_t>(sumSq);
        *this = {};
    }

    Pack<std::uint64_t, D> sum{};
    Pack<std::uint32_t, D> sumSq{};
};

template <Domain::domain D>
struct ExactSums<std::int16_t, D>
{
    // A lane of `sum` gains at most 2^16 from a pack, and so does one of `high`.
    static constexpr std::size_t block = 16384;
    using Pairs = Pack<std::uint32_t, D>;

    ORLIX_KERNEL void add(Pack<std::int16_t, D> y)
    {
        const Pairs squares = multiplyAddPairs<D>(y, y);
        sum = addPairs<D>(sum, y);
        wrapped += squares;
        high += squares >> 16;
    }
    ORLIX_KERNEL void flush(Totals& totals)
    {
        // In each lane the low halves sum to less than 2^14 * 2^16, so the high halves tell what wrapped away.
        const auto low = wrapped - (high << 16);
        totals.sum += addLanes<std::int32_t, std::int64_t>(sum);
        totals.sumSq += addLanes<std::uint32_t, std::uint64_t>(low);
        totals.sumSq += Int128(addLanes<std::uint32_t, std::uint64_t>(high)) << 16;
        *this = {};
    }

    Pack<std::int32_t, D> sum{};
    Pairs wrapped{}; ///< squares, modulo 2^32
    Pairs high{};    ///< their high halves
};

template <Domain::domain D>
struct ExactSums<std::uint32_t, D>
{
    // A lane of `sum` or `high` gains at most 2^33 from a pack.
    static constexpr std::size_t block = std::size_t{1} << 20;
    using Wide = Pack<std::uint64_t, D>;

    ORLIX_KERNEL void add(Pack<std::uint32_t, D> y)
    {
        const Wide odd = (Wide)y >> 32;
        const Wide evenSq = squareLow<D>(y);
        const Wide oddSq = squareLow<D>(odd);
        sum += ((Wide)y & splat<Wide>(std::uint64_t{0xffffffff})) + odd;
        wrapped += evenSq + oddSq;
        high += (evenSq >> 32) + (oddSq >> 32);
    }
    ORLIX_KERNEL void flush(Totals& totals)
    {
        const auto low = wrapped - (high << 32); // as for 16 bits: the low halves sum to less than 2^21 * 2^32
        totals.sum += addLanes<std::uint64_t, Int128>(sum);
        totals.sumSq += addLanes<std::uint64_t, Int128>(low) + (addLanes<std::uint64_t, Int128>(high) << 32);
        *this = {};
    }

    Wide sum{};
    Wide wrapped{}; ///< squares, modulo 2^64
    Wide high{};    ///< their high halves
};

#ifdef __AVX512VNNI__

template <>
struct ExactSums<std::uint8_t, Domain::eIS_AVX512>
{
    // A 32-bit lane gains at most 4 * 255 * 127 from a pack: 8192 * 129540 < 2^31.
    static constexpr std::size_t block = 8192;
    using Y = Pack<std::uint8_t, Domain::eIS_AVX512>;

    ORLIX_KERNEL void add(Y y)
    {
        // The machine multiplies unsigned by signed bytes: y * (y - 128).
        const Y centred = y ^ splat<Y>(std::uint8_t{0x80});
        sum = _mm512_dpbusd_epi32(sum, (__m512i)y, _mm512_set1_epi8(1));
        products = _mm512_dpbusd_epi32(products, (__m512i)y, (__m512i)centred);
    }
    ORLIX_KERNEL void flush(Totals& totals)
    {
        const auto added = addLanes<std::int32_t, std::int64_t>(sum);
        totals.sum += added;
        totals.sumSq += addLanes<std::int32_t, std::int64_t>(products) + 128 * added;
        *this = {};
    }

    __m512i sum{};
    __m512i products{};
};

#endif

#ifdef __AVX512IFMA__

template <>
struct ExactSums<std::uint32_t, Domain::eIS_AVX512>
{
    // A lane of `low` gains less than 2^52 from a pack.
    static constexpr std::size_t block = 4096;
    using Wide = Pack<std::uint64_t, Domain::eIS_AVX512>;

    ORLIX_KERNEL void add(Pack<std::uint32_t, Domain::eIS_AVX512> y)
    {
        const Wide even = (Wide)y & splat<Wide>(std::uint64_t{0xffffffff});
        const Wide odd = (Wide)y >> 32;
        sum += even + odd;
        low[0] = _mm512_madd52lo_epu64(low[0], (__m512i)even, (__m512i)even);
        low[1] = _mm512_madd52lo_epu64(low[1], (__m512i)odd, (__m512i)odd);
        high[0] = _mm512_madd52hi_epu64(high[0], (__m512i)even, (__m512i)even);
        high[1] = _mm512_madd52hi_epu64(high[1], (__m512i)odd, (__m512i)odd);
    }
    ORLIX_KERNEL void flush(Totals& totals)
    {
        totals.sum += addLanes<std::uint64_t, Int128>(sum);
        for (int half = 0; half < 2; ++half) {
            totals.sumSq += addLanes<std::uint64_t, Int128>(low[half]);
            totals.sumSq += addLanes<std::uint64_t, Int128>(high[half]) << 52;
        }
        *this = {};
    }

    Wide sum{};
    __m512i low[2]{};  ///< the products' lowest 52 bits, of even and odd pixels
    __m512i high[2]{}; ///< the rest
};

#endif

} // namespace

} // namespace orlix::imaproc
