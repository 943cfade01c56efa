#pragma once

namespace orlix::image
{

/// A position in a plan, in pixels from the centre of its first one.
struct Coords2d
{
    double x;
    double y;

    friend constexpr bool operator==(const Coords2d&, const Coords2d&) = default;
};

/// A position in a volume.
struct Coords3d
{
    double x;
    double y;
    double z;

    friend constexpr bool operator==(const Coords3d&, const Coords3d&) = default;
};

} // namespace orlix::image
