#pragma once

#include <framework/core/Domain.hpp>

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

/// The vectors that kernels are written in: what a compiler's vector types do not say for themselves. Files with vector
/// flags include this header, so whatever it defines is always inlined and, in an unnamed namespace, local to the file.
#define ORLIX_KERNEL [[gnu::always_inline]] inline

namespace orlix::imaproc
{

using Domain = core::eInstructionSet;

namespace
{

template <class T>
inline constexpr bool isSigned = T(-1) < T(0);
template <class T>
inline constexpr bool isFloat = T(0.5) != T(0);

/// The range of an integer type.
template <class T>
inline constexpr T lowestOf = isSigned<T> ? T(T(1) << (8 * sizeof(T) - 1)) : T(0);
template <class T>
inline constexpr T highestOf = T(~lowestOf<T>);

/// Exactly the pixel. (Machines without AVX-512 convert only signed numbers.)
template <class T>
ORLIX_KERNEL double toDouble(T x)
{
    if constexpr (!isSigned<T> && sizeof(T) == 4) {
        return double(std::int32_t(x ^ 0x80000000u)) + 2147483648.0;
    } else {
        return x;
    }
}

/// The width of a domain's registers.
template <Domain::domain D>
inline constexpr std::size_t packBytes = D == Domain::eIS_SSE2     ? 16
                                         : D == Domain::eIS_AVX512 ? 64
                                                                   : 32;

template <class T, std::size_t Bytes>
struct PackOf
{
    typedef T Type __attribute__((vector_size(Bytes)));
    typedef T Unaligned __attribute__((vector_size(Bytes), aligned(1), may_alias));
};

template <class T, Domain::domain D>
using Pack = typename PackOf<T, packBytes<D>>::Type;

template <class T, Domain::domain D>
inline constexpr std::size_t lanes = packBytes<D> / sizeof(T);

template <class P, class T>
ORLIX_KERNEL P load(const T* pixels)
{
    return (P) * reinterpret_cast<const typename PackOf<T, sizeof(P)>::Unaligned*>(pixels);
}

template <class P, class T>
ORLIX_KERNEL void store(P pack, T* to)
{
    *reinterpret_cast<typename PackOf<T, sizeof(P)>::Unaligned*>(to) = pack;
}

/// Lanes that wait in memory, and back. (Pack by pack: an array that is copied as a whole lives in memory for good.)
template <class P, std::size_t N, class T>
ORLIX_KERNEL void loadAll(P (&packs)[N], const T* lane)
{
#pragma GCC unroll 8
    for (std::size_t k = 0; k < N; ++k) {
        packs[k] = load<P>(lane + k * (sizeof(P) / sizeof(T)));
    }
}
template <class P, std::size_t N, class T>
ORLIX_KERNEL void storeAll(const P (&packs)[N], T* lane)
{
#pragma GCC unroll 8
    for (std::size_t k = 0; k < N; ++k) {
        store(packs[k], lane + k * (sizeof(P) / sizeof(T)));
    }
}

template <class P, class T>
ORLIX_KERNEL P splat(T x)
{
    return P{} + x;
}

/// a < b ? a : b in every lane; for float exactly so, also where one is NaN.
template <class P>
ORLIX_KERNEL P minimum(P a, P b)
{
    return a < b ? a : b;
}

template <class P>
ORLIX_KERNEL P maximum(P a, P b)
{
    return a > b ? a : b;
}

/// Products of neighbouring 16-bit lanes, added in pairs. Two products of -32768 with itself give 2^31, which is right
/// as an unsigned number.
template <Domain::domain D, class P>
ORLIX_KERNEL Pack<std::uint32_t, D> multiplyAddPairs(P a, P b)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<std::uint32_t, D>)_mm_madd_epi16((__m128i)a, (__m128i)b);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<std::uint32_t, D>)_mm512_madd_epi16((__m512i)a, (__m512i)b);
    } else {
        return (Pack<std::uint32_t, D>)_mm256_madd_epi16((__m256i)a, (__m256i)b);
    }
}

/// `sums` plus neighbouring lanes of `a`, added in pairs.
template <Domain::domain D, class P>
ORLIX_KERNEL Pack<std::int32_t, D> addPairs(Pack<std::int32_t, D> sums, P a)
{
#ifdef __AVX512VNNI__
    if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<std::int32_t, D>)_mm512_dpwssd_epi32((__m512i)sums, (__m512i)a, _mm512_set1_epi16(1));
    }
#endif
    return sums + (Pack<std::int32_t, D>)multiplyAddPairs<D>(a, splat<P>(std::int16_t{1}));
}

/// The sum of each eight neighbouring bytes.
template <Domain::domain D, class P>
ORLIX_KERNEL Pack<std::uint64_t, D> addBytes(P a)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<std::uint64_t, D>)_mm_sad_epu8((__m128i)a, (__m128i)P{});
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<std::uint64_t, D>)_mm512_sad_epu8((__m512i)a, (__m512i)P{});
    } else {
        return (Pack<std::uint64_t, D>)_mm256_sad_epu8((__m256i)a, (__m256i)P{});
    }
}

/// The squares of the low halves of 64-bit lanes.
template <Domain::domain D, class P>
ORLIX_KERNEL Pack<std::uint64_t, D> squareLow(P a)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<std::uint64_t, D>)_mm_mul_epu32((__m128i)a, (__m128i)a);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<std::uint64_t, D>)_mm512_mul_epu32((__m512i)a, (__m512i)a);
    } else {
        return (Pack<std::uint64_t, D>)_mm256_mul_epu32((__m256i)a, (__m256i)a);
    }
}

/// The integers of so many bytes.
template <std::size_t Size>
struct IntegersOf;
template <>
struct IntegersOf<1>
{
    using Signed = signed char;
    using Unsigned = std::uint8_t;
};
template <>
struct IntegersOf<2>
{
    using Signed = std::int16_t;
    using Unsigned = std::uint16_t;
};
template <>
struct IntegersOf<4>
{
    using Signed = std::int32_t;
    using Unsigned = std::uint32_t;
};
template <class T>
using Unsigned = typename IntegersOf<sizeof(T)>::Unsigned;

/// What a comparison of pixels of type T gives: all ones where it holds, else 0.
template <class T, Domain::domain D>
using LaneMask = Pack<typename IntegersOf<sizeof(T)>::Signed, D>;

/// The 32-bit lanes of a selection as bits.
template <Domain::domain D, class S>
ORLIX_KERNEL std::uint32_t laneBits(S selection)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return std::uint32_t(_mm_movemask_ps((__m128)selection));
    } else if constexpr (D == Domain::eIS_AVX512) {
        return _mm512_movepi32_mask((__m512i)selection);
    } else {
        return std::uint32_t(_mm256_movemask_ps((__m256)selection));
    }
}

/// Writes the selected lanes one behind the other, and tells how many; there is room for a whole pack.
template <Domain::domain D, class S>
ORLIX_KERNEL std::size_t storeSelected(S selection, Pack<std::uint32_t, D> x, std::uint32_t* to)
{
    std::uint32_t bits = laneBits<D>(selection);
    if constexpr (D == Domain::eIS_AVX512) {
        // In a register: some processors are slow where this goes to memory.
        store((Pack<std::uint32_t, D>)_mm512_maskz_compress_epi32(__mmask16(bits), (__m512i)x), to);
        return std::size_t(__builtin_popcount(bits));
    } else {
        std::size_t size = 0;
        if (bits != 0) {
            std::uint32_t lane[lanes<std::uint32_t, D>];
            store(x, lane);
            for (; bits != 0; bits &= bits - 1) {
                to[size++] = lane[__builtin_ctz(bits)];
            }
        }
        return size;
    }
}

/// Which of the next pixels of type T count: those whose mask byte is not 0.
template <class T, Domain::domain D>
ORLIX_KERNEL LaneMask<T, D> loadLaneMask(const std::uint8_t* mask)
{
    using S = LaneMask<T, D>;
    if constexpr (sizeof(T) == 1) {
        return load<S>(mask) != 0;
    } else if constexpr (D == Domain::eIS_SSE2) {
        if constexpr (sizeof(T) == 2) {
            const __m128i bytes = _mm_loadl_epi64((const __m128i*)mask);
            return (S)_mm_unpacklo_epi8(bytes, _mm_setzero_si128()) != 0;
        } else {
            std::int32_t four;
            __builtin_memcpy(&four, mask, sizeof four);
            const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128());
            return (S)_mm_unpacklo_epi16(words, _mm_setzero_si128()) != 0;
        }
    } else if constexpr (D == Domain::eIS_AVX) {
        static_assert(sizeof(T) == 4);
        const __m128i zero = _mm_setzero_si128();
        const __m128i words = _mm_unpacklo_epi8(_mm_loadl_epi64((const __m128i*)mask), zero);
        return (S)_mm256_set_m128i(_mm_unpackhi_epi16(words, zero), _mm_unpacklo_epi16(words, zero)) != 0;
    } else if constexpr (D == Domain::eIS_AVX512) {
        if constexpr (sizeof(T) == 2) {
            return (S)_mm512_cvtepu8_epi16(_mm256_loadu_si256((const __m256i*)mask)) != 0;
        } else {
            return (S)_mm512_cvtepu8_epi32(_mm_loadu_si128((const __m128i*)mask)) != 0;
        }
    } else {
        if constexpr (sizeof(T) == 2) {
            return (S)_mm256_cvtepu8_epi16(_mm_loadu_si128((const __m128i*)mask)) != 0;
        } else {
            return (S)_mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i*)mask)) != 0;
        }
    }
}

/// The selected lanes; 0 elsewhere.
template <class P, class S>
ORLIX_KERNEL P keep(S selection, P x)
{
    return (P)(selection & (S)x);
}

/// |x|
template <class P>
ORLIX_KERNEL P magnitude(P x)
{
    static_assert(sizeof(x[0]) == 4);
    using Bits = typename PackOf<std::int32_t, sizeof(P)>::Type;
    return (P)((Bits)x & 0x7fffffff);
}

/// 32-bit lanes, seen as signed numbers, rounded to single precision.
template <Domain::domain D, class P>
ORLIX_KERNEL Pack<float, D> signedToFloats(P x)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<float, D>)_mm_cvtepi32_ps((__m128i)x);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<float, D>)_mm512_cvtepi32_ps((__m512i)x);
    } else {
        return (Pack<float, D>)_mm256_cvtepi32_ps((__m256i)x);
    }
}

/// Toward zero; what no 32-bit number can hold, NaN included, becomes 0x80000000.
template <Domain::domain D>
ORLIX_KERNEL Pack<std::int32_t, D> truncate(Pack<float, D> x)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<std::int32_t, D>)_mm_cvttps_epi32((__m128)x);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<std::int32_t, D>)_mm512_cvttps_epi32((__m512)x);
    } else {
        return (Pack<std::int32_t, D>)_mm256_cvttps_epi32((__m256)x);
    }
}

/// The same for doubles, stored one after the other.
template <Domain::domain D>
ORLIX_KERNEL void storeTruncated(Pack<double, D> x, std::int32_t* to)
{
    if constexpr (D == Domain::eIS_SSE2) {
        _mm_storel_epi64((__m128i*)to, _mm_cvttpd_epi32((__m128d)x));
    } else if constexpr (D == Domain::eIS_AVX512) {
        _mm256_storeu_si256((__m256i*)to, _mm512_cvttpd_epi32((__m512d)x));
    } else {
        _mm_storeu_si128((__m128i*)to, _mm256_cvttpd_epi32((__m256d)x));
    }
}

/// Pixels of 8 or 16 bits in signed lanes of twice the width, as many as there are lanes.
template <Domain::domain D, class T>
ORLIX_KERNEL auto loadWidened(const T* pixels)
{
    static_assert(sizeof(T) < 4);
    if constexpr (sizeof(T) == 1) {
        using Words = Pack<std::int16_t, D>;
        if constexpr (D == Domain::eIS_SSE2) {
            const __m128i bytes = _mm_loadl_epi64((const __m128i*)pixels);
            const __m128i zero = _mm_setzero_si128();
            return (Words)(isSigned<T> ? _mm_srai_epi16(_mm_unpacklo_epi8(zero, bytes), 8)
                                       : _mm_unpacklo_epi8(bytes, zero));
        } else if constexpr (D == Domain::eIS_AVX512) {
            const __m256i bytes = _mm256_loadu_si256((const __m256i*)pixels);
            return (Words)(isSigned<T> ? _mm512_cvtepi8_epi16(bytes) : _mm512_cvtepu8_epi16(bytes));
        } else {
            const __m128i bytes = _mm_loadu_si128((const __m128i*)pixels);
            return (Words)(isSigned<T> ? _mm256_cvtepi8_epi16(bytes) : _mm256_cvtepu8_epi16(bytes));
        }
    } else {
        using Numbers = Pack<std::int32_t, D>;
        if constexpr (D == Domain::eIS_SSE2) {
            const __m128i words = _mm_loadl_epi64((const __m128i*)pixels);
            const __m128i zero = _mm_setzero_si128();
            return (Numbers)(isSigned<T> ? _mm_srai_epi32(_mm_unpacklo_epi16(zero, words), 16)
                                         : _mm_unpacklo_epi16(words, zero));
        } else if constexpr (D == Domain::eIS_AVX512) {
            const __m256i words = _mm256_loadu_si256((const __m256i*)pixels);
            return (Numbers)(isSigned<T> ? _mm512_cvtepi16_epi32(words) : _mm512_cvtepu16_epi32(words));
        } else {
            const __m128i words = _mm_loadu_si128((const __m128i*)pixels);
            return (Numbers)(isSigned<T> ? _mm256_cvtepi16_epi32(words) : _mm256_cvtepu16_epi32(words));
        }
    }
}

/// As many pixels as there are lanes for floats, rounded to single precision.
template <Domain::domain D, class T>
ORLIX_KERNEL Pack<float, D> loadAsFloats(const T* pixels)
{
    using Floats = Pack<float, D>;
    if constexpr (isFloat<T>) {
        return load<Floats>(pixels);
    } else if constexpr (sizeof(T) == 1 && D == Domain::eIS_SSE2) {
        std::int32_t four;
        __builtin_memcpy(&four, pixels, sizeof four);
        const __m128i zero = _mm_setzero_si128();
        const __m128i bytes = _mm_cvtsi32_si128(four);
        // A signed byte is moved to the top of its lane, and from there down with its sign.
        return (Floats)_mm_cvtepi32_ps(
            isSigned<T> ? _mm_srai_epi32(_mm_unpacklo_epi16(zero, _mm_unpacklo_epi8(zero, bytes)), 24)
                        : _mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero));
    } else if constexpr (sizeof(T) == 1 && D == Domain::eIS_AVX512) {
        const __m128i bytes = _mm_loadu_si128((const __m128i*)pixels);
        return (Floats)_mm512_cvtepi32_ps(isSigned<T> ? _mm512_cvtepi8_epi32(bytes) : _mm512_cvtepu8_epi32(bytes));
    } else if constexpr (sizeof(T) == 1) {
        const __m128i bytes = _mm_loadl_epi64((const __m128i*)pixels);
        return (Floats)_mm256_cvtepi32_ps(isSigned<T> ? _mm256_cvtepi8_epi32(bytes) : _mm256_cvtepu8_epi32(bytes));
    } else if constexpr (sizeof(T) == 2) {
        return signedToFloats<D>(loadWidened<D>(pixels));
    } else {
        const auto x = load<Pack<std::uint32_t, D>>(pixels);
        if constexpr (isSigned<T>) {
            return signedToFloats<D>(x);
        } else {
            // Both halves are exact, so their sum is rounded once.
            return signedToFloats<D>(x >> 16) * 65536.f + signedToFloats<D>(x & 0xffffu);
        }
    }
}

/// The lower or upper half of a pack of floats as doubles.
template <Domain::domain D, bool Upper>
ORLIX_KERNEL Pack<double, D> toDoubles(Pack<float, D> x)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<double, D>)_mm_cvtps_pd(Upper ? _mm_movehl_ps((__m128)x, (__m128)x) : (__m128)x);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<double, D>)_mm512_cvtps_pd(_mm512_extractf32x8_ps((__m512)x, Upper));
    } else {
        return (Pack<double, D>)_mm256_cvtps_pd(_mm256_extractf128_ps((__m256)x, Upper));
    }
}

/// As many floats as there are lanes for doubles. (A compiler's own vector conversion goes through memory.)
template <Domain::domain D>
ORLIX_KERNEL Pack<double, D> loadAsDoubles(const float* pixels)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (Pack<double, D>)_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64((const __m128i*)pixels)));
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<double, D>)_mm512_cvtps_pd(_mm256_loadu_ps(pixels));
    } else {
        return (Pack<double, D>)_mm256_cvtps_pd(_mm_loadu_ps(pixels));
    }
}

/// As many 32-bit integers as there are lanes for doubles.
template <Domain::domain D, class T>
ORLIX_KERNEL Pack<double, D> loadIntegersAsDoubles(const T* pixels)
{
    static_assert(!isFloat<T> && sizeof(T) == 4);
    using Bits = typename PackOf<std::uint32_t, packBytes<D> / 2>::Type;
    // Unsigned numbers are moved into the signed range and back.
    constexpr std::uint32_t flip = isSigned<T> ? 0 : 0x80000000u;
    constexpr double moved = isSigned<T> ? 0 : 2147483648.0;
    Bits x;
    __builtin_memcpy(&x, pixels, sizeof x);
    x ^= flip;
    if constexpr (D == Domain::eIS_SSE2) {
        long long two;
        __builtin_memcpy(&two, &x, sizeof two);
        return (Pack<double, D>)_mm_cvtepi32_pd(_mm_cvtsi64_si128(two)) + moved;
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Pack<double, D>)_mm512_cvtepi32_pd((__m256i)x) + moved;
    } else {
        return (Pack<double, D>)_mm256_cvtepi32_pd((__m128i)x) + moved;
    }
}

/// a * b + c where the product is exact, so that fusing the two changes nothing.
template <Domain::domain D, class P>
ORLIX_KERNEL P multiplyAdd(P a, P b, P c)
{
#ifdef __FMA__
    if constexpr (D == Domain::eIS_AVX2) {
        return (P)_mm256_fmadd_pd((__m256d)a, (__m256d)b, (__m256d)c);
    }
#endif
#ifdef __AVX512F__
    if constexpr (D == Domain::eIS_AVX512) {
        return (P)_mm512_fmadd_pd((__m512d)a, (__m512d)b, (__m512d)c);
    }
#endif
    return a * b + c;
}

/// sum + x * x where the product is exact.
template <Domain::domain D, class P>
ORLIX_KERNEL P addSquare(P sum, P x)
{
    return multiplyAdd<D>(x, x, sum);
}

/// Lane 0 of what `combine` makes of all lanes: the upper half of them with the lower half, and so on.
template <class Lane, class P, class Combine>
ORLIX_KERNEL Lane combineLanes(P pack, Combine combine)
{
    using Sixteen = typename PackOf<Lane, 16>::Type;
    Sixteen part[sizeof(P) / 16];
    __builtin_memcpy(part, &pack, sizeof(P));
    for (std::size_t width = sizeof(P) / 32; width != 0; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            part[k] = combine(part[k], part[k + width]);
        }
    }
    Sixteen x = part[0];
    x = combine(x, (Sixteen)_mm_srli_si128((__m128i)x, 8));
    if constexpr (sizeof(Lane) <= 4) {
        x = combine(x, (Sixteen)_mm_srli_si128((__m128i)x, 4));
    }
    if constexpr (sizeof(Lane) <= 2) {
        x = combine(x, (Sixteen)_mm_srli_si128((__m128i)x, 2));
    }
    if constexpr (sizeof(Lane) == 1) {
        x = combine(x, (Sixteen)_mm_srli_si128((__m128i)x, 1));
    }
    return x[0];
}

/// The lowest and the highest lane, for lanes without NaN.
template <class Lane, class P>
ORLIX_KERNEL Lane minimumLane(P pack)
{
    return combineLanes<Lane>(
        pack, [](auto a, auto b) __attribute__((always_inline)) { return minimum(a, b); });
}
template <class Lane, class P>
ORLIX_KERNEL Lane maximumLane(P pack)
{
    return combineLanes<Lane>(
        pack, [](auto a, auto b) __attribute__((always_inline)) { return maximum(a, b); });
}

/// The sum of all lanes, seen as numbers of type Lane.
template <class Lane, class Sum, class P>
ORLIX_KERNEL Sum addLanes(P pack)
{
    Lane lane[sizeof(P) / sizeof(Lane)];
    __builtin_memcpy(lane, &pack, sizeof(P)); // an indexed pack would live in memory
    Sum sum = 0;
    for (const Lane x : lane) {
        sum += x;
    }
    return sum;
}

} // namespace

} // namespace orlix::imaproc
