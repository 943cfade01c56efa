#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

#include <framework/core/NumericLimits.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult StatsMerge::merge(std::span<const Ptr<StatsResult>> parts, StatsResult& merged)
{
    std::uint64_t n = 0;
    double sum = 0;
    double sumSq = 0;
    double lo = core::NumericLimits<double>::s_max;
    double hi = core::NumericLimits<double>::s_min;
    for (const Ptr<StatsResult>& part : parts) {
        if (part->NbPixels == 0) {
            continue; // a mean of nothing is NaN
        }
        n += part->NbPixels;
        sum += part->Sum;
        lo = std::min(part->Min, lo);
        hi = std::max(part->Max, hi);
        sumSq += (part->Mean * part->Mean + part->StdDev * part->StdDev) * static_cast<double>(part->NbPixels);
    }
    const auto count = static_cast<double>(n);
    merged.NbPixels = n;
    merged.Sum = sum;
    merged.Min = lo;
    merged.Max = hi;
    merged.Mean = sum / count;
    // On purpose: no clamp. Rounding may make the difference negative, and the deviation NaN.
    merged.StdDev = std::sqrt(sumSq / count - merged.Mean * merged.Mean);
    return {};
}

} // namespace orlix::imaproc::glbmsr
