#include <framework/image/Strip.hpp>

namespace orlix::image
{

StripParser::StripParser(const PixelBox& box) : box_{box}, longestRun_{box.x}
{
    const auto rowBytes = static_cast<std::ptrdiff_t>(box.x * box.pixelSize);
    const auto planeBytes = rowBytes * static_cast<std::ptrdiff_t>(box.y);
    if (box.y == 1 || box.strideY == rowBytes) {
        longestRun_ *= box.y;
        if (box.z == 1 || box.strideZ == planeBytes) {
            longestRun_ *= box.z;
        }
    }
}

} // namespace orlix::image
