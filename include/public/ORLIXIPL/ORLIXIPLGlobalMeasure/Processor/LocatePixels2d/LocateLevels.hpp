#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Pixels.hpp>
#include <framework/core/HugePages.hpp>
#include <framework/core/Settings.hpp>
#include <framework/process/Levels.hpp>

#include <algorithm>
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

/// Fails where so many positions take more bytes than the memory limit.
ORLIX_API core::ProcessingResult checkNbPositions(std::size_t nbPositions, std::size_t bytes);

/// The set pixels of one strip.
template <class Self, class Strip, class Output>
class LocateStrip : public Algorithm<Self, Strip, InNbFeatures, Output>
{
public:
    /// The one kernel: it reads bytes, on any machine.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    void getDataTypeIdColl(image::DataTypeIdentifierColl&) const override {}
};

/// The set pixels of one plan or volume: the lists of its strips, joined up to the limit.
template <class Self, class Child, class Output, class Image>
class LocateSubImage : public StripsLvl2<Self, Child, Pass<Output>, MergeItself, Image, Pass<InNbFeatures>>
{
protected:
    /// How a plan is cut does not show; one thread may as well write the list as a whole.
    std::size_t getMinStripPixels() const override
    {
        return core::settings::getNbThreads() == 1
                   ? this->template value<typename Image::Source>().getGeometry().nbPixels()
                   : 0;
    }

    core::ProcessingResult postProcess() override
    {
        const auto& parts = this->getParts();
        auto& list = this->template value<Output>().Coordinates;
        list.clear();
        if (parts.size() == 1) {
            list.swap(parts[0]->Coordinates); // it keeps the limit itself
            return {};
        }
        std::vector<std::size_t> begins{0};
        for (const auto& part : parts) {
            begins.push_back(begins.back() + part->Coordinates.size());
        }
        const std::size_t size = std::min<std::size_t>(begins.back(), this->template value<InNbFeatures>());
        if (core::ProcessingResult result = checkNbPositions(size, (begins.back() + size) * sizeof(list[0])); !result) {
            return result;
        }
        list.resize(size);
        core::useHugePages(list);
        const auto join = [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                auto& part = parts[i]->Coordinates;
                const std::size_t first = std::min(begins[i], list.size());
                std::copy_n(part.begin(), std::min(part.size(), list.size() - first),
                            list.begin() + static_cast<std::ptrdiff_t>(first));
                part = {};
            }
        };
        executor::parallelFor(parts.size(), 1, ePriority::eP_Normal, RangeBody{join});
        return {};
    }
};

} // namespace orlix::imaproc::glbmsr
