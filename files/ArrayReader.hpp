#pragma once

#include <files/Bytes.hpp>
#include <files/Format.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orlix::files
{

/// Elements along a dimension of an array that are read.
struct ArrayRange
{
    std::uint64_t begin = 0;
    std::uint64_t count = 1;
    std::ptrdiff_t stride = 0; ///< between them in the target, in bytes
};

/// What the dimensions of an array are.
struct ArrayAxes
{
    static constexpr std::size_t none = ~std::size_t{0};

    std::string letters; ///< slowest first
    std::string rule;    ///< what gave them, in words
    AxesBy by = AxesBy::File;
    std::array<std::size_t, 5> dimensions{}; ///< of x, y, z, c and t; `none` where the array lacks the axis

    /// Enters what they make of an array of these sizes.
    void describe(const std::vector<std::uint64_t>& sizes, ImageFacts& facts) const;
    /// The part of an array of so many dimensions that a box covers.
    std::vector<ArrayRange> place(const Box& box, const PixelTarget& target, std::size_t pixelSize,
                                  std::size_t nbDimensions) const;
};

/// Finds the axes of an array whose sizes are told slowest first: those of the options, else those that the file states
/// (letters as in "TCZYX", S for samples, which are channels), else those that go with the number of dimensions: YX,
/// ZYX, CZYX, TCZYX. Letters of no axis may stand where the size is 1. Throws FileError or OptionError.
ArrayAxes findArrayAxes(const Source& source, const std::vector<std::uint64_t>& sizes, const std::string& stated,
                        const std::string& statedBy);

/// Pixels that lie one after the other in bytes.
struct PixelArray
{
    ImageFacts facts;                   ///< but for geometry and axes
    std::vector<std::uint64_t> sizes{}; ///< slowest first
    bool fastestFirst = false;          ///< sizes and letters are told fastest first
    bool isFortran = false;             ///< sizes are told slowest first, but elements touch along the first dimension
    std::string axes{};                 ///< letters of the dimensions, as the file states them; empty: it does not
    std::string axesBy{};               ///< what stated them
    std::uint64_t offset = 0;
    bool isSwapped = false; ///< the bytes of a pixel lie the other way round than in this machine
    std::unique_ptr<Bytes> bytes{};
    std::uint64_t available = UINT64_MAX; ///< bytes from the offset on, where they are known
};

/// Opens the bytes of an array that lies in one of these files, or in parts of one size in all of them: raw, or
/// compressed by "gzip", "zlib" or "bzip2". They begin `skip` bytes behind the array's offset or, where it is -1, so
/// far from the end that the pixels fit.
void openPixels(const Source& source, PixelArray& array, const std::vector<std::string>& paths, std::int64_t skip,
                const std::string& encoding);

/// The reader of such pixels. Throws FileError where they are more than there are bytes.
ReaderPtr readArray(const Source& source, PixelArray array);

/// The type of an element by NumPy's code, as "u2", "f8" or "b1"; none if it is no number.
std::optional<StoredType> findNumpyType(const std::string& code);

/// Notes for arrays whose last axis looks like colours and is taken for x; empty if it does not.
std::string describeColourDoubt(const ImageFacts& facts);

} // namespace orlix::files
