#pragma once

#include <framework/image/PixelType.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orlix::files
{

/// What a pixel is in a file: the types that images have, in their order, and wider ones, which are converted.
enum class StoredType : std::uint8_t
{
    UInt8,
    Int8,
    UInt16,
    Int16,
    UInt32,
    Int32,
    Float32,
    Binary, ///< a byte, 0 or 1
    UInt64,
    Int64,
    Float64,
    Float16
};

/// "uint8", ..., "float16"
const char* getName(StoredType type);
/// In bytes.
std::size_t getPixelSize(StoredType type);
/// The type of the images that hold such pixels as they are; none for the wider ones.
std::optional<image::eImageBufferType> findImageType(StoredType type);
StoredType toStored(image::eImageBufferType type);

enum class NumberKind
{
    Unsigned,
    Signed,
    Float
};
/// The type of numbers of so many bytes; none if there is no such type.
std::optional<StoredType> findStoredType(NumberKind kind, std::size_t bytes);

/// What stored numbers stand for: slope * stored + intercept.
struct Scale
{
    double slope = 1;
    double intercept = 0;

    bool isIdentity() const { return slope == 1 && intercept == 0; }
};

/// Converts pixels: numbers are rounded to the nearest (ties to even) and limited to the range of an integer type,
/// where NaN becomes 0; any other than 0 is 1 in a binary type. Returns how many changed their value.
std::size_t convertPixels(const std::byte* from, StoredType fromType, std::byte* to, StoredType toType,
                          std::size_t count);
/// Scales pixels in double precision.
void scalePixels(const std::byte* from, StoredType fromType, double* to, std::size_t count, const Scale& scale);

/// Turns the bytes of each pixel round.
void swapBytes(std::byte* pixels, std::size_t pixelSize, std::size_t count);

/// Widens numbers of `bits` < 16 bits, packed with the highest bit first: every `step`-th number from `first` on.
/// Goes to bytes, or to 16 bits where they do not fit a byte.
void unpackBits(const std::byte* packed, unsigned bits, std::size_t first, std::size_t step, std::byte* to,
                std::size_t count);

} // namespace orlix::files
