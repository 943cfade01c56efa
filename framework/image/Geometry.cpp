#include <framework/image/Geometry.hpp>

namespace orlix::image
{

std::string toString(const ImageGeometry& geometry)
{
    std::string text = std::to_string(geometry.x) + " x " + std::to_string(geometry.y);
    const auto add = [&](std::size_t size, const char* elements) {
        if (size != 1) {
            text.append(", ").append(std::to_string(size)).append(" ").append(elements);
        }
    };
    add(geometry.z, "planes");
    add(geometry.c, "channels");
    add(geometry.t, "times");
    return text;
}

std::string toString(const PlanIndex& plan)
{
    std::string text{"("};
    text.append(std::to_string(plan.z)).append(", ").append(std::to_string(plan.c)).append(", ");
    return text.append(std::to_string(plan.t)).append(")");
}

} // namespace orlix::image
