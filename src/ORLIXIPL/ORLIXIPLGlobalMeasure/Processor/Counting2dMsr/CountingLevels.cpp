#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/CountingLevels.hpp>

#include <framework/attribute/AttributeMessages.hpp>

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult countObjects(const attr::HistogramData& labels, std::uint64_t& objects)
{
    constexpr double most = 1 << 24; // beyond it, single precision takes several labels for one
    if (labels.BinWidth > 1 || labels.Min < -most || labels.Max > most) {
        return core::ProcessingResult::failure(
            core::formatMessage(attr::eAttributeMessage::eAM_WideLabels, labels.Min, labels.Max));
    }
    objects = static_cast<std::uint64_t>(std::count_if(labels.Frequencies.begin() + 1, labels.Frequencies.end(),
                                                       [](std::uint64_t frequency) { return frequency != 0; }));
    return {};
}

} // namespace orlix::imaproc::glbmsr
