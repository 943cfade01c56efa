#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsLevels.hpp>

#include <framework/core/NumericLimits.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::glbmsr
{

/// How statistics of disjoint parts become one: sums of squares are rebuilt from mean and deviation.
struct Stats
{
    using Result = StatsResult;
    struct State
    {
        std::uint64_t nbPixels = 0;
        double sum = 0;
        double sumSq = 0;
        double min = core::NumericLimits<double>::s_max;
        double max = core::NumericLimits<double>::s_min;
    };

    static void combine(State& into, const StatsResult& part)
    {
        if (part.NbPixels == 0) {
            return; // a mean of nothing is NaN
        }
        into.nbPixels += part.NbPixels;
        into.sum += part.Sum;
        into.sumSq += (part.Mean * part.Mean + part.StdDev * part.StdDev) * static_cast<double>(part.NbPixels);
        into.min = std::min(part.Min, into.min);
        into.max = std::max(part.Max, into.max);
    }

    static void finish(const State& state, StatsResult& result)
    {
        const auto n = static_cast<double>(state.nbPixels);
        result.NbPixels = state.nbPixels;
        result.Sum = state.sum;
        result.Mean = state.sum / n;
        result.Min = state.min;
        result.Max = state.max;
        // On purpose: no clamp. Rounding may make the difference negative, and the deviation NaN.
        result.StdDev = std::sqrt(state.sumSq / n - result.Mean * result.Mean);
    }
};

/// The statistics of one strip of rows.
class StatsMsrLvl3 final : public Algorithm<StatsMsrLvl3, MeasureStrip<PlainStats>, InYStrip2d, OutStatsResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The statistics of one 2d plan.
class StatsMsrLvl2 final : public Processor<StatsMsrLvl2, Level, InSubImg2d, OutStatsResult>
{
public:
    static LevelClass processorClass;
    static GpuVariant gpuVariant;
};

/// The statistics of one strip of rows under a mask.
class StatsMaskMsrLvl3 final
    : public Algorithm<StatsMaskMsrLvl3, MeasureStrip<MaskedStats>, InYStrip2d, InMaskYStrip2d, OutStatsResult>
{
public:
    static AlgorithmClass processorClass;
};

/// The statistics of one 2d plan under a mask.
class StatsMaskMsrLvl2 final : public Processor<StatsMaskMsrLvl2, Level, InSubImg2d, InSubMaskImg2d, OutStatsResult>
{
public:
    static LevelClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
