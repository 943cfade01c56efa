#include <framework/image/Geometry.hpp>

namespace orlix::image
{

std::string toString(const ImageGeometry& geometry)
{
    std::string text = std::to_string(geometry.x) + " x " + std::to_string(geometry.y);
    const auto add = [&](std::size_t size, const char* elements) {
        if (size != 1) {
            text += ", " + std::to_string(size) + " " + elements;
        }
    };
    add(geometry.z, "planes");
    add(geometry.c, "channels");
    add(geometry.t, "times");
    return text;
}

std::string toString(const PlanIndex& plan)
{
    return "(" + std::to_string(plan.z) + ", " + std::to_string(plan.c) + ", " + std::to_string(plan.t) + ")";
}

} // namespace orlix::image
