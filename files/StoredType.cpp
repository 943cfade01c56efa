#include <files/StoredType.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace orlix::files
{

namespace
{

/// A binary16 number of IEEE 754.
struct Half
{
    std::uint16_t bits;

    float toFloat() const
    {
        const int exponent = bits >> 10 & 31;
        const auto fraction = static_cast<float>(bits & 1023);
        const float magnitude = exponent == 31  ? (fraction == 0 ? std::numeric_limits<float>::infinity()
                                                                 : std::numeric_limits<float>::quiet_NaN())
                                : exponent == 0 ? std::ldexp(fraction, -24)
                                                : std::ldexp(fraction + 1024, exponent - 25);
        return (bits & 0x8000) != 0 ? -magnitude : magnitude;
    }

    /// The nearest one.
    static Half from(double number)
    {
        const double magnitude = std::abs(number);
        const std::uint16_t sign = std::signbit(number) ? 0x8000 : 0;
        constexpr double overflow = 65520;
        constexpr double smallestNormal = 0x1p-14;
        int exponent = 0;
        double fraction = magnitude * 0x1p24;
        if (std::isnan(number)) {
            fraction = 0x7e00;
        } else if (magnitude >= overflow) {
            fraction = 0x7c00;
        } else if (magnitude >= smallestNormal) {
            exponent = std::ilogb(magnitude) + 14;
            fraction = std::ldexp(magnitude, 24 - exponent);
        }
        // The highest bit of a normal number's fraction counts as 1 in its exponent.
        return {static_cast<std::uint16_t>(sign | ((exponent << 10) + static_cast<int>(std::nearbyint(fraction))))};
    }
};

struct Bit
{
    std::uint8_t value;
};

template <class Visit>
auto visitType(StoredType type, Visit visit)
{
    switch (type) {
    case StoredType::UInt8:
        return visit(std::type_identity<std::uint8_t>{});
    case StoredType::Int8:
        return visit(std::type_identity<std::int8_t>{});
    case StoredType::UInt16:
        return visit(std::type_identity<std::uint16_t>{});
    case StoredType::Int16:
        return visit(std::type_identity<std::int16_t>{});
    case StoredType::UInt32:
        return visit(std::type_identity<std::uint32_t>{});
    case StoredType::Int32:
        return visit(std::type_identity<std::int32_t>{});
    case StoredType::Float32:
        return visit(std::type_identity<float>{});
    case StoredType::Binary:
        return visit(std::type_identity<Bit>{});
    case StoredType::UInt64:
        return visit(std::type_identity<std::uint64_t>{});
    case StoredType::Int64:
        return visit(std::type_identity<std::int64_t>{});
    case StoredType::Float64:
        return visit(std::type_identity<double>{});
    case StoredType::Float16:
        break;
    }
    return visit(std::type_identity<Half>{});
}

template <class T>
auto load(const std::byte* pixels, std::size_t i)
{
    T pixel;
    std::memcpy(&pixel, pixels + i * sizeof(T), sizeof(T));
    if constexpr (std::is_same_v<T, Half>) {
        return pixel.toFloat();
    } else if constexpr (std::is_same_v<T, Bit>) {
        return pixel.value;
    } else {
        return pixel;
    }
}

template <class To, class From>
To convert(From value)
{
    using Limits = std::numeric_limits<To>;
    if constexpr (std::is_same_v<To, Bit>) {
        return {static_cast<std::uint8_t>(value != 0 ? 1 : 0)};
    } else if constexpr (std::is_same_v<To, Half>) {
        return Half::from(static_cast<double>(value));
    } else if constexpr (std::is_floating_point_v<To>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_integral_v<From>) {
        return std::in_range<To>(value)              ? static_cast<To>(value)
               : std::cmp_less(value, Limits::min()) ? Limits::min()
                                                     : Limits::max();
    } else {
        const double rounded = std::nearbyint(static_cast<double>(value));
        // The highest 64-bit numbers round up to a double that is too large.
        return std::isnan(rounded)                                   ? To{0}
               : rounded < static_cast<double>(Limits::min())        ? Limits::min()
               : rounded >= static_cast<double>(Limits::max()) + 1.0 ? Limits::max()
                                                                     : static_cast<To>(rounded);
    }
}

template <class From, class To>
bool isSame(From from, To to)
{
    if constexpr (std::is_same_v<To, Bit>) {
        return from == static_cast<From>(to.value);
    } else if constexpr (std::is_same_v<To, Half>) {
        return static_cast<double>(from) == static_cast<double>(to.toFloat());
    } else if constexpr (std::is_integral_v<From> && std::is_integral_v<To>) {
        return std::cmp_equal(from, to);
    } else if constexpr (std::is_integral_v<From>) {
        // A number that rounding made too large comes back as the largest.
        return convert<From>(to) == from &&
               static_cast<double>(to) < static_cast<double>(std::numeric_limits<From>::max()) + 1.0;
    } else {
        return static_cast<double>(from) == static_cast<double>(to) || (from != from && !(to == to));
    }
}

} // namespace

const char* getName(StoredType type)
{
    static constexpr std::array names{"uint8",   "int8",   "uint16", "int16", "uint32",  "int32",
                                      "float32", "binary", "uint64", "int64", "float64", "float16"};
    return names[static_cast<std::size_t>(type)];
}

std::size_t getPixelSize(StoredType type)
{
    return visitType(type, []<class T>(std::type_identity<T>) { return sizeof(T); });
}

std::optional<image::eImageBufferType> findImageType(StoredType type)
{
    return type <= StoredType::Binary ? std::optional{static_cast<image::eImageBufferType>(type)} : std::nullopt;
}

StoredType toStored(image::eImageBufferType type)
{
    return static_cast<StoredType>(type);
}

std::optional<StoredType> findStoredType(NumberKind kind, std::size_t bytes)
{
    using enum StoredType;
    using Row = std::array<std::optional<StoredType>, 4>; // of 1, 2, 4 and 8 bytes
    static constexpr std::array<Row, 3> types{Row{UInt8, UInt16, UInt32, UInt64}, Row{Int8, Int16, Int32, Int64},
                                              Row{std::nullopt, Float16, Float32, Float64}};
    return std::has_single_bit(bytes) && bytes <= 8
               ? types[static_cast<std::size_t>(kind)][static_cast<std::size_t>(std::countr_zero(bytes))]
               : std::nullopt;
}

std::size_t convertPixels(const std::byte* from, StoredType fromType, std::byte* to, StoredType toType,
                          std::size_t count)
{
    return visitType(fromType, [&]<class From>(std::type_identity<From>) {
        return visitType(toType, [&]<class To>(std::type_identity<To>) {
            std::size_t changed = 0;
            for (std::size_t i = 0; i < count; ++i) {
                const auto value = load<From>(from, i);
                const To converted = convert<To>(value);
                changed += isSame(value, converted) ? 0 : 1;
                std::memcpy(to + i * sizeof(To), &converted, sizeof(To));
            }
            return changed;
        });
    });
}

void scalePixels(const std::byte* from, StoredType fromType, double* to, std::size_t count, const Scale& scale)
{
    visitType(fromType, [&]<class From>(std::type_identity<From>) {
        for (std::size_t i = 0; i < count; ++i) {
            to[i] = scale.slope * static_cast<double>(load<From>(from, i)) + scale.intercept;
        }
    });
}

void swapBytes(std::byte* pixels, std::size_t pixelSize, std::size_t count)
{
    const auto swapAll = [&]<class T>(T, auto swapOne) {
        for (std::size_t i = 0; i < count; ++i) {
            T pixel;
            std::memcpy(&pixel, pixels + i * sizeof(T), sizeof(T));
            pixel = swapOne(pixel);
            std::memcpy(pixels + i * sizeof(T), &pixel, sizeof(T));
        }
    };
    if (pixelSize == 2) {
        swapAll(std::uint16_t{}, [](std::uint16_t x) { return __builtin_bswap16(x); });
    } else if (pixelSize == 4) {
        swapAll(std::uint32_t{}, [](std::uint32_t x) { return __builtin_bswap32(x); });
    } else if (pixelSize == 8) {
        swapAll(std::uint64_t{}, [](std::uint64_t x) { return __builtin_bswap64(x); });
    }
}

void unpackBits(const std::byte* packed, unsigned bits, std::size_t first, std::size_t step, std::byte* to,
                std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t begin = (first + i * step) * bits;
        unsigned window = 0; // the bytes that the number lies in
        const std::size_t lastByte = (begin + bits - 1) / 8;
        for (std::size_t byte = begin / 8; byte <= lastByte; ++byte) {
            window = window << 8 | std::to_integer<unsigned>(packed[byte]);
        }
        const auto number =
            static_cast<std::uint16_t>(window >> (8 * (lastByte + 1) - begin - bits) & ((1u << bits) - 1));
        if (bits <= 8) {
            to[i] = static_cast<std::byte>(number);
        } else {
            std::memcpy(to + 2 * i, &number, 2);
        }
    }
}

} // namespace orlix::files
