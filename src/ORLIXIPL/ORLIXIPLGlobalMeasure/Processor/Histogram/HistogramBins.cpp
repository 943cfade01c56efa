#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramBins.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/MeasureMessages.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

namespace orlix::imaproc::glbmsr
{

using core::ProcessingResult;
using image::eImageBufferType;

namespace
{

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double defaultShare = 0.00390625; // of the span: 1 / 256

/// What one partial histogram takes: the frequencies, and the tables of the strip that counts into them.
constexpr std::size_t bytesPerBin = sizeof(std::uint64_t) + sizeof(std::uint32_t);

bool isFloat(eImageBufferType type)
{
    return type == eImageBufferType::eIBT_Float32;
}

double getSpan(eImageBufferType type, double min, double max)
{
    return isFloat(type) ? max - min : max - min + 1;
}

double getQuotient(double span, double binWidth)
{
    return span / (binWidth < epsilon ? 1.0 : binWidth);
}

/// The number of bins, however large and however narrow; 1 for a width of 0.
double countBins(double span, double binWidth)
{
    const double quotient = binWidth > 0 ? span / binWidth : 1;
    const double whole = std::trunc(quotient);
    return std::max(1.0, quotient - whole > epsilon ? whole + 1 : whole);
}

double getBinWidth(eImageBufferType type, const HistoMsrParams* params, double span)
{
    double width = span * defaultShare;
    if (params != nullptr) {
        const double wish = params->UseBinWidth     ? params->BinWidth
                            : params->NbClasses > 0 ? span / params->NbClasses
                                                    : 0;
        // More bins than a signed 32-bit number counts are as bad a wish as none.
        if (wish >= epsilon && countBins(span, wish) <= std::numeric_limits<std::int32_t>::max()) {
            width = wish;
        }
    }
    return isFloat(type) ? width : std::max(1.0, width);
}

template <class... Arguments>
ProcessingResult fail(eMeasureMessage message, const Arguments&... arguments)
{
    return ProcessingResult::failure(core::formatMessage(message, arguments...));
}

void checkBinParameters(const NamedValues& parameters)
{
    const auto fail = [](const char* text) { throw MeasureException{text, ORLIX_HERE}; };
    const auto min = findNumber(parameters, "min");
    const auto max = findNumber(parameters, "max");
    const auto width = findNumber(parameters, "bin-width");
    if (min.has_value() != max.has_value()) {
        fail("min and max go together: give both or neither");
    }
    if (min && *min > *max) {
        fail("min is above max");
    }
    if (width && findNumber(parameters, "classes")) {
        fail("bin-width and classes say the same thing: give one of them");
    }
    if (width && !(*width > 0)) {
        fail("bin-width is not above 0");
    }
    if (findNumber(parameters, "classes") == 0.0) {
        fail("classes is not above 0");
    }
}

/// A range that the pixels cannot have would be passed over.
void checkRange(BaseProcessor& processor, const NamedValues& parameters)
{
    const eImageBufferType type = processor.getAttributes().front()->getImage()->getType();
    const auto [lowest, highest] = image::getValueRange(type);
    const auto min = findNumber(parameters, "min");
    const auto max = findNumber(parameters, "max");
    if ((min && *min < lowest) || (max && *max > highest)) {
        std::ostringstream text;
        text << "min and max of " << image::getName(type) << " pixels lie from " << lowest << " to " << highest;
        throw MeasureException{text.str(), ORLIX_HERE};
    }
}

} // namespace

constinit const MeasureExtras binExtras{.check = &checkBinParameters, .prepare = &checkRange};

std::uint32_t Histogram::getHistoNbClasses(double min, double max, double binWidth) const
{
    const attr::BaseAttribute& image = *getAttributes().front();
    if (!image.isSet()) {
        core::raise<ORLIXBaseProcessingException>(getBaseProcessingLogger(), ORLIX_HERE,
                                                  imaproc::eProcessorMessage::eUnsetInput, getObjectName(),
                                                  image.getName());
    }
    const double quotient = getQuotient(getSpan(image.getImage()->getType(), min, max), binWidth);
    const bool fits = std::fabs(quotient) < 0x1p63; // else, and for NaN, no number of bins has a meaning
    const auto whole = fits ? static_cast<std::uint32_t>(static_cast<std::int64_t>(quotient)) : 0;
    return std::max(1u, quotient - whole > epsilon ? whole + 1 : whole);
}

bool hasUserRange(const HistoMsrParams* params, eImageBufferType type)
{
    const auto [lowest, highest] = image::getValueRange(type);
    return params != nullptr && params->MinMaxDefinition == attr::eMinMaxDefinition::eMMD_UserDefinedMinMax &&
           lowest <= params->Min && params->Max <= highest && params->Min <= params->Max;
}

ProcessingResult makeBins(HistogramData& histogram, eImageBufferType type, const HistoMsrParams* params, double min,
                          double max)
{
    const double span = getSpan(type, min, max);
    if (!std::isfinite(span)) {
        return fail(eMeasureMessage::eMM_NoFiniteRange, min, max);
    }
    if (params != nullptr && params->UseBinWidth && params->BinWidth == 0 && span > 0) {
        return fail(eMeasureMessage::eMM_WrongBinWidth, InOptHistoMsrParams::name, 0.0);
    }
    const double width = getBinWidth(type, params, span);
    if (span > 0 && !std::isfinite(1 / width)) {
        return fail(eMeasureMessage::eMM_NarrowRange, min, max, width);
    }
    const double classes = countBins(span, width);
    constexpr double mebi = 1 << 20;
    const double bytes = (classes + 1) * static_cast<double>(bytesPerBin);
    if (const std::size_t limit = core::settings::getMemoryLimit(); bytes > static_cast<double>(limit)) {
        return fail(eMeasureMessage::eMM_ManyBins, static_cast<std::uint64_t>(classes), std::ceil(bytes / mebi),
                    static_cast<double>(limit) / mebi);
    }
    histogram.Min = min;
    histogram.Max = max;
    histogram.BinWidth = width;
    histogram.Frequencies.assign(static_cast<std::size_t>(classes) + 1, 0);
    return {};
}

void makeEmptyBin(HistogramData& histogram, eImageBufferType type, double min, double max)
{
    histogram.Min = min;
    histogram.Max = max;
    histogram.BinWidth = isFloat(type) ? 0 : 1;
    histogram.Frequencies.assign(2, 0);
}

std::size_t getMaxPartialHistograms(const HistogramData& histogram)
{
    const std::size_t bytes = std::max<std::size_t>(1, histogram.Frequencies.size()) * bytesPerBin;
    return std::max<std::size_t>(1, core::settings::getMemoryLimit() / bytes);
}

std::size_t getMinStripPixels(const HistogramData& histogram, const image::BaseImage& image)
{
    return std::max(16 * histogram.Frequencies.size(),
                    image.getGeometry().nbPixels() / getMaxPartialHistograms(histogram) + 1);
}

Rule matchBinWidth(const InOptHistoMsrParams& params, const attr::BaseAttribute& image)
{
    return Rule{[&params, &image]() -> ProcessingResult {
        const HistoMsrParams* const record = params.get().get();
        if (record != nullptr && !record->UseBinWidth && record->NbClasses == 0 && record->BinWidth != 0) {
            return fail(eMeasureMessage::eMM_UnusedBinWidth, params.getName(), record->BinWidth);
        }
        if (record == nullptr || !record->UseBinWidth || record->BinWidth > 0) {
            return {};
        }
        const eImageBufferType type = image.getImage()->getType();
        const bool mayBePoint = !hasUserRange(record, type) || record->Min == record->Max;
        if (isFloat(type) && record->BinWidth == 0 && mayBePoint) {
            return {};
        }
        return fail(eMeasureMessage::eMM_WrongBinWidth, params.getName(), record->BinWidth);
    }};
}

ProcessingResult checkHasBins(const attr::BaseAttribute& output, const HistogramData& histogram)
{
    constexpr std::size_t limit = std::size_t{1} << 31;
    const std::size_t size = histogram.Frequencies.size();
    return size >= 2 && size <= limit ? ProcessingResult{} : fail(eMeasureMessage::eMM_NoBins, output.getName());
}

Rule matchBins(const attr::BaseAttribute& output, const attr::BaseAttribute& pixels)
{
    return Rule{[&output, &pixels]() -> ProcessingResult {
        const auto* const histogram = static_cast<const HistogramData*>(output.getRecord());
        ProcessingResult result = checkHasBins(output, histogram ? *histogram : HistogramData{});
        if (!result) {
            return result;
        }
        const eImageBufferType type = pixels.getImage()->getType();
        const auto [lowest, highest] = image::getValueRange(type);
        const auto isInside = [lowest = lowest, highest = highest](double x) { return lowest <= x && x <= highest; };
        if (!isInside(histogram->Min) || !isInside(histogram->Max)) {
            return fail(eMeasureMessage::eMM_WrongRange, output.getName(), histogram->Min, histogram->Max,
                        image::getName(type), lowest, highest);
        }
        const double width = histogram->BinWidth;
        const bool isPoint = isFloat(type) && histogram->Min == histogram->Max && width == 0;
        if (!(width > 0) && !isPoint) {
            return fail(eMeasureMessage::eMM_WrongBinWidth, output.getName(), width);
        }
        if (!isFloat(type) && width < 1) {
            return fail(eMeasureMessage::eMM_NarrowBins, output.getName(), width, 1.0);
        }
        return {};
    }};
}

} // namespace orlix::imaproc::glbmsr
