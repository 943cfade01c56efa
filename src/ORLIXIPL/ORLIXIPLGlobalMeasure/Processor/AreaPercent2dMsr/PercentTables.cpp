#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentTables.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentLevels.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>
#include <functional>

namespace orlix::imaproc::glbmsr
{

const KernelTables<PercentKernels>& getPercentKernels()
{
    static const KernelTables<PercentKernels> tables{
        percentKernels_generic, percentKernels_sse2, {}, percentKernels_avx2, percentKernels_avx512};
    return tables;
}

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
    constexpr std::uint32_t most = 0x7ffffffe; // that a table has room for
    if (largest > most) {
        return core::ProcessingResult::failure(
            core::formatMessage(attr::eAttributeMessage::eAM_UncountableLabel, largest, most));
    }
    // A list per strip, that of the plan, and the counts and tables of the strip at work.
    const std::size_t bytes = (std::size_t{largest} + 1) * sizeof(double) * (nbStrips + 3);
    const std::size_t limit = core::settings::getMemoryLimit();
    return bytes <= limit ? core::ProcessingResult{}
                          : core::ProcessingResult::failure(core::formatMessage(
                                attr::eAttributeMessage::eAM_HighLabel, largest, (bytes >> 20) + 1, limit >> 20));
}

core::ProcessingResult PercentMerge::merge(std::span<const Ptr<Doubles>> parts, Doubles& merged)
{
    std::size_t size = 0;
    for (const Ptr<Doubles>& part : parts) {
        size = std::max(size, part->Values.size());
    }
    merged.Values.assign(size, 0);
    for (const Ptr<Doubles>& part : parts) {
        std::transform(part->Values.begin(), part->Values.end(), merged.Values.begin(), merged.Values.begin(),
                       std::plus{});
    }
    for (double& value : merged.Values) {
        value *= 100.0;
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
