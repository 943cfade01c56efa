#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/FindSetBytes.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/core/Settings.hpp>

namespace orlix::imaproc::glbmsr
{

std::size_t countSetPixels(const image::PixelBox& box, std::size_t enough)
{
    const image::StripParser rows{box};
    std::size_t set = 0;
    for (std::size_t row = 0; row < box.y * box.z && set < enough; ++row) {
        set += countSetBytes(rows.run<std::uint8_t>(row, box.x), box.x);
    }
    return set;
}

core::ProcessingResult checkNbPositions(std::size_t nbPositions, std::size_t positionBytes)
{
    const std::size_t bytes = nbPositions * positionBytes;
    const std::size_t limit = core::settings::getMemoryLimit();
    return bytes <= limit
               ? core::ProcessingResult{}
               : core::ProcessingResult::failure(core::formatMessage(attr::eAttributeMessage::eAM_ManyPositions,
                                                                     nbPositions, (bytes >> 20) + 1, limit >> 20));
}

} // namespace orlix::imaproc::glbmsr
