#pragma once

#include <framework/core/Api.hpp>
#include <framework/image/Geometry.hpp>

#include <cstddef>
#include <cstdint>

namespace orlix::image
{

/// The place of a pixel in an image.
struct Position
{
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::uint64_t z = 0;
    std::uint64_t c = 0;
    std::uint64_t t = 0;

    friend constexpr bool operator==(const Position&, const Position&) = default;
    /// The order of pixels: t slowest, then c, z, y, x.
    friend constexpr bool operator<(const Position& a, const Position& b)
    {
        return a.t != b.t   ? a.t < b.t
               : a.c != b.c ? a.c < b.c
               : a.z != b.z ? a.z < b.z
               : a.y != b.y ? a.y < b.y
                            : a.x < b.x;
    }
    template <class Stream>
    void pass(Stream& stream)
    {
        stream(x), stream(y), stream(z), stream(c), stream(t);
    }
};

/// A part of an image: `size` pixels from `begin` on.
struct Box
{
    Position begin{};
    ImageGeometry size{};
};

/// Where the pixels of a box go: the first one, and the distances in bytes between neighbours. Pixels of a row touch.
struct PixelTarget
{
    std::byte* first = nullptr;
    ImageStrides strides{};

    std::byte* row(std::size_t y, std::size_t z = 0, std::size_t c = 0, std::size_t t = 0) const
    {
        return first + static_cast<std::ptrdiff_t>(y) * strides.y + static_cast<std::ptrdiff_t>(z) * strides.z +
               static_cast<std::ptrdiff_t>(c) * strides.c + static_cast<std::ptrdiff_t>(t) * strides.t;
    }
};

/// How a source has its pixels.
struct SourceLayout
{
    /// What is decoded together: a tile, a strip, a chunk. Boxes of whole blocks are fetched then, each once where
    /// memory allows it. 1 in x or y: boxes of any columns or rows cost what their pixels cost.
    ImageGeometry block{1, 1, 1, 1, 1};
    /// The pixel of a block that the first pixel of the image is.
    Position phase{};
    /// Pixels come in their order (t slowest, then c, z, y); whoever goes back begins anew.
    bool isSequential = false;
    /// The source itself sees to it that what is fetched next is there. Boxes are fetched as they are needed then.
    bool readsAhead = false;
};

/// Where an image has its pixels from that is not in memory.
class ORLIX_API PixelSource
{
public:
    PixelSource() = default;
    PixelSource(const PixelSource&) = delete;
    PixelSource& operator=(const PixelSource&) = delete;
    virtual ~PixelSource();

    /// Writes the pixels of a box, which lies in the image. Several threads call it at once. What it throws fails the
    /// measure with its text.
    virtual void fetch(const Box& box, const PixelTarget& target) = 0;
    virtual SourceLayout getLayout() const { return {}; }
};

} // namespace orlix::image
