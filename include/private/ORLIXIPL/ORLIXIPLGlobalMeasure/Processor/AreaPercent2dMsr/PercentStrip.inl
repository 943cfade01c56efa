// The members of PercentStrip; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/StripRuns.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentLevels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramKernelTables.hpp>

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Strip, class Mask>
void PercentStrip<Self, Strip, Mask>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    PercentStrip::registerKernels(selector, []<class T>(std::type_identity<T>, core::eInstructionSet::domain domain) {
        return std::is_unsigned_v<T> && getPercentKernels().of(domain).sum != nullptr;
    });
}

template <class Self, class Strip, class Mask>
void PercentStrip<Self, Strip, Mask>::getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const
{
    const auto type = this->template attribute<Strip>().get().image->getType();
    using image::eImageBufferType;
    dataTypes.add(
        image::ImageBufferTypeIdentifier{type == eImageBufferType::eIBT_Binary ? eImageBufferType::eIBT_UInt8 : type});
}

template <class Self, class Strip, class Mask>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult PercentStrip<Self, Strip, Mask>::genericProcessFunction(ProcessingInfo info)
{
    if constexpr (std::is_same_v<T, std::uint8_t>) {
        if (this->template attribute<Strip>().get().image->getType() == image::eImageBufferType::eIBT_Binary) {
            return processBinary<T, D>(info);
        }
    }
    if constexpr (std::is_unsigned_v<T>) {
        return processLabel<T, D>(info);
    }
    return {};
}

template <class Self, class Strip, class Mask>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult PercentStrip<Self, Strip, Mask>::processBinary(ProcessingInfo info)
{
    const PercentKernels& kernels = getPercentKernels().of(D);
    std::uint64_t count = 0;
    if (this->template attribute<Mask>().isSet()) {
        forEachRun<T>(info, this->getParser(0), this->getParser(1),
                      [&](const MaskedRun<T>& run) { count += kernels.sumSelected(run); });
    } else {
        forEachRun<T>(info, this->getParser(0), [&](const Run<T>& run) { count += kernels.sum(run); });
    }
    this->template value<OutValues>().Values = {static_cast<double>(info.size) - static_cast<double>(count),
                                                static_cast<double>(count)};
    return {};
}

template <class Self, class Strip, class Mask>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult PercentStrip<Self, Strip, Mask>::processLabel(ProcessingInfo info)
{
    const PercentKernels& kernels = getPercentKernels().of(D);
    // The labels, as they are or where the mask is set.
    const auto forEachLabelRun = [&](auto visit) {
        if (!this->template attribute<Mask>().isSet()) {
            forEachRun<T>(info, this->getParser(0), visit);
            return;
        }
        forEachRun<T>(info, this->getParser(0), this->getParser(1), [&](const MaskedRun<T>& run) {
            constexpr std::size_t size = 4096;
            std::uint32_t selected[size];
            for (std::size_t i = 0; i < run.size; i += size) {
                const std::size_t n = std::min(size, run.size - i);
                labelKernelOf<T>(kernels).select(part(run, i, n), selected);
                visit(Run<std::uint32_t>{selected, n});
            }
        });
    };
    std::uint32_t largest = 0;
    forEachLabelRun([&]<class Label>(const Run<Label>& run) {
        largest = std::max(largest, labelKernelOf<Label>(kernels).largest(run));
    });
    // As the plan is cut, of which this is one strip.
    const image::BaseImage& image = *this->template attribute<Strip>().get().image;
    const std::size_t stripBytes =
        std::max(this->getDispatchPolicy().stripBytes, getMinPercentPixels(image) * image.getPixelSize());
    const std::size_t nbStrips = StripCut::of<typename Strip::Strip>(image, stripBytes, 1).size();
    if (core::ProcessingResult result = checkLabel(largest, nbStrips); !result) {
        return result;
    }
    const bool isMasked = this->template attribute<Mask>().isSet();
    LabelCounts counts{largest, isMasked ? sizeof(std::uint32_t) : sizeof(T), info.size, tables_};
    forEachLabelRun(
        [&]<class Label>(const Run<Label>& run) { counts.add(kernelOf<Label>(getHistogramKernels().of(D)), run); });
    this->template value<OutValues>().Values = counts.take();
    return {};
}

template <class Self, class Strip, class Mask>
core::ProcessingResult PercentStrip<Self, Strip, Mask>::postProcess()
{
    const auto total = static_cast<double>(this->template attribute<Strip>().get().image->getGeometry().nbPixels());
    for (double& value : this->template value<OutValues>().Values) {
        value /= total;
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
