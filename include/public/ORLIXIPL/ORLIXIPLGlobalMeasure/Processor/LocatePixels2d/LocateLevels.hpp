#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/Pixels.hpp>
#include <framework/process/Levels.hpp>

#include <algorithm>

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
    core::ProcessingResult postProcess() override
    {
        std::size_t size = 0;
        for (const auto& part : this->getParts()) {
            size += part->Coordinates.size();
        }
        const std::size_t limit = std::min<std::size_t>(size, this->template value<InNbFeatures>());
        auto& list = this->template value<Output>().Coordinates;
        list.clear();
        if (this->getParts().size() == 1) {
            list.swap(this->getParts()[0]->Coordinates);
        }
        list.reserve(limit);
        for (const auto& part : this->getParts()) {
            const std::size_t more = std::min(part->Coordinates.size(), limit - list.size());
            list.insert(list.end(), part->Coordinates.begin(),
                        part->Coordinates.begin() + static_cast<std::ptrdiff_t>(more));
        }
        return {};
    }
};

} // namespace orlix::imaproc::glbmsr
