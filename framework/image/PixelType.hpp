#pragma once

#include <framework/core/Api.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

namespace orlix::image
{

/// What a pixel is. A binary pixel is one byte, 0 or 1.
enum class eImageBufferType : std::uint8_t
{
    eIBT_UInt8,
    eIBT_Int8,
    eIBT_UInt16,
    eIBT_Int16,
    eIBT_UInt32,
    eIBT_Int32,
    eIBT_Float32,
    eIBT_Binary
};

inline constexpr std::size_t nbImageBufferTypes = 8;

/// "uint8", "int8", ..., "float32", "binary"
ORLIX_API const char* getName(eImageBufferType type);
ORLIX_API std::optional<eImageBufferType> findImageBufferType(std::string_view name);

constexpr std::size_t getPixelSize(eImageBufferType type)
{
    constexpr std::array<std::size_t, nbImageBufferTypes> sizes{1, 1, 2, 2, 4, 4, 4, 1};
    return sizes[static_cast<std::size_t>(type)];
}

/// The lowest and the highest value of a pixel type.
struct ValueRange
{
    double lowest;
    double highest;
};
ORLIX_API ValueRange getValueRange(eImageBufferType type);

/// The seven types that kernels are written for.
template <class T>
inline constexpr eImageBufferType imageBufferTypeOf = [] {
    using enum eImageBufferType;
    static_assert(std::is_same_v<T, float> || (std::is_integral_v<T> && sizeof(T) <= 4),
                  "pixels are float, or integers of 8, 16 or 32 bits");
    if constexpr (std::is_same_v<T, float>) {
        return eIBT_Float32;
    } else if constexpr (sizeof(T) == 1) {
        return std::is_unsigned_v<T> ? eIBT_UInt8 : eIBT_Int8;
    } else if constexpr (sizeof(T) == 2) {
        return std::is_unsigned_v<T> ? eIBT_UInt16 : eIBT_Int16;
    } else {
        return std::is_unsigned_v<T> ? eIBT_UInt32 : eIBT_Int32;
    }
}();

/// A set of pixel types, as attributes and kernels accept them.
class PixelTypes
{
public:
    constexpr PixelTypes(std::initializer_list<eImageBufferType> types)
    {
        for (const eImageBufferType type : types) {
            bits_ |= 1u << static_cast<unsigned>(type);
        }
    }
    constexpr bool contains(eImageBufferType type) const { return (bits_ >> static_cast<unsigned>(type) & 1u) != 0; }
    friend constexpr bool operator==(const PixelTypes&, const PixelTypes&) = default;

private:
    unsigned bits_ = 0;
};

/// All types but binary.
inline constexpr PixelTypes numericTypes{eImageBufferType::eIBT_UInt8,  eImageBufferType::eIBT_Int8,
                                         eImageBufferType::eIBT_UInt16, eImageBufferType::eIBT_Int16,
                                         eImageBufferType::eIBT_UInt32, eImageBufferType::eIBT_Int32,
                                         eImageBufferType::eIBT_Float32};

/// All integer types: what labels are stored in.
inline constexpr PixelTypes labelTypes{eImageBufferType::eIBT_UInt8,  eImageBufferType::eIBT_Int8,
                                       eImageBufferType::eIBT_UInt16, eImageBufferType::eIBT_Int16,
                                       eImageBufferType::eIBT_UInt32, eImageBufferType::eIBT_Int32};

/// Binary images, and those of labels that count from 0.
inline constexpr PixelTypes binaryOrLabelTypes{eImageBufferType::eIBT_UInt8, eImageBufferType::eIBT_UInt16,
                                               eImageBufferType::eIBT_UInt32, eImageBufferType::eIBT_Binary};

inline constexpr PixelTypes binaryType{eImageBufferType::eIBT_Binary};

/// The types of one byte: what masks are stored in.
inline constexpr PixelTypes maskTypes{eImageBufferType::eIBT_UInt8, eImageBufferType::eIBT_Int8,
                                      eImageBufferType::eIBT_Binary};

/// Calls `visit` with a std::type_identity of each of the seven kernel types, in the order of eImageBufferType.
template <class Visitor>
constexpr void forEachPixelType(Visitor visit)
{
    visit(std::type_identity<unsigned char>{});
    visit(std::type_identity<signed char>{});
    visit(std::type_identity<unsigned short>{});
    visit(std::type_identity<short>{});
    visit(std::type_identity<unsigned int>{});
    visit(std::type_identity<int>{});
    visit(std::type_identity<float>{});
}

/// The type of an image's buffer as the kernel registry knows it.
class ImageBufferTypeIdentifier
{
public:
    constexpr explicit ImageBufferTypeIdentifier(eImageBufferType type) : type_{type} {}
    constexpr eImageBufferType getType() const { return type_; }

private:
    eImageBufferType type_;
};

/// The pixel types of a kernel's inputs, in their order: the key of the kernel lookup.
class DataTypeIdentifierColl
{
public:
    constexpr DataTypeIdentifierColl() = default;
    constexpr DataTypeIdentifierColl(std::initializer_list<ImageBufferTypeIdentifier> types)
    {
        for (const ImageBufferTypeIdentifier type : types) {
            add(type);
        }
    }

    static constexpr std::size_t capacity = 4;

    constexpr void add(ImageBufferTypeIdentifier type) { types_[size_++] = type.getType(); }
    constexpr std::size_t size() const { return size_; }
    constexpr eImageBufferType operator[](std::size_t i) const { return types_[i]; }

    friend constexpr auto operator<=>(const DataTypeIdentifierColl&, const DataTypeIdentifierColl&) = default;

private:
    std::size_t size_ = 0;
    std::array<eImageBufferType, capacity> types_{};
};

} // namespace orlix::image
