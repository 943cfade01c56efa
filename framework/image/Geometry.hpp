#pragma once

#include <framework/core/Api.hpp>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orlix::image
{

/// The sizes of an image in pixels; x lies fastest in memory, then y, z, channel c, time t.
struct ImageGeometry
{
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t z = 1;
    std::size_t c = 1;
    std::size_t t = 1;

    constexpr std::size_t nbPixels() const { return x * y * z * c * t; }
    constexpr bool empty() const { return nbPixels() == 0; }
    friend constexpr bool operator==(const ImageGeometry&, const ImageGeometry&) = default;
};

/// "512 x 512, 40 planes, 3 channels, 20 times", less what there is one of
ORLIX_API std::string toString(const ImageGeometry& geometry);

/// Distances in bytes between neighbours; any may be negative. Pixels of a row always touch.
struct ImageStrides
{
    std::ptrdiff_t y = 0;
    std::ptrdiff_t z = 0;
    std::ptrdiff_t c = 0;
    std::ptrdiff_t t = 0;

    /// The strides of a gapless buffer.
    static constexpr ImageStrides contiguous(const ImageGeometry& geometry, std::size_t pixelSize)
    {
        ImageStrides strides;
        strides.y = static_cast<std::ptrdiff_t>(geometry.x * pixelSize);
        strides.z = strides.y * static_cast<std::ptrdiff_t>(geometry.y);
        strides.c = strides.z * static_cast<std::ptrdiff_t>(geometry.z);
        strides.t = strides.c * static_cast<std::ptrdiff_t>(geometry.c);
        return strides;
    }
    friend constexpr bool operator==(const ImageStrides&, const ImageStrides&) = default;
};

/// Addresses one plan of an image. A volume's index has z = 0, a sequence's t = 0.
struct PlanIndex
{
    unsigned z = 0;
    unsigned c = 0;
    unsigned t = 0;

    constexpr PlanIndex() = default;
    constexpr PlanIndex(unsigned z_, unsigned c_, unsigned t_) : z{z_}, c{c_}, t{t_} {}

    friend constexpr bool operator==(const PlanIndex&, const PlanIndex&) = default;
    /// The order of plans: t slowest, then c, then z.
    friend constexpr std::strong_ordering operator<=>(const PlanIndex& a, const PlanIndex& b)
    {
        if (const auto byT = a.t <=> b.t; byT != 0) {
            return byT;
        }
        if (const auto byC = a.c <=> b.c; byC != 0) {
            return byC;
        }
        return a.z <=> b.z;
    }
};

/// "(z, c, t)"
ORLIX_API std::string toString(const PlanIndex& plan);

/// What one sub image covers: a 2d plan (z, c, t), the 3d volume of a (c, t), or the 2d plans of a (z, c) at all times.
enum class ePlanKind
{
    ePK_Plan2d,
    ePK_Volume3d,
    ePK_Sequence2d
};

/// The sizes of one sub image of an image. A side of 0 stays 0, so that a plan of an empty image is empty.
constexpr ImageGeometry getSubGeometry(ImageGeometry geometry, ePlanKind kind)
{
    const auto one = [](std::size_t side) { return side == 0 ? std::size_t{0} : std::size_t{1}; };
    geometry.z = kind == ePlanKind::ePK_Volume3d ? geometry.z : one(geometry.z);
    geometry.c = one(geometry.c);
    geometry.t = kind == ePlanKind::ePK_Sequence2d ? geometry.t : one(geometry.t);
    return geometry;
}

/// The plans of an image, in their order.
class PlanRange
{
public:
    constexpr PlanRange(const ImageGeometry& geometry, ePlanKind kind)
        : z_{kind == ePlanKind::ePK_Volume3d ? 1 : geometry.z}, c_{geometry.c}, t_{kind == ePlanKind::ePK_Sequence2d
                                                                                       ? 1
                                                                                       : geometry.t}
    {}
    constexpr std::size_t size() const { return z_ * c_ * t_; }
    constexpr PlanIndex operator[](std::size_t i) const
    {
        return {static_cast<unsigned>(i % z_), static_cast<unsigned>(i / z_ % c_), static_cast<unsigned>(i / z_ / c_)};
    }

private:
    std::size_t z_;
    std::size_t c_;
    std::size_t t_;
};

} // namespace orlix::image
