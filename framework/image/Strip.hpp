#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Ptr.hpp>
#include <framework/image/BaseImage.hpp>
#include <framework/image/Geometry.hpp>
#include <framework/image/PixelType.hpp>

#include <cstddef>

namespace orlix::image
{

/// Rows that touch in x and lie at any distance in y and z.
struct PixelBox
{
    const std::byte* origin = nullptr;
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t z = 0;
    std::ptrdiff_t strideY = 0;
    std::ptrdiff_t strideZ = 0;
    std::size_t pixelSize = 1;
};

/// A band of neighbouring elements of a sub image: whole rows of a 2d plan, or whole planes of a 3d volume.
template <ePlanKind Kind>
struct Strip
{
    static constexpr ePlanKind kind = Kind;

    Ptr<const BaseImage> image;
    std::size_t first = 0;
    std::size_t count = 0;

    /// The number of rows or planes of a sub image.
    static std::size_t getNbElements(const BaseImage& subImage)
    {
        const ImageGeometry& size = subImage.getGeometry();
        return Kind == ePlanKind::ePK_Plan2d ? size.y : size.z;
    }
    /// 0 for an image that is empty in any axis.
    static std::size_t getElementPixels(const BaseImage& subImage)
    {
        const ImageGeometry& size = subImage.getGeometry();
        return size.empty() ? 0 : Kind == ePlanKind::ePK_Plan2d ? size.x : size.x * size.y;
    }
    std::size_t nbPixels() const { return image ? count * getElementPixels(*image) : 0; }

    PixelBox getBox() const
    {
        const ImageGeometry& size = image->getGeometry();
        const ImageStrides& strides = image->getStrides();
        if (nbPixels() == 0) {
            return {};
        }
        if constexpr (Kind == ePlanKind::ePK_Plan2d) {
            return {image->getRow(first), size.x, count, 1, strides.y, strides.z, image->getPixelSize()};
        } else {
            return {image->getRow(0, first), size.x, size.y, count, strides.y, strides.z, image->getPixelSize()};
        }
    }
};

using YStrip2d = Strip<ePlanKind::ePK_Plan2d>;
using ZStrip3d = Strip<ePlanKind::ePK_Volume3d>;

/// Reads a box as runs of pixels that lie gapless in memory. Parsers of boxes of one size that walk runs of the same
/// length meet the same pixels in the same order.
class ORLIX_API StripParser
{
public:
    StripParser() = default;
    explicit StripParser(const PixelBox& box);

    std::size_t nbPixels() const { return box_.x * box_.y * box_.z; }
    bool hasShapeOf(const StripParser& other) const
    {
        return box_.x == other.box_.x && box_.y == other.box_.y && box_.z == other.box_.z;
    }
    /// The length of the longest runs: a row, a plane or everything.
    std::size_t longestRun() const { return longestRun_; }

    /// The first pixel of run `i` of `length` pixels; `length` is one that all parsers of the box allow.
    template <class T>
    const T* run(std::size_t i, std::size_t length) const
    {
        return reinterpret_cast<const T*>(address(i, length));
    }

private:
    const std::byte* address(std::size_t i, std::size_t length) const
    {
        if (i == 0) {
            return box_.origin;
        }
        if (length == box_.x) {
            return box_.origin + static_cast<std::ptrdiff_t>(i % box_.y) * box_.strideY +
                   static_cast<std::ptrdiff_t>(i / box_.y) * box_.strideZ;
        }
        return box_.origin + static_cast<std::ptrdiff_t>(i) * box_.strideZ;
    }

    PixelBox box_;
    std::size_t longestRun_ = 0;
};

} // namespace orlix::image
