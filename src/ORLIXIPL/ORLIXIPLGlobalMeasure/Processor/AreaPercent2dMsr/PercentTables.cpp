#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentTables.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentLevels.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/core/Settings.hpp>

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

const KernelTables<PercentKernels>& getPercentKernels()
{
    static const KernelTables<PercentKernels> tables{
        percentKernels_generic, percentKernels_sse2, {}, percentKernels_avx2, percentKernels_avx512};
    return tables;
}

core::ProcessingResult checkLabel(std::uint32_t largest, std::size_t nbStrips)
{
    // A list per strip, that of the plan, and the counts and tables of the strip at work.
    const double bytes = (static_cast<double>(largest) + 1) * sizeof(double) * (static_cast<double>(nbStrips) + 3);
    const auto limit = static_cast<double>(core::settings::getMemoryLimit());
    constexpr std::uint32_t most = 0x7fffffff; // entries of a table
    if (bytes <= limit && largest < most) {
        return {};
    }
    constexpr double mebi = 1 << 20;
    return core::ProcessingResult::failure(core::formatMessage(attr::eAttributeMessage::eAM_HighLabel, largest,
                                                               static_cast<std::uint64_t>(bytes / mebi) + 1,
                                                               static_cast<std::uint64_t>(limit / mebi)));
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
