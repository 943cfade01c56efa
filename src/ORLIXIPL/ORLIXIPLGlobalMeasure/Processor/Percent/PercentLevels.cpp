#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/PercentLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/MeasureMessages.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/LabelCounts.hpp>
#include <framework/kernel/StripRuns.hpp>

#include <framework/core/Settings.hpp>

#include <algorithm>
#include <functional>

namespace orlix::imaproc::glbmsr
{

LabelCounts::LabelCounts(std::uint32_t largest, std::size_t pixelSize, std::size_t nbPixels,
                         std::vector<std::uint32_t>& tables)
    : numbers_(std::size_t{largest} + 1)
{
    counts_.byValue = true;
    counts_.size = pixelSize == 1 ? 256 : largest + 1;
    allocate(pixelSize, nbPixels, tables);
}

void LabelCounts::collect()
{
    for (std::size_t label = 0; label < numbers_.size(); ++label) {
        numbers_[label] += static_cast<double>(countOf(label));
    }
}

std::vector<double> LabelCounts::take()
{
    collect();
    return std::move(numbers_);
}

core::ProcessingResult checkLabel(std::uint32_t largest, std::size_t nbStrips)
{
    constexpr std::uint32_t highest = 0x7ffffffe; // that a table has room for
    if (largest > highest) {
        return core::ProcessingResult::failure(
            core::formatMessage(eMeasureMessage::eMM_UncountableLabel, largest, highest));
    }
    // A list per strip, that of the plan, and the counts and tables of the strip at work.
    const std::size_t bytes = (std::size_t{largest} + 1) * sizeof(double) * (nbStrips + 3);
    const std::size_t limit = core::settings::getMemoryLimit();
    return bytes <= limit ? core::ProcessingResult{}
                          : core::ProcessingResult::failure(core::formatMessage(eMeasureMessage::eMM_HighLabel, largest,
                                                                                (bytes >> 20) + 1, limit >> 20));
}

namespace
{

/// Adds up the shares of the strips, and makes percent of them.
struct Percent
{
    using Result = Doubles;
    using State = std::vector<double>;

    static void combine(State& into, const Doubles& part)
    {
        into.resize(std::max(into.size(), part.Values.size()));
        std::transform(part.Values.begin(), part.Values.end(), into.begin(), into.begin(), std::plus{});
    }
    static void finish(const State& shares, Doubles& merged)
    {
        merged.Values.resize(shares.size());
        std::transform(shares.begin(), shares.end(), merged.Values.begin(), [](double share) { return share * 100.0; });
    }
};

std::size_t getMinPercentPixels(const image::BaseImage& image)
{
    const std::size_t maxStrips = image.getPixelSize() == 4 ? 8 : 32;
    return (image.getGeometry().nbPixels() + maxStrips - 1) / maxStrips;
}

} // namespace

void PercentStrip::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels<PercentStrip>(selector, 1, []<class T>(std::type_identity<T>, auto set) {
        return std::is_unsigned_v<T> && getPercentKernels().of(set).sum != nullptr;
    });
}

void PercentStrip::getDataTypeIdColl(image::DataTypeIdentifierColl& dataTypes) const
{
    const auto type = getAttributes().front()->getImage()->getType();
    using image::eImageBufferType;
    dataTypes.add(
        image::ImageBufferTypeIdentifier{type == eImageBufferType::eIBT_Binary ? eImageBufferType::eIBT_UInt8 : type});
}

template <class T>
core::ProcessingResult PercentStrip::genericProcessFunction(ProcessingInfo info)
{
    if constexpr (std::is_same_v<T, std::uint8_t>) {
        if (getAttributes().front()->getImage()->getType() == image::eImageBufferType::eIBT_Binary) {
            return processBinary(info);
        }
    }
    if constexpr (std::is_unsigned_v<T>) {
        return processLabel<T>(info);
    }
    return {};
}

core::ProcessingResult PercentStrip::processBinary(ProcessingInfo info)
{
    const PercentKernels& kernels = getPercentKernels().of(getDomain());
    std::uint64_t count = 0;
    using Byte = std::uint8_t;
    if (getParsers().size() > 1) {
        forEachRun<Byte>(info, getParser(0), getParser(1),
                         [&](const MaskedRun<Byte>& run) { count += kernels.sumSelected(run); });
    } else {
        forEachRun<Byte>(info, getParser(0), [&](const Run<Byte>& run) { count += kernels.sum(run); });
    }
    output<Doubles>().Values = {static_cast<double>(info.size) - static_cast<double>(count),
                                static_cast<double>(count)};
    return {};
}

template <class T>
core::ProcessingResult PercentStrip::processLabel(ProcessingInfo info)
{
    const PercentKernels& kernels = getPercentKernels().of(getDomain());
    const bool isMasked = getParsers().size() > 1;
    // The labels, as they are or where the mask is set.
    const auto forEachLabelRun = [&](auto visit) {
        if (!isMasked) {
            forEachRun<T>(info, getParser(0), visit);
            return;
        }
        forEachRun<T>(info, getParser(0), getParser(1), [&](const MaskedRun<T>& run) {
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
    const image::BaseImage& image = *getAttributes().front()->getImage();
    const std::size_t stripBytes =
        std::max(getDispatchPolicy().stripBytes, getMinPercentPixels(image) * image.getPixelSize());
    const bool isVolume = getAttributes().front()->getPlanKind() == image::ePlanKind::ePK_Volume3d;
    const std::size_t nbStrips = isVolume ? StripCut::of<image::ZStrip3d>(image, stripBytes, 1).size()
                                          : StripCut::of<image::YStrip2d>(image, stripBytes, 1).size();
    if (core::ProcessingResult result = checkLabel(largest, nbStrips); !result) {
        return result;
    }
    LabelCounts counts{largest, isMasked ? sizeof(std::uint32_t) : sizeof(T), info.size, tables_};
    forEachLabelRun([&]<class Label>(const Run<Label>& run) {
        counts.add(kernelOf<Label>(getHistogramKernels().of(getDomain())), run);
    });
    output<Doubles>().Values = counts.take();
    return {};
}

core::ProcessingResult PercentStrip::postProcess()
{
    const auto total = static_cast<double>(getAttributes().front()->getImage()->getGeometry().nbPixels());
    for (double& value : output<Doubles>().Values) {
        value /= total;
    }
    return {};
}

std::size_t PercentSubImage::getMinStripPixels() const
{
    return getMinPercentPixels(*getAttributes().front()->getImage());
}

core::ProcessingResult PercentSubImage::postProcess()
{
    std::size_t values = 0;
    for (const auto& part : getParts()) {
        values = std::max(values, static_cast<const Doubles&>(*part).Values.size());
    }
    core::ProcessingResult result = reserveResult(values * sizeof(double));
    return result ? Level::postProcess() : result;
}

LevelClass AreaPercent2dMsrLvl1::processorClass = defineLevel<AreaPercent2dMsrLvl1, AreaPercent2dMsrLvl2>(0);
LevelClass AreaPercent2dMsrLvl2::processorClass =
    defineLevel<AreaPercent2dMsrLvl2, AreaPercent2dMsrLvl3>(1, inOrder<Percent>);
AlgorithmClass AreaPercent2dMsrLvl3::processorClass = defineAlgorithm<AreaPercent2dMsrLvl3>(2);
LevelClass VolumePercent3dMsrLvl1::processorClass = defineLevel<VolumePercent3dMsrLvl1, VolumePercent3dMsrLvl2>(91);
LevelClass VolumePercent3dMsrLvl2::processorClass =
    defineLevel<VolumePercent3dMsrLvl2, VolumePercent3dMsrLvl3>(92, inOrder<Percent>);
AlgorithmClass VolumePercent3dMsrLvl3::processorClass = defineAlgorithm<VolumePercent3dMsrLvl3>(93);

namespace
{

const MeasureRegistration registration{
    {"Percentages",
     "percent",
     "percentage of the pixels that each value of a binary or label image has",
     "",
     {&AreaPercent2dMsrLvl1::processorClass, &VolumePercent3dMsrLvl1::processorClass}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
