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
    const auto& strip = this->template attribute<Strip>().get();
    auto& list = this->template value<Output>().Coordinates;
    list.clear();
    const image::StripParser& parser = this->getParser(0);
    std::size_t set = 0;
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        set += countSetBytes(parser.run<std::uint8_t>(i, info.rowSize), info.rowSize);
    }
    const std::size_t limit = std::min<std::size_t>(set, this->template value<InNbFeatures>());
    list.reserve(limit);
    const image::PixelBox& box = parser.getBox();
    for (std::size_t row = 0; list.size() < limit; ++row) {
        const auto* const bytes = parser.run<std::uint8_t>(row, box.x);
        if constexpr (std::is_same_v<Strip, InBinZStrip3d>) {
            const auto y = static_cast<double>(row % box.y);
            const auto z = static_cast<double>(strip.first + row / box.y);
            appendSetBytes(bytes, box.x, limit, list, [&](double x) { return image::Coords3d{x, y, z}; });
        } else {
            const auto y = static_cast<double>(strip.first + row);
            appendSetBytes(bytes, box.x, limit, list, [&](double x) { return image::Coords2d{x, y}; });
        }
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
