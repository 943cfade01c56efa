#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Pixels.hpp>
#include <framework/core/HugePages.hpp>
#include <framework/process/Levels.hpp>

#include <algorithm>
#include <numeric>
#include <optional>
#include <span>
#include <utility>
#include <vector>

/// What the lists of set pixels and voxels share. A list has the positions of the bytes that are not 0, in raster order
/// (x fastest, then y, then z), up to a limit; how the image is cut does not change it.
namespace orlix::imaproc::glbmsr
{

using attr::InBinImg;
using attr::InBinImg3d;
using attr::InBinYStrip2d;
using attr::InBinZStrip3d;
using attr::InNbFeatures;
using attr::InSubBinImg2d;
using attr::InSubBinImg3d;
using attr::OutPIPixels2d;
using attr::OutPIVoxels3d;
using attr::OutPixels2d;
using attr::OutVoxels3d;
using attr::Pixels2d;
using attr::PlanIndexedPixels2d;
using attr::PlanIndexedVoxels3d;
using attr::Voxels3d;

/// The bytes of a box that are not 0; after those of a row made `enough` of them, no more are counted.
ORLIX_API std::size_t countSetPixels(const image::PixelBox& box, std::size_t enough);

/// Fails where so many positions take more bytes than the memory limit.
ORLIX_API core::ProcessingResult checkNbPositions(std::size_t nbPositions, std::size_t positionBytes);

/// The set pixels of one strip.
template <class Self, class Strip, class Output>
class LocateStrip : public Algorithm<Self, Strip, InNbFeatures, Output>
{
    using Coords = typename Output::Value::Coords;

public:
    /// The one kernel: it reads bytes, on any machine.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

    /// Where the first set pixels of the next strip go, as many as there is room for, instead of into the output.
    void setPlace(std::span<Coords> place) { place_ = place; }

protected:
    void getDataTypeIdColl(image::DataTypeIdentifierColl&) const override {}

private:
    std::optional<std::span<Coords>> place_;
};

/// The set pixels of one plan or volume. They are counted first: so the one list is made when its size is known to be
/// within the limits, and every strip writes straight to its place.
template <class Self, class Child, class Output, class Image>
class LocateSubImage : public StripsLvl2<Self, Child, Pass<Output>, MergeItself, Image, Pass<InNbFeatures>>
{
    using Coords = typename Output::Value::Coords;

    class PlaceSplit
    {
    public:
        explicit PlaceSplit(std::vector<std::span<Coords>> places) : places_{std::move(places)} {}
        void assign(Child& child, std::size_t i) const { child.setPlace(places_[i]); }

    private:
        std::vector<std::span<Coords>> places_;
    };

protected:
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const std::vector<std::size_t> counts = countStrips(priority);
        const std::size_t total = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
        const std::size_t size = std::min<std::size_t>(total, this->template value<InNbFeatures>());
        core::ProcessingResult result = checkNbPositions(size, sizeof(Coords));
        if (result) {
            result = this->reserveResult(size * sizeof(Coords));
        }
        if (!result) {
            return result;
        }
        auto& list = this->template value<Output>().Coordinates;
        list.clear();
        list.resize(size);
        core::useHugePages(list);
        std::vector<std::span<Coords>> places;
        std::span<Coords> rest{list};
        for (const std::size_t count : counts) {
            const std::size_t taken = std::min(count, rest.size());
            places.push_back(rest.first(taken));
            rest = rest.subspan(taken);
        }
        provider = this->makeStripsProvider(priority, PlaceSplit{std::move(places)});
        return {};
    }

private:
    using BaseAsync1Processor::retrieveProvider;

    /// The set pixels of every strip; 0 for strips that come after enough of them.
    std::vector<std::size_t> countStrips(ePriority priority)
    {
        using ImageStrip = typename Image::Target::Strip;
        const auto& image = this->template attribute<typename Image::Source>().get();
        const std::size_t enough = this->template value<InNbFeatures>();
        const StripCut& cut = this->cutIntoStrips();
        std::vector<std::size_t> counts(cut.size());
        const auto count = [&](std::size_t begin, std::size_t end) {
            std::size_t found = 0;
            for (std::size_t i = begin; i < end && found < enough && !this->getRun().cancelled(); ++i) {
                const std::size_t first = cut.begin(i);
                counts[i] = countSetPixels(ImageStrip{image, first, cut.begin(i + 1) - first}.getBox(), enough - found);
                found += counts[i];
            }
        };
        executor::parallelFor(cut.size(), 1, priority, RangeBody{count});
        return counts;
    }
};

} // namespace orlix::imaproc::glbmsr
