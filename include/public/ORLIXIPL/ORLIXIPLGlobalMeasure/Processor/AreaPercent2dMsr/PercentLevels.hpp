#pragma once

#include <framework/attribute/Doubles.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/process/Levels.hpp>

#include <span>

/// What area and volume percentages share: element v of a result is the share of the plan's (volume's) pixels that have
/// the value v, in percent. A binary image has the values 0 and 1; a label image (uint8, uint16, uint32) those up to
/// its largest label. All pixels outside a mask, where it is 0, have the value 0, and on purpose they count.
///
/// All instruction sets, and any number of threads, give the same bits. A strip keeps a number per label: labels that
/// need more than the memory limit fail before they allocate, and so do the results of all plans together.
namespace orlix::imaproc::glbmsr
{

using attr::Doubles;
using attr::InBinLabImg;
using attr::InBinLabImg3d;
using attr::InBinLabYStrip2d1;
using attr::InBinLabZStrip3d;
using attr::InOptMaskImg;
using attr::InOptMaskSubImg2d;
using attr::InOptMaskSubImg3d;
using attr::InOptMaskYStrip2d;
using attr::InOptMaskZStrip3d;
using attr::InSubBinLabImg2d;
using attr::InSubBinLabImg3d;
using attr::OutPIValues;
using attr::OutValues;
using attr::PlanIndexedDoubles;

/// Adds up the shares of the strips, in their order, and makes percent of them.
struct PercentMerge
{
    ORLIX_API static core::ProcessingResult merge(std::span<const Ptr<Doubles>> parts, Doubles& merged);
};

/// Each strip of an image keeps a number per label: strips have so many pixels that there are few.
inline std::size_t getMinPercentPixels(const image::BaseImage& image)
{
    const std::size_t maxStrips = image.getPixelSize() == 4 ? 8 : 32;
    return (image.getGeometry().nbPixels() + maxStrips - 1) / maxStrips;
}

/// The number of pixels of each value in one strip, as a share of the pixels of the whole plan or volume.
template <class Self, class Strip, class Mask>
class PercentStrip : public Algorithm<Self, Strip, Mask, OutValues>
{
public:
    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    /// A binary image is read as bytes.
    void getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const override;
    core::ProcessingResult postProcess() override;

private:
    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult processBinary(ProcessingInfo info);
    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult processLabel(ProcessingInfo info);

    std::vector<std::uint32_t> tables_; // that live on from strip to strip
};

/// One plan or volume.
template <class Self, class Child, class Image, class Mask>
class PercentSubImage : public StripsLvl2<Self, Child, Pass<OutValues>, PercentMerge, Image, Mask>
{
protected:
    std::size_t getMinStripPixels() const override
    {
        return getMinPercentPixels(this->template value<typename Image::Source>());
    }

    core::ProcessingResult postProcess() override
    {
        std::size_t values = 0;
        for (const auto& part : this->getParts()) {
            values = std::max(values, part->Values.size());
        }
        core::ProcessingResult result = this->reserveResult(values * sizeof(double));
        return result ? StripsLvl2<Self, Child, Pass<OutValues>, PercentMerge, Image, Mask>::postProcess() : result;
    }
};

} // namespace orlix::imaproc::glbmsr
