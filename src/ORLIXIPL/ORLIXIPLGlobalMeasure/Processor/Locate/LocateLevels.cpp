#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/LocateLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/MeasureMessages.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/FindSetBytes.hpp>

#include <framework/core/HugePages.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>
#include <numeric>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// The bytes of a box that are not 0; after those of a row made `enough` of them, no more are counted.
std::size_t countSetPixels(const image::PixelBox& box, std::size_t enough)
{
    const image::StripParser rows{box};
    std::size_t set = 0;
    for (std::size_t row = 0; row < box.y * box.z && set < enough; ++row) {
        set += countSetBytes(rows.run<std::uint8_t>(row, box.x), box.x);
    }
    return set;
}

/// Fails where so many positions take more bytes than the memory limit.
core::ProcessingResult checkNbPositions(std::size_t nbPositions, std::size_t positionBytes)
{
    const std::size_t bytes = nbPositions * positionBytes;
    const std::size_t limit = core::settings::getMemoryLimit();
    return bytes <= limit ? core::ProcessingResult{}
                          : core::ProcessingResult::failure(core::formatMessage(
                                eMeasureMessage::eMM_ManyPositions, nbPositions, (bytes >> 20) + 1, limit >> 20));
}

} // namespace

template <class List>
void LocateStrip<List>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    constexpr auto generic = core::eInstructionSet::eIS_Generic;
    selector.registerFunction({{},
                               core::InstructionSetsIdentifier{generic},
                               getEfficiency(generic),
                               static_cast<AlgorithmFunction>(&LocateStrip::genericProcessFunction)});
}

template <class List>
core::ProcessingResult LocateStrip<List>::genericProcessFunction(ProcessingInfo info)
{
    const image::StripParser& parser = getParser(0);
    const image::PixelBox& box = parser.getBox();
    auto& list = output<List>().Coordinates;
    if (!place_) {
        const std::size_t limit = *find<InNbFeatures>().get();
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
    constexpr bool is3d = std::is_same_v<Coords, image::Coords3d>;
    using Strip = std::conditional_t<is3d, InBinZStrip3d, InBinYStrip2d>;
    const std::size_t first = find<Strip>().get().first;
    for (std::size_t row = 0; row < rows && to != end; ++row) {
        const auto* const bytes = parser.run<std::uint8_t>(row, box.x);
        if constexpr (is3d) {
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

template <class List>
core::ProcessingResult LocateSubImage<List>::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    const std::vector<std::size_t> counts = countStrips(priority);
    const std::size_t total = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    const std::size_t size = std::min<std::size_t>(total, *find<InNbFeatures>().get());
    core::ProcessingResult result = checkNbPositions(size, sizeof(Coords));
    if (result) {
        result = reserveResult(size * sizeof(Coords));
    }
    if (!result) {
        return result;
    }
    auto& list = output<List>().Coordinates;
    list.clear();
    list.resize(size);
    core::useHugePages(list);
    std::span<Coords> rest{list};
    for (const std::size_t count : counts) {
        const std::size_t taken = std::min(count, rest.size());
        places_.push_back(rest.first(taken));
        rest = rest.subspan(taken);
    }
    return Level::retrieveProvider(priority, provider);
}

template <class List>
void LocateSubImage<List>::prepareChild(BaseProcessor& child, std::size_t index)
{
    static_cast<LocateStrip<List>&>(child).setPlace(places_[index]);
}

template <class List>
void LocateSubImage<List>::clearIntermediateDataDerived()
{
    Level::clearIntermediateDataDerived();
    places_.clear();
}

template <class List>
std::vector<std::size_t> LocateSubImage<List>::countStrips(ePriority priority)
{
    using Strip = std::conditional_t<std::is_same_v<Coords, image::Coords3d>, image::ZStrip3d, image::YStrip2d>;
    const auto& image =
        static_cast<const attr::StoredAttribute<Ptr<const image::BaseImage>>&>(*getAttributes().front()).get();
    const std::size_t enough = *find<InNbFeatures>().get();
    std::vector<std::size_t> counts(cut());
    const auto count = [&](std::size_t begin, std::size_t end) {
        std::size_t found = 0;
        for (std::size_t i = begin; i < end && found < enough && !getRun().cancelled(); ++i) {
            const attr::Share share = getShare(i);
            counts[i] = countSetPixels(Strip{image, share.first, share.count}.getBox(), enough - found);
            found += counts[i];
        }
    };
    executor::parallelFor(counts.size(), 1, priority, RangeBody{count});
    return counts;
}

template class LocateStrip<Pixels2d>;
template class LocateStrip<Voxels3d>;
template class LocateSubImage<Pixels2d>;
template class LocateSubImage<Voxels3d>;

LevelClass LocatePixels2dLvl1::processorClass = defineLevel<LocatePixels2dLvl1, LocatePixels2dLvl2>(34);
LevelClass LocatePixels2dLvl2::processorClass = defineLevel<LocatePixels2dLvl2, LocatePixels2dLvl3>(35);
AlgorithmClass LocatePixels2dLvl3::processorClass = defineAlgorithm<LocatePixels2dLvl3>(36);
LevelClass LocateVoxels3dLvl1::processorClass = defineLevel<LocateVoxels3dLvl1, LocateVoxels3dLvl2>(37);
LevelClass LocateVoxels3dLvl2::processorClass = defineLevel<LocateVoxels3dLvl2, LocateVoxels3dLvl3>(38);
AlgorithmClass LocateVoxels3dLvl3::processorClass = defineAlgorithm<LocateVoxels3dLvl3>(39);

namespace
{

/// The limit that holds where nobody gives one may wrap.
void liftLimit(BaseProcessor& processor, const NamedValues& parameters)
{
    if (!findNumber(parameters, "limit")) {
        processor.setParameter("limit", std::uint64_t{std::numeric_limits<unsigned>::max()});
    }
}

const MeasureRegistration registration{{"Positions",
                                        "locate",
                                        "coordinates of the set pixels of a binary image",
                                        "",
                                        {&LocatePixels2dLvl1::processorClass, &LocateVoxels3dLvl1::processorClass},
                                        {.prepare = &liftLimit}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
