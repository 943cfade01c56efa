#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KDELevels.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/core/Random.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult checkNbSamples(std::size_t nbSamples, std::size_t positionBytes)
{
    // Of every sample the position, its value, and a copy of that which is sorted.
    const std::size_t bytes = nbSamples * (positionBytes + 2 * sizeof(double));
    const std::size_t limit = core::settings::getMemoryLimit();
    if (bytes <= limit) {
        return {};
    }
    return core::ProcessingResult::failure(
        core::formatMessage(attr::eAttributeMessage::eAM_ManySamples, nbSamples, (bytes >> 20) + 1, limit >> 20));
}

namespace
{

double drawAlong(std::size_t size, core::random::Draw& draw)
{
    return draw(static_cast<std::uint32_t>(std::min<std::size_t>(size, 0xffffffff)));
}

} // namespace

void drawPositions(const image::ImageGeometry& size, std::span<image::Coords2d> positions)
{
    core::random::Draw draw;
    for (image::Coords2d& position : positions) {
        position.x = drawAlong(size.x, draw);
        position.y = drawAlong(size.y, draw);
    }
}

void drawPositions(const image::ImageGeometry& size, std::span<image::Coords3d> positions)
{
    core::random::Draw draw;
    for (image::Coords3d& position : positions) {
        position.x = drawAlong(size.x, draw);
        position.y = drawAlong(size.y, draw);
        position.z = drawAlong(size.z, draw);
    }
}

} // namespace orlix::imaproc::glbmsr
