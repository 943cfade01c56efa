#pragma once

#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

/// The wide intrinsics that kernels call, lane by lane in plain C++. Included before a kernel text, it lets any machine
/// run the text of the AVX-512 kernels.
namespace orlix::test::emulated
{

template <class Lane, class Register>
struct Lanes
{
    static constexpr int count = sizeof(Register) / sizeof(Lane);
    Lane lane[count];

    Lanes() = default;
    explicit Lanes(const Register& from) { std::memcpy(lane, &from, sizeof lane); }
    Register get() const
    {
        Register to;
        std::memcpy(&to, lane, sizeof lane);
        return to;
    }
};

/// A register whose lane i is `f(i)`.
template <class Lane, class Register, class F>
Register fill(F f)
{
    Lanes<Lane, Register> to;
    for (int i = 0; i < Lanes<Lane, Register>::count; ++i) {
        to.lane[i] = static_cast<Lane>(f(i));
    }
    return to.get();
}

/// Lane by lane from one type to another.
template <class To, class Wide, class From, class Narrow>
Wide convert(const Narrow& x)
{
    const Lanes<From, Narrow> from{x};
    return fill<To, Wide>([&](int i) { return from.lane[i]; });
}

/// Bit i tells `f(i)`.
template <class F>
std::uint32_t bits(int count, F f)
{
    std::uint32_t mask = 0;
    for (int i = 0; i < count; ++i) {
        mask |= static_cast<std::uint32_t>(f(i) ? 1 : 0) << i;
    }
    return mask;
}

inline std::int32_t truncate(float x)
{
    return x >= -2147483648.f && x < 2147483648.f ? static_cast<std::int32_t>(x) : INT32_MIN;
}

/// The sum of `factor(j)` over the `Group` narrow lanes of each wide one, added to `sums`.
template <int Group, class Lane, class F>
__m512i addProducts(const __m512i& sums, F product)
{
    const Lanes<Lane, __m512i> from{sums};
    return fill<Lane, __m512i>([&](int i) {
        Lane sum = from.lane[i];
        for (int j = 0; j < Group; ++j) {
            sum = static_cast<Lane>(sum + static_cast<Lane>(product(i * Group + j)));
        }
        return sum;
    });
}

inline __m512i compress(unsigned mask, const __m512i& a)
{
    const Lanes<std::uint32_t, __m512i> x{a};
    std::uint32_t selected[16] = {};
    for (int i = 0, size = 0; i < 16; ++i) {
        if ((mask >> i & 1) != 0) {
            selected[size++] = x.lane[i];
        }
    }
    return fill<std::uint32_t, __m512i>([&](int i) { return selected[i]; });
}

inline __m512i maddWords(const __m512i& sums, const __m512i& a, const __m512i& b)
{
    const Lanes<std::int16_t, __m512i> x{a};
    const Lanes<std::int16_t, __m512i> y{b};
    return addProducts<2, std::uint32_t>(sums, [&](int i) { return x.lane[i] * y.lane[i]; });
}

inline __m512i maddBytes(const __m512i& sums, const __m512i& a, const __m512i& b)
{
    const Lanes<std::uint8_t, __m512i> x{a};
    const Lanes<std::int8_t, __m512i> y{b};
    return addProducts<4, std::uint32_t>(sums, [&](int i) { return x.lane[i] * y.lane[i]; });
}

inline __m512i sumBytes(const __m512i& a, const __m512i& b)
{
    const Lanes<std::uint8_t, __m512i> x{a};
    const Lanes<std::uint8_t, __m512i> y{b};
    return addProducts<8, std::uint64_t>(__m512i{}, [&](int i) { return std::abs(x.lane[i] - y.lane[i]); });
}

inline __m512i multiplyLow(const __m512i& a, const __m512i& b)
{
    const Lanes<std::uint64_t, __m512i> x{a};
    const Lanes<std::uint64_t, __m512i> y{b};
    return fill<std::uint64_t, __m512i>([&](int i) { return (x.lane[i] & 0xffffffffu) * (y.lane[i] & 0xffffffffu); });
}

inline __m512i multiplyHigh(const __m512i& a, const __m512i& b)
{
    const Lanes<std::uint16_t, __m512i> x{a};
    const Lanes<std::uint16_t, __m512i> y{b};
    return fill<std::uint16_t, __m512i>(
        [&](int i) { return std::uint32_t{x.lane[i]} * std::uint32_t{y.lane[i]} >> 16; });
}

/// The lanes of each 16 bytes of `a`, then those of `b`, limited to the range of narrow ones.
template <class Narrow, class Wide>
__m512i pack(const __m512i& a, const __m512i& b)
{
    constexpr int group = 16 / sizeof(Wide);
    const Lanes<Wide, __m512i> x{a};
    const Lanes<Wide, __m512i> y{b};
    return fill<Narrow, __m512i>([&](int i) {
        const int lane = i / (2 * group) * group + i % group;
        const Wide value = i % (2 * group) < group ? x.lane[lane] : y.lane[lane];
        return std::min<Wide>(std::max<Wide>(value, std::numeric_limits<Narrow>::min()),
                              std::numeric_limits<Narrow>::max());
    });
}

/// Of each 16 bytes, the lanes of the lower (0) or upper (1) half of `a` and `b`, by turns.
template <class Lane>
__m512i interleave(const __m512i& a, const __m512i& b, int half)
{
    constexpr int group = 16 / sizeof(Lane);
    const Lanes<Lane, __m512i> x{a};
    const Lanes<Lane, __m512i> y{b};
    return fill<Lane, __m512i>([&](int i) {
        const int lane = i / group * group + half * group / 2 + i % group / 2;
        return i % 2 == 0 ? x.lane[lane] : y.lane[lane];
    });
}

inline __m512i madd52(const __m512i& sums, const __m512i& a, const __m512i& b, int shift)
{
    __extension__ using Wide = unsigned __int128;
    constexpr std::uint64_t mask = (std::uint64_t{1} << 52) - 1;
    const Lanes<std::uint64_t, __m512i> x{a};
    const Lanes<std::uint64_t, __m512i> y{b};
    return addProducts<1, std::uint64_t>(sums, [&](int i) {
        return static_cast<std::uint64_t>(Wide{x.lane[i] & mask} * (y.lane[i] & mask) >> shift) & mask;
    });
}

template <class Lane>
std::uint32_t equal(const __m512i& a, const __m512i& b)
{
    const Lanes<Lane, __m512i> x{a};
    const Lanes<Lane, __m512i> y{b};
    return bits(Lanes<Lane, __m512i>::count, [&](int i) { return x.lane[i] == y.lane[i]; });
}

template <class Register>
Register loadUnaligned(const void* from)
{
    Register to;
    std::memcpy(&to, from, sizeof to);
    return to;
}

template <class Register>
void storeUnaligned(void* to, const Register& from)
{
    std::memcpy(to, &from, sizeof from);
}

} // namespace orlix::test::emulated

#undef _mm256_loadu_ps
#undef _mm256_loadu_si256
#undef _mm512_cmpeq_epi16_mask
#undef _mm512_cmpeq_epi32_mask
#undef _mm512_cvtepi16_epi32
#undef _mm512_cvtepi32_pd
#undef _mm512_cvtepi32_ps
#undef _mm512_cvtepi8_epi32
#undef _mm512_cvtepu16_epi32
#undef _mm512_cvtepu8_epi16
#undef _mm512_cvtepu8_epi32
#undef _mm512_cvtps_pd
#undef _mm512_cvttpd_epi32
#undef _mm512_cvttps_epi32
#undef _mm256_storeu_si256
#undef _mm512_dpbusd_epi32
#undef _mm512_dpwssd_epi32
#undef _mm512_extractf32x8_ps
#undef _mm512_madd52hi_epu64
#undef _mm512_madd52lo_epu64
#undef _mm512_madd_epi16
#undef _mm512_maskz_compress_epi32
#undef _mm512_movepi32_mask
#undef _mm512_mulhi_epu16
#undef _mm512_packs_epi32
#undef _mm512_packus_epi16
#undef _mm512_unpackhi_epi16
#undef _mm512_unpackhi_epi8
#undef _mm512_unpacklo_epi16
#undef _mm512_unpacklo_epi8
#undef _mm512_mul_epu32
#undef _mm512_sad_epu8
#undef _mm512_set1_epi16
#undef _mm512_set1_epi8

#define ORLIX_EMULATED ::orlix::test::emulated
#define _mm256_loadu_ps(p) ORLIX_EMULATED::loadUnaligned<__m256>(p)
#define _mm256_loadu_si256(p) ORLIX_EMULATED::loadUnaligned<__m256i>(p)
#define _mm512_cmpeq_epi16_mask(a, b) ORLIX_EMULATED::equal<std::uint16_t>(a, b)
#define _mm512_cmpeq_epi32_mask(a, b) ORLIX_EMULATED::equal<std::uint32_t>(a, b)
#define _mm512_cvtepi16_epi32(a) ORLIX_EMULATED::convert<std::int32_t, __m512i, std::int16_t>(a)
#define _mm512_cvtepi32_pd(a) ORLIX_EMULATED::convert<double, __m512d, std::int32_t>(a)
#define _mm512_cvtepi8_epi16(a) ORLIX_EMULATED::convert<std::int16_t, __m512i, std::int8_t>(a)
#define _mm512_cvtepi8_epi32(a) ORLIX_EMULATED::convert<std::int32_t, __m512i, std::int8_t>(a)
#define _mm512_cvtepi32_ps(a) ORLIX_EMULATED::convert<float, __m512, std::int32_t>(a)
#define _mm512_cvtepu16_epi32(a) ORLIX_EMULATED::convert<std::int32_t, __m512i, std::uint16_t>(a)
#define _mm512_cvtepu8_epi16(a) ORLIX_EMULATED::convert<std::int16_t, __m512i, std::uint8_t>(a)
#define _mm512_cvtepu8_epi32(a) ORLIX_EMULATED::convert<std::int32_t, __m512i, std::uint8_t>(a)
#define _mm512_cvtps_pd(a) ORLIX_EMULATED::convert<double, __m512d, float>(a)
#define _mm512_cvttps_epi32(a)                                                                                         \
    ORLIX_EMULATED::fill<std::int32_t, __m512i>(                                                                       \
        [from = ORLIX_EMULATED::Lanes<float, __m512>{a}](int i) { return ORLIX_EMULATED::truncate(from.lane[i]); })
#define _mm512_cvttpd_epi32(a) ORLIX_EMULATED::convert<std::int32_t, __m256i, double>(a)
#define _mm256_storeu_si256(to, a) ORLIX_EMULATED::storeUnaligned(to, a)
#define _mm512_dpbusd_epi32(sums, a, b) ORLIX_EMULATED::maddBytes(sums, a, b)
#define _mm512_dpwssd_epi32(sums, a, b) ORLIX_EMULATED::maddWords(sums, a, b)
#define _mm512_extractf32x8_ps(a, k)                                                                                   \
    ORLIX_EMULATED::fill<float, __m256>(                                                                               \
        [from = ORLIX_EMULATED::Lanes<float, __m512>{a}](int i) { return from.lane[8 * (k) + i]; })
#define _mm512_madd52hi_epu64(sums, a, b) ORLIX_EMULATED::madd52(sums, a, b, 52)
#define _mm512_madd52lo_epu64(sums, a, b) ORLIX_EMULATED::madd52(sums, a, b, 0)
#define _mm512_madd_epi16(a, b) ORLIX_EMULATED::maddWords(__m512i{}, a, b)
#define _mm512_maskz_compress_epi32(mask, a) ORLIX_EMULATED::compress(mask, a)
#define _mm512_movepi32_mask(a)                                                                                        \
    ORLIX_EMULATED::bits(16,                                                                                           \
                         [from = ORLIX_EMULATED::Lanes<std::int32_t, __m512i>{a}](int i) { return from.lane[i] < 0; })
#define _mm512_mul_epu32(a, b) ORLIX_EMULATED::multiplyLow(a, b)
#define _mm512_mulhi_epu16(a, b) ORLIX_EMULATED::multiplyHigh(a, b)
#define _mm512_packs_epi32(a, b) ORLIX_EMULATED::pack<std::int16_t, std::int32_t>(a, b)
#define _mm512_packus_epi16(a, b) ORLIX_EMULATED::pack<std::uint8_t, std::int16_t>(a, b)
#define _mm512_unpackhi_epi16(a, b) ORLIX_EMULATED::interleave<std::uint16_t>(a, b, 1)
#define _mm512_unpackhi_epi8(a, b) ORLIX_EMULATED::interleave<std::uint8_t>(a, b, 1)
#define _mm512_unpacklo_epi16(a, b) ORLIX_EMULATED::interleave<std::uint16_t>(a, b, 0)
#define _mm512_unpacklo_epi8(a, b) ORLIX_EMULATED::interleave<std::uint8_t>(a, b, 0)
#define _mm512_sad_epu8(a, b) ORLIX_EMULATED::sumBytes(a, b)
#define _mm512_set1_epi16(x) ORLIX_EMULATED::fill<std::int16_t, __m512i>([](int) { return x; })
#define _mm512_set1_epi8(x) ORLIX_EMULATED::fill<std::int8_t, __m512i>([](int) { return x; })
