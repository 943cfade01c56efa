#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orlix::imaproc::glbmsr
{

using attr::eAttributeMessage;
using core::ProcessingResult;
using image::eImageBufferType;

namespace
{

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double defaultShare = 0.00390625; // of the span: 1 / 256

/// What one partial histogram takes: the frequencies, and the tables of the strip that counts into them.
constexpr std::size_t bytesPerClass = sizeof(std::uint64_t) + sizeof(std::uint32_t);

bool isFloat(eImageBufferType type)
{
    return type == eImageBufferType::eIBT_Float32;
}

double getSpan(eImageBufferType type, double min, double max)
{
    return isFloat(type) ? max - min : max - min + 1;
}

/// The number of classes, however large.
double countClasses(double span, double binWidth)
{
    const double quotient = span / (binWidth < epsilon ? 1.0 : binWidth);
    const double whole = std::trunc(quotient);
    return std::max(1.0, quotient - whole > epsilon ? whole + 1 : whole);
}

double getBinWidth(eImageBufferType type, const HistoMsrParams* params, double span)
{
    double width = span * defaultShare;
    if (params != nullptr) {
        const double wish = params->UseBinWidth ? params->BinWidth : span / params->NbClasses;
        // More classes than a signed 32-bit number counts are as bad a wish as none.
        if (wish >= epsilon && countClasses(span, wish) <= std::numeric_limits<std::int32_t>::max()) {
            width = wish;
        }
    }
    return isFloat(type) ? width : std::max(1.0, width);
}

template <class... Arguments>
ProcessingResult fail(eAttributeMessage message, const Arguments&... arguments)
{
    return ProcessingResult::failure(core::formatMessage(message, arguments...));
}

} // namespace

std::uint32_t countHistogramClasses(eImageBufferType type, double min, double max, double binWidth)
{
    const double quotient = getSpan(type, min, max) / (binWidth < epsilon ? 1.0 : binWidth);
    const bool fits = std::fabs(quotient) < 0x1p63; // else, and for NaN, no number of classes has a meaning
    const auto whole = fits ? static_cast<std::uint32_t>(static_cast<std::int64_t>(quotient)) : 0;
    return std::max(1u, quotient - whole > epsilon ? whole + 1 : whole);
}

bool hasUserRange(const HistoMsrParams* params, eImageBufferType type)
{
    const auto [lowest, highest] = image::getValueRange(type);
    return params != nullptr && params->MinMaxDefinition == attr::eMinMaxDefinition::eMMD_UserDefinedMinMax &&
           lowest <= params->Min && params->Max <= highest && params->Min <= params->Max;
}

ProcessingResult makeClasses(HistogramData& histogram, eImageBufferType type, const HistoMsrParams* params, double min,
                             double max)
{
    const double span = getSpan(type, min, max);
    if (!std::isfinite(span)) {
        return fail(eAttributeMessage::eAM_NoFiniteRange, min, max);
    }
    const double width = getBinWidth(type, params, span);
    if (span > 0 && width < epsilon) {
        return fail(eAttributeMessage::eAM_NarrowRange, min, max, width);
    }
    const double classes = countClasses(span, width);
    constexpr double mebi = 1 << 20;
    const double bytes = (classes + 1) * static_cast<double>(bytesPerClass);
    if (const std::size_t limit = core::settings::getMemoryLimit(); bytes > static_cast<double>(limit)) {
        return fail(eAttributeMessage::eAM_ManyClasses, static_cast<std::uint64_t>(classes), std::ceil(bytes / mebi),
                    static_cast<double>(limit) / mebi);
    }
    histogram.Min = min;
    histogram.Max = max;
    histogram.BinWidth = width;
    histogram.Frequencies.assign(static_cast<std::size_t>(classes) + 1, 0);
    return {};
}

void makeEmptyClass(HistogramData& histogram, eImageBufferType type, double min, double max)
{
    histogram.Min = min;
    histogram.Max = max;
    histogram.BinWidth = isFloat(type) ? 0 : 1;
    histogram.Frequencies.assign(2, 0);
}

std::size_t getMaxPartialHistograms(const HistogramData& histogram)
{
    return std::max<std::size_t>(1, core::settings::getMemoryLimit() / (histogram.Frequencies.size() * bytesPerClass));
}

std::size_t getMinStripPixels(const HistogramData& histogram, const image::BaseImage& image)
{
    return std::max(16 * histogram.Frequencies.size(),
                    image.getGeometry().nbPixels() / getMaxPartialHistograms(histogram));
}

Rule matchBinWidth(const InOptHistoMsrParams& params, const attr::BaseAttribute& image)
{
    return Rule{[&params, &image]() -> ProcessingResult {
        const HistoMsrParams* const record = params.get().get();
        if (record == nullptr || !record->UseBinWidth || record->BinWidth > 0) {
            return {};
        }
        const eImageBufferType type = image.getImage()->getType();
        if (isFloat(type) && record->BinWidth == 0 && record->Min == record->Max && hasUserRange(record, type)) {
            return {};
        }
        return fail(eAttributeMessage::eAM_WrongBinWidth, params.getName(), record->BinWidth);
    }};
}

Rule matchClasses(const attr::BaseAttribute& output, const Ptr<HistogramData>& histogram,
                  const attr::BaseAttribute& strip)
{
    return Rule{[&output, &histogram, &strip]() -> ProcessingResult {
        constexpr std::size_t most = std::size_t{1} << 31;
        if (!histogram || histogram->Frequencies.size() < 2 || histogram->Frequencies.size() > most) {
            return fail(eAttributeMessage::eAM_NoClasses, output.getName());
        }
        const eImageBufferType type = strip.getImage()->getType();
        const auto [lowest, highest] = image::getValueRange(type);
        const auto isInside = [lowest = lowest, highest = highest](double x) { return lowest <= x && x <= highest; };
        if (!isInside(histogram->Min) || !isInside(histogram->Max)) {
            return fail(eAttributeMessage::eAM_WrongRange, output.getName(), histogram->Min, histogram->Max,
                        image::getName(type), lowest, highest);
        }
        const double width = histogram->BinWidth;
        const bool isPoint = isFloat(type) && histogram->Min == histogram->Max && width == 0;
        if (!(width > 0) && !isPoint) {
            return fail(eAttributeMessage::eAM_WrongBinWidth, output.getName(), width);
        }
        if (!isFloat(type) && width < 1) {
            return fail(eAttributeMessage::eAM_NarrowClasses, output.getName(), width, 1.0);
        }
        return {};
    }};
}

} // namespace orlix::imaproc::glbmsr
