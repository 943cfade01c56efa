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
    for (const std::size_t index : {plan.z, plan.c, plan.t}) {
        text.append(text.size() == 1 ? "" : ", ").append(std::to_string(index));
    }
    return text + ")";
}

} // namespace orlix::image
