#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Ptr.hpp>
#include <framework/image/BaseImage.hpp>
#include <framework/image/Geometry.hpp>
#include <framework/image/PixelType.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

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
    Ptr<const void> owner{}; ///< of pixels that were fetched
};

/// What a strip is a band of.
enum class ORLIX_API eStripElement
{
    eSE_Column,      ///< of a 2d plan
    eSE_Row,         ///< of a 2d plan
    eSE_Plane,       ///< of a 3d volume
    eSE_SequenceRow, ///< the same row at all times of a 2d sequence
};

/// A band of neighbouring elements of a sub image.
template <eStripElement Element, class Image = const BaseImage>
struct ORLIX_API Strip
{
    static constexpr ePlanKind kind = Element == eStripElement::eSE_Plane         ? ePlanKind::ePK_Volume3d
                                      : Element == eStripElement::eSE_SequenceRow ? ePlanKind::ePK_Sequence2d
                                                                                  : ePlanKind::ePK_Plan2d;
    static constexpr const char* elementName = Element == eStripElement::eSE_Plane    ? "planes"
                                               : Element == eStripElement::eSE_Column ? "columns"
                                                                                      : "rows";

    Ptr<Image> image;
    std::size_t first = 0;
    std::size_t count = 0;

    static std::size_t getNbElements(const BaseImage& subImage)
    {
        const ImageGeometry& size = subImage.getGeometry();
        return Element == eStripElement::eSE_Plane ? size.z : Element == eStripElement::eSE_Column ? size.x : size.y;
    }
    /// 0 for an image that is empty in any axis.
    static std::size_t getElementPixels(const BaseImage& subImage)
    {
        const ImageGeometry& size = subImage.getGeometry();
        return size.empty() ? 0 : size.nbPixels() / getNbElements(subImage);
    }
    std::size_t nbPixels() const { return image ? count * getElementPixels(*image) : 0; }

    /// Where it lies in the image; of a sequence, the rows at the first time.
    Box getPlace() const
    {
        const ImageGeometry& size = image->getGeometry();
        if constexpr (Element == eStripElement::eSE_Plane) {
            return {{0, 0, first}, {size.x, size.y, count}};
        } else if constexpr (Element == eStripElement::eSE_Column) {
            return {{first}, {count, size.y}};
        } else {
            return {{0, first}, {size.x, count}};
        }
    }
    /// Its pixels, which a source fetches, together with those of so many rows before and behind it that there are.
    PixelBox getBox(std::size_t nbRowsAround = 0) const
    {
        if (nbPixels() == 0) {
            return {};
        }
        const Box place = getPlace();
        Box wide = place;
        const std::size_t before = std::min<std::size_t>(nbRowsAround, place.begin.y);
        const std::size_t behind = std::min(nbRowsAround, image->getGeometry().y - place.begin.y - place.size.y);
        wide.begin.y -= before;
        wide.size.y += before + behind;
        LoadedBox loaded = image->load(wide);
        return {loaded.first + static_cast<std::ptrdiff_t>(before) * loaded.strides.y,
                place.size.x,
                place.size.y,
                place.size.z,
                loaded.strides.y,
                loaded.strides.z,
                image->getPixelSize(),
                std::move(loaded.owner)};
    }
    /// The bytes that a source fetches for it.
    std::size_t getLoad() const { return image && image->hasSource() ? nbPixels() * image->getPixelSize() : 0; }
};

using XStrip2d = Strip<eStripElement::eSE_Column>;
using YStrip2d = Strip<eStripElement::eSE_Row>;
using ZStrip3d = Strip<eStripElement::eSE_Plane>;
using SeqYStrip2d = Strip<eStripElement::eSE_SequenceRow>;
/// Rows that are written.
using OutputYStrip2d = Strip<eStripElement::eSE_Row, BaseImage>;

/// The row of a plan that stands for row y where its border goes on beyond it: outside, the nearest row.
inline std::ptrdiff_t continueBorder2d(const BaseImage& plan, std::ptrdiff_t y)
{
    const auto last = static_cast<std::ptrdiff_t>(plan.getGeometry().y) - 1;
    return y < 0 ? 0 : y > last ? last : y;
}

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
    const PixelBox& getBox() const { return box_; }
    /// The length of the longest runs: a row, a plane or everything.
    std::size_t longestRun() const { return longestRun_; }

    /// The first pixel of run `i` of `length` pixels; `length` is one that all parsers of the box allow.
    template <class T>
    const T* run(std::size_t i, std::size_t length) const
    {
        return reinterpret_cast<const T*>(address(i, length));
    }
    /// The same where the box is that of an image that may be written to.
    template <class T>
    T* outputRun(std::size_t i, std::size_t length) const
    {
        return const_cast<T*>(run<T>(i, length));
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
