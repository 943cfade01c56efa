#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/StripCounts.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::glbmsr
{

using image::eImageBufferType;

namespace
{

bool isWhole(double x)
{
    return x == std::trunc(x);
}

/// What lets vector kernels find a bin without a division; see BinCounts.
void approximate(BinCounts& counts, eImageBufferType type)
{
    const BinRule& rule = counts.rule;
    const double span = double{rule.maxF} - double{rule.minF};
    const bool isInteger = type != eImageBufferType::eIBT_Float32;
    // Half a step from the border, integers of a whole width are never in doubt.
    const bool stepsAside = isInteger && isWhole(rule.min) && isWhole(rule.binWidth) && rule.binWidth > 1 &&
                            std::fabs(rule.min) < 0x1p22 && span < 0x1p20;
    const double slack = std::fabs(double{rule.minF} - rule.min) / rule.binWidth;
    counts.base = stepsAside ? rule.minF - 0.5f : rule.minF;
    counts.inverse = static_cast<float>(1 / rule.binWidth);
    counts.slack = static_cast<float>(2 * slack);
    // Beyond these bounds the product has no precision left, or is out of a float's range.
    counts.approximate = slack < 0x1p-5 && rule.size < (1u << 21) && span < 1e37 && rule.binWidth < 1e37 &&
                         (rule.binWidth > 1e-37 || rule.minF == rule.maxF);
}

} // namespace

StripCounts::StripCounts(attr::HistogramData& histogram, eImageBufferType type, std::size_t nbPixels, bool isMasked,
                         std::vector<std::uint32_t>& tables)
    : histogram_{histogram}, type_{type}
{
    BinRule& rule = counts_.rule;
    rule.min = histogram.Min;
    rule.binWidth = histogram.BinWidth;
    rule.minF = static_cast<float>(histogram.Min);
    rule.maxF = static_cast<float>(histogram.Max);
    rule.size = static_cast<std::uint32_t>(histogram.Frequencies.size());
    approximate(counts_, type);

    counts_.size = rule.size;
    const std::size_t pixelSize = image::getPixelSize(type);
    if (pixelSize == 1) {
        counts_.byValue = true;
        counts_.size = 256;
        entryIsBin_ = false;
    } else if (type != eImageBufferType::eIBT_Float32) {
        const auto [lowest, highest] = image::getValueRange(type);
        const double first = std::ceil(std::max<double>(lowest, rule.minF));
        const double values = std::floor(std::min<double>(highest, rule.maxF)) - first + 1;
        // Below 2^24 a pixel and its single precision are the same. Few values, or a bin each, are worth it.
        const bool exact = -0x1p24 < rule.minF && rule.maxF < 0x1p24;
        const bool few = values <= 8192 && values * 16 <= static_cast<double>(nbPixels);
        // The upper bound itself is in the last bin, wherever it lies.
        const double end = first - rule.min + values;
        const bool each = rule.binWidth == 1 && isWhole(rule.min) && first >= rule.min &&
                          (isWhole(rule.maxF) ? end == rule.size - 1.0 : end <= rule.size - 1.0);
        // An entry of 16 bits has no room for "none" beside 65536 values.
        const bool fits = !isMasked || pixelSize > 2 || values < 0x1p16;
        if (values >= 1 && exact && (few || each) && fits) {
            counts_.byValue = true;
            counts_.first = static_cast<std::int64_t>(first);
            counts_.size = static_cast<std::uint32_t>(values);
            entryIsBin_ = each;
            firstBin_ = each ? static_cast<std::size_t>(first - rule.min) : 0;
        }
    }

    allocate(pixelSize, nbPixels, tables);
}

float StripCounts::valueOf(std::size_t entry) const
{
    if (type_ == eImageBufferType::eIBT_Int8) {
        return static_cast<signed char>(entry);
    }
    return static_cast<float>(counts_.first + static_cast<std::int64_t>(entry));
}

void StripCounts::collect()
{
    std::uint64_t* const frequencies = histogram_.Frequencies.data();
    for (std::size_t entry = 0; entry < counts_.size; ++entry) {
        if (entryIsBin_) {
            frequencies[firstBin_ + entry] += countOf(entry);
        } else if (const std::uint32_t index = binOf(valueOf(entry), counts_.rule); index < counts_.rule.size) {
            frequencies[index] += countOf(entry);
        }
    }
}

} // namespace orlix::imaproc::glbmsr
