#include <framework/image/Geometry.hpp>

namespace orlix::image
{

std::string toString(const ImageGeometry& geometry)
{
    return std::to_string(geometry.x) + " x " + std::to_string(geometry.y) + " x " + std::to_string(geometry.z) +
           " x " + std::to_string(geometry.c) + " x " + std::to_string(geometry.t) + " (x, y, z, c, t)";
}

std::string toString(const PlanIndex& plan)
{
    return "(" + std::to_string(plan.z) + ", " + std::to_string(plan.c) + ", " + std::to_string(plan.t) + ")";
}

} // namespace orlix::image
