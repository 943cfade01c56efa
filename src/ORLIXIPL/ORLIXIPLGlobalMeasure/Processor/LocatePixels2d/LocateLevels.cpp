#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateLevels.hpp>

#include <framework/attribute/AttributeMessages.hpp>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult checkNbPositions(std::size_t nbPositions, std::size_t bytes)
{
    const std::size_t limit = core::settings::getMemoryLimit();
    return bytes <= limit
               ? core::ProcessingResult{}
               : core::ProcessingResult::failure(core::formatMessage(attr::eAttributeMessage::eAM_ManyPositions,
                                                                     nbPositions, (bytes >> 20) + 1, limit >> 20));
}

} // namespace orlix::imaproc::glbmsr
