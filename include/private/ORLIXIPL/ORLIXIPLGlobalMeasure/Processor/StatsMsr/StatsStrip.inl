// The members of StatsStrip that need the kernels; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/StripRuns.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/MomentSums.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

#include <framework/core/NumericLimits.hpp>

#include <cmath>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Strip, class... Mask>
const auto& StatsStrip<Self, Strip, Mask...>::getKernels()
{
    if constexpr (isMasked) {
        return getStatsMaskKernels();
    } else {
        return getStatsKernels();
    }
}

template <class Self, class Strip, class... Mask>
void StatsStrip<Self, Strip, Mask...>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    StatsStrip::registerKernels(selector, []<class T>(std::type_identity<T>, core::eInstructionSet::domain domain) {
        return kernelOf<T>(getKernels().of(domain)) != nullptr;
    });
}

template <class Self, class Strip, class... Mask>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult StatsStrip<Self, Strip, Mask...>::genericProcessFunction(ProcessingInfo info)
{
    StatsResult& result = this->template value<OutStatsResult>();
    Moments moments{};
    moments.min = result.Min;
    moments.max = result.Max;
    const auto kernel = kernelOf<T>(getKernels().of(D));
    const auto add = [&](const auto& run) { kernel(run, moments); };
    if constexpr (isMasked) {
        forEachRun<T>(info, this->getParser(0), this->getParser(1), add);
    } else {
        forEachRun<T>(info, this->getParser(0), add);
    }
    result.Sum = getSum<T>(moments);
    sumSq_ = getSumOfSquares<T>(moments);
    result.NbPixels = isMasked ? moments.selected : info.size;
    result.Min = moments.min;
    result.Max = moments.max;
    return {};
}

template <class Self, class Strip, class... Mask>
core::ProcessingResult StatsStrip<Self, Strip, Mask...>::preProcess()
{
    StatsResult& result = this->template value<OutStatsResult>();
    result.NbPixels = 0;
    result.Sum = 0;
    result.Mean = 0;
    result.Min = core::NumericLimits<double>::s_max;
    result.Max = core::NumericLimits<double>::s_min;
    sumSq_ = 0;
    return {};
}

template <class Self, class Strip, class... Mask>
core::ProcessingResult StatsStrip<Self, Strip, Mask...>::postProcess()
{
    StatsResult& result = this->template value<OutStatsResult>();
    if (isMasked && result.NbPixels == 0) {
        // On purpose: 0 in a strip, though a merge of nothing gives NaN.
        result.Mean = 0;
        result.StdDev = 0;
        return {};
    }
    const auto n = static_cast<double>(result.NbPixels);
    result.Mean = result.Sum / n;
    // On purpose: no clamp. Rounding may make the difference negative, and the deviation NaN.
    result.StdDev = std::sqrt(sumSq_ / n - result.Mean * result.Mean);
    return {};
}

} // namespace orlix::imaproc::glbmsr
