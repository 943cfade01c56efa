// The members of LocateStrip; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/FindSetBytes.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateLevels.hpp>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Strip, class Output>
void LocateStrip<Self, Strip, Output>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    constexpr auto generic = core::eInstructionSet::eIS_Generic;
    selector.registerFunction({{},
                               core::InstructionSetsIdentifier{generic},
                               AlgorithmFunctionEfficiency<generic, 0, 0>::getEfficiency(),
                               static_cast<AlgorithmFunction>(&Self::genericProcessFunction)});
}

template <class Self, class Strip, class Output>
core::ProcessingResult LocateStrip<Self, Strip, Output>::genericProcessFunction(ProcessingInfo info)
{
    const image::StripParser& parser = this->getParser(0);
    const image::PixelBox& box = parser.getBox();
    auto& list = this->template value<Output>().Coordinates;
    if (!place_) {
        const std::size_t limit = this->template value<InNbFeatures>();
        const std::size_t size = std::min(countSetPixels(box, limit), limit);
        if (core::ProcessingResult result = checkNbPositions(size, sizeof(Coords)); !result) {
            return result;
        }
        list.resize(size);
        core::useHugePages(list);
    }
    const std::span<Coords> place = place_.value_or(list);
    auto* to = place.data();
    auto* const end = to + place.size();
    const std::size_t rows = info.size == 0 ? 0 : box.y * box.z;
    const std::size_t first = this->template attribute<Strip>().get().first;
    for (std::size_t row = 0; row < rows && to != end; ++row) {
        const auto* const bytes = parser.run<std::uint8_t>(row, box.x);
        if constexpr (std::is_same_v<Strip, InBinZStrip3d>) {
            const auto y = static_cast<double>(row % box.y);
            const std::size_t plane = row / box.y;
            const auto z = static_cast<double>(first + plane);
            to = listSetBytes(bytes, box.x, to, end, [&](double x) { return image::Coords3d{x, y, z}; });
        } else {
            const auto y = static_cast<double>(first + row);
            to = listSetBytes(bytes, box.x, to, end, [&](double x) { return image::Coords2d{x, y}; });
        }
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
