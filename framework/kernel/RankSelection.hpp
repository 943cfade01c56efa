#pragma once

#include <framework/kernel/Columns.hpp>
#include <framework/kernel/Pack.hpp>
#include <framework/kernel/Run.hpp>

/// The selection of the pixel of a rank, for many columns at once or for one row.
///
/// Pixels are compared by keys, signed integers in their order. A key is found byte by byte, from the highest: of all
/// keys that byte is taken (0 where a key is below those that begin like the wanted one, 255 where it is above), and
/// the byte of the rank is found bit by bit, counting the bytes below a candidate in lanes of one byte. So a pixel of n
/// bytes costs 8 n counts of a byte, whatever the order of the pixels.
namespace orlix::imaproc
{

namespace
{

template <class T>
using Key = typename IntegersOf<sizeof(T)>::Signed;

/// The keys of pixels; that of a NaN is the highest.
template <class T, class P>
ORLIX_KERNEL auto toKeys(P x)
{
    using K = Key<T>;
    using Keys = typename PackOf<K, sizeof(P)>::Type;
    const Keys bits = (Keys)x;
    if constexpr (isFloat<T>) {
        // Negative numbers count downward.
        const Keys key = bits ^ ((bits >> 31) & 0x7fffffff);
        return x == x ? key : splat<Keys>(highestOf<K>);
    } else {
        return isSigned<T> ? bits : bits ^ splat<Keys>(lowestOf<K>);
    }
}

template <class T, class Keys>
ORLIX_KERNEL auto toPixels(Keys key)
{
    using P = typename PackOf<T, sizeof(Keys)>::Type;
    if constexpr (isFloat<T>) {
        return (P)(key ^ ((key >> 31) & 0x7fffffff));
    } else {
        return isSigned<T> ? (P)key : (P)(key ^ splat<Keys>(lowestOf<Key<T>>));
    }
}

/// The same for one pixel.
template <class T>
ORLIX_KERNEL Key<T> toKey(T x)
{
    if constexpr (isFloat<T>) {
        Key<T> bits;
        __builtin_memcpy(&bits, &x, sizeof bits);
        return x == x ? bits ^ ((bits >> 31) & 0x7fffffff) : highestOf<Key<T>>;
    } else {
        return isSigned<T> ? Key<T>(x) : Key<T>(x ^ T(lowestOf<Key<T>>));
    }
}

template <class T>
ORLIX_KERNEL T toPixel(Key<T> key)
{
    if constexpr (isFloat<T>) {
        const Key<T> bits = key ^ ((key >> 31) & 0x7fffffff);
        T x;
        __builtin_memcpy(&x, &bits, sizeof x);
        return x;
    } else {
        return isSigned<T> ? T(key) : T(T(key) ^ T(lowestOf<Key<T>>));
    }
}

/// The low bytes of packs of lanes below 256, in an order that widenBytes() knows.
template <Domain::domain D, class Lanes>
ORLIX_KERNEL Pack<std::uint8_t, D> narrowToBytes(const Lanes* x)
{
    using Bytes = Pack<std::uint8_t, D>;
    using K = typename IntegersOf<sizeof(x[0][0])>::Signed;
    if constexpr (sizeof(K) == 4) {
        typename PackOf<std::int16_t, sizeof(Lanes)>::Type words[2];
        for (int half = 0; half < 2; ++half) {
            if constexpr (D == Domain::eIS_SSE2) {
                words[half] =
                    (decltype(words[half] + 0))_mm_packs_epi32((__m128i)x[2 * half], (__m128i)x[2 * half + 1]);
            } else if constexpr (D == Domain::eIS_AVX512) {
                words[half] =
                    (decltype(words[half] + 0))_mm512_packs_epi32((__m512i)x[2 * half], (__m512i)x[2 * half + 1]);
            } else {
                words[half] =
                    (decltype(words[half] + 0))_mm256_packs_epi32((__m256i)x[2 * half], (__m256i)x[2 * half + 1]);
            }
        }
        return narrowToBytes<D>(words);
    } else if constexpr (D == Domain::eIS_SSE2) {
        return (Bytes)_mm_packus_epi16((__m128i)x[0], (__m128i)x[1]);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (Bytes)_mm512_packus_epi16((__m512i)x[0], (__m512i)x[1]);
    } else {
        return (Bytes)_mm256_packus_epi16((__m256i)x[0], (__m256i)x[1]);
    }
}

/// The inverse of narrowToBytes(): a pack of bytes as 2 packs of 16-bit or 4 of 32-bit lanes.
template <Domain::domain D, class Lanes>
ORLIX_KERNEL void widenBytes(Pack<std::uint8_t, D> bytes, Lanes* x)
{
    if constexpr (sizeof(x[0][0]) == 4) {
        using Words = typename PackOf<std::uint16_t, sizeof(Lanes)>::Type;
        Words words[2];
        widenBytes<D>(bytes, words);
        for (int half = 0; half < 2; ++half) {
            if constexpr (D == Domain::eIS_SSE2) {
                x[2 * half] = (Lanes)_mm_unpacklo_epi16((__m128i)words[half], __m128i{});
                x[2 * half + 1] = (Lanes)_mm_unpackhi_epi16((__m128i)words[half], __m128i{});
            } else if constexpr (D == Domain::eIS_AVX512) {
                x[2 * half] = (Lanes)_mm512_unpacklo_epi16((__m512i)words[half], __m512i{});
                x[2 * half + 1] = (Lanes)_mm512_unpackhi_epi16((__m512i)words[half], __m512i{});
            } else {
                x[2 * half] = (Lanes)_mm256_unpacklo_epi16((__m256i)words[half], __m256i{});
                x[2 * half + 1] = (Lanes)_mm256_unpackhi_epi16((__m256i)words[half], __m256i{});
            }
        }
    } else if constexpr (D == Domain::eIS_SSE2) {
        x[0] = (Lanes)_mm_unpacklo_epi8((__m128i)bytes, __m128i{});
        x[1] = (Lanes)_mm_unpackhi_epi8((__m128i)bytes, __m128i{});
    } else if constexpr (D == Domain::eIS_AVX512) {
        x[0] = (Lanes)_mm512_unpacklo_epi8((__m512i)bytes, __m512i{});
        x[1] = (Lanes)_mm512_unpackhi_epi8((__m512i)bytes, __m512i{});
    } else {
        x[0] = (Lanes)_mm256_unpacklo_epi8((__m256i)bytes, __m256i{});
        x[1] = (Lanes)_mm256_unpackhi_epi8((__m256i)bytes, __m256i{});
    }
}

/// Whether a rank is one of a column (a lane), or of all lanes together (a row that was broken into packs).
enum class Ranking
{
    ofLanes,
    ofAll
};

/// How many bytes are below the candidate of their lane, and which lanes have no more than the rank: all ones there.
template <Domain::domain D, Ranking R>
ORLIX_KERNEL Pack<signed char, D> isAtMost(const Pack<signed char, D>* bytes, std::size_t count,
                                           Pack<signed char, D> candidate, std::size_t rank)
{
    using Signed = Pack<signed char, D>;
    using Bytes = Pack<std::uint8_t, D>;
    using Wide = Pack<std::uint32_t, D>;
    constexpr std::size_t block = 254; // of which each of two lanes of a byte counts a half, so that their sum fits
    Wide below[4]{};
    std::uint64_t all = 0;
    for (std::size_t i = 0; i < count;) {
        const std::size_t end = count - i < block ? count : i + block;
        Bytes few[2]{};
        for (; i + 2 <= end; i += 2) {
            few[0] -= (Bytes)(bytes[i] < candidate);
            few[1] -= (Bytes)(bytes[i + 1] < candidate);
        }
        if (i < end) {
            few[0] -= (Bytes)(bytes[i] < candidate);
            ++i;
        }
        const Bytes sum = few[0] + few[1];
        if constexpr (R == Ranking::ofAll) {
            all += addLanes<std::uint64_t, std::uint64_t>(addBytes<D>(sum));
        } else if (count <= block) {
            return (Signed)(sum <= splat<Bytes>(std::uint8_t(rank)));
        } else {
            Wide wide[4];
            widenBytes<D>(sum, wide);
            for (int k = 0; k < 4; ++k) {
                below[k] += wide[k];
            }
        }
    }
    if constexpr (R == Ranking::ofAll) {
        return all <= rank ? ~Signed{} : Signed{};
    } else {
        Wide isSo[4];
        for (int k = 0; k < 4; ++k) {
            isSo[k] = (Wide)(below[k] <= splat<Wide>(std::uint32_t(rank))) & 0xff;
        }
        return (Signed)narrowToBytes<D>(isSo);
    }
}

/// The byte of a rank: the highest that has at most `rank` bytes below it.
template <Domain::domain D, Ranking R>
ORLIX_KERNEL Pack<signed char, D> selectByte(const Pack<signed char, D>* bytes, std::size_t count, std::size_t rank)
{
    using Signed = Pack<signed char, D>;
    using Bytes = Pack<std::uint8_t, D>;
    Signed found = splat<Signed>((signed char)-128);
#pragma GCC unroll 1
    for (unsigned bit = 128; bit != 0; bit >>= 1) {
        const Signed candidate = (Signed)((Bytes)found + splat<Bytes>(std::uint8_t(bit)));
        const Signed isSo = isAtMost<D, R>(bytes, count, candidate, rank);
        found = (candidate & isSo) | (found & ~isSo);
    }
    return found;
}

/// The packs of keys that make one pack of bytes.
template <class K, Domain::domain D>
struct KeyGroup
{
    using Keys = Pack<K, D>;
    static constexpr std::size_t packs = sizeof(K);

    Keys keys[packs];
};

/// The keys of a rank among `count` groups. `bytes` has room for a pack of bytes per group.
template <class K, Domain::domain D, Ranking R>
ORLIX_KERNEL KeyGroup<K, D> selectKeys(const KeyGroup<K, D>* groups, std::size_t count, std::size_t rank,
                                       Pack<signed char, D>* bytes)
{
    using Group = KeyGroup<K, D>;
    using Keys = typename Group::Keys;
    using Bits = Pack<Unsigned<K>, D>;
    using Bytes = Pack<std::uint8_t, D>;
    Group low; // the lowest keys that begin with the bytes found so far
    for (Keys& keys : low.keys) {
        keys = splat<Keys>(lowestOf<K>);
    }
    if constexpr (sizeof(K) == 1) {
        low.keys[0] = selectByte<D, R>(&groups->keys[0], count, rank);
    } else {
#pragma GCC unroll 1
        for (int shift = 8 * int(sizeof(K)) - 8; shift >= 0; shift -= 8) {
            // What keys that begin so may exceed `low` by.
            const auto span =
                Unsigned<K>(shift + 8 == 8 * int(sizeof(K)) ? Unsigned<K>(-1) : (Unsigned<K>(1) << (shift + 8)) - 1);
            Group high;
            for (std::size_t k = 0; k < Group::packs; ++k) {
                high.keys[k] = (Keys)((Bits)low.keys[k] + span);
            }
            for (std::size_t i = 0; i < count; ++i) {
                Bits next[Group::packs];
                for (std::size_t k = 0; k < Group::packs; ++k) {
                    const Keys key = minimum(maximum(groups[i].keys[k], low.keys[k]), high.keys[k]);
                    next[k] = ((Bits)key - (Bits)low.keys[k]) >> shift;
                }
                bytes[i] = (Pack<signed char, D>)(narrowToBytes<D>(next) ^ splat<Bytes>(std::uint8_t{0x80}));
            }
            Bits found[Group::packs];
            widenBytes<D>((Bytes)selectByte<D, R>(bytes, count, rank) ^ splat<Bytes>(std::uint8_t{0x80}), found);
            for (std::size_t k = 0; k < Group::packs; ++k) {
                low.keys[k] = (Keys)((Bits)low.keys[k] + (found[k] << shift));
            }
        }
    }
    return low;
}

/// The pack of a rank among `count` packs, lane by lane: the four lowest are taken out until that of the rank is one of
/// them. Afterwards the packs are gone. One function serves all pixel types of a size.
template <class Keys>
[[gnu::noinline]] Keys selectAmongFew(Keys* keys, std::size_t count, std::size_t rank)
{
    using K = typename IntegersOf<sizeof(keys[0][0])>::Signed;
    for (;;) {
        Keys low[4];
        low[0] = low[1] = low[2] = low[3] = splat<Keys>(highestOf<K>);
        for (std::size_t i = 0; i < count; ++i) {
            const Keys rest = maximum(low[3], keys[i]);
            low[3] = minimum(low[3], keys[i]);
            for (int k = 3; k > 0; --k) {
                const Keys lower = minimum(low[k - 1], low[k]);
                low[k] = maximum(low[k - 1], low[k]);
                low[k - 1] = lower;
            }
            if (i >= 4) {
                keys[i - 4] = rest;
            }
        }
        if (rank < 4) {
            return rank == 0 ? low[0] : rank == 1 ? low[1] : rank == 2 ? low[2] : low[3];
        }
        rank -= 4;
        count -= 4;
    }
}

ORLIX_KERNEL unsigned char* alignScratch(unsigned char* scratch)
{
    return scratch + (64 - reinterpret_cast<std::uintptr_t>(scratch) % 64) % 64;
}

/// The pixel of rank size / 2 of a row.
template <class T, Domain::domain D>
T medianOfRow(Run<T> row, unsigned char* scratch)
{
    if (row.size <= 16) {
        Key<T> keys[16];
        for (std::size_t i = 0; i < row.size; ++i) {
            const Key<T> key = toKey(row.pixels[i]);
            std::size_t k = i;
            for (; k > 0 && key < keys[k - 1]; --k) {
                keys[k] = keys[k - 1];
            }
            keys[k] = key;
        }
        return toPixel<T>(keys[row.size / 2]);
    }
    using Group = KeyGroup<Key<T>, D>;
    constexpr std::size_t size = lanes<T, D> * Group::packs;
    auto* const groups = reinterpret_cast<Group*>(alignScratch(scratch));
    std::size_t count = 0;
    const auto addGroup = [&](const T* pixels) __attribute__((always_inline))
    {
        for (std::size_t k = 0; k < Group::packs; ++k) {
            groups[count].keys[k] = toKeys<T>(load<Pack<T, D>>(pixels + k * lanes<T, D>));
        }
        ++count;
    };
    for (std::size_t i = 0; i + size <= row.size; i += size) {
        addGroup(row.pixels + i);
    }
    if (const std::size_t rest = row.size % size; rest != 0) {
        // Filled up with keys that come after all others, so that they change no rank.
        T filled[size];
        for (T& pixel : filled) {
            pixel = toPixel<T>(highestOf<Key<T>>);
        }
        __builtin_memcpy(filled, row.pixels + row.size - rest, rest * sizeof(T));
        addGroup(filled);
    }
    const Group middle = selectKeys<Key<T>, D, Ranking::ofAll>(groups, count, row.size / 2,
                                                               reinterpret_cast<Pack<signed char, D>*>(groups + count));
    T median[lanes<T, D>];
    const auto pixels = toPixels<T>(middle.keys[0]);
    __builtin_memcpy(median, &pixels, sizeof median);
    return median[0];
}

} // namespace

} // namespace orlix::imaproc
