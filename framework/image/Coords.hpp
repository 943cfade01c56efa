#pragma once

namespace orlix::image
{

/// A position in a plan, in pixels from the centre of its first one. It begins unset: lists of millions are made before
/// they are filled.
struct Coords2d
{
    Coords2d() {}
    constexpr Coords2d(double x_, double y_) : x{x_}, y{y_} {}

    double x;
    double y;

    friend constexpr bool operator==(const Coords2d&, const Coords2d&) = default;
};

/// A position in a volume.
struct Coords3d
{
    Coords3d() {}
    constexpr Coords3d(double x_, double y_, double z_) : x{x_}, y{y_}, z{z_} {}

    double x;
    double y;
    double z;

    friend constexpr bool operator==(const Coords3d&, const Coords3d&) = default;
};

} // namespace orlix::image
