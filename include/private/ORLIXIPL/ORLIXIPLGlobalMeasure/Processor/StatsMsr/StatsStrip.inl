// The members of StatsStrip that need the kernels; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsKernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsLevels.hpp>

#include <framework/core/NumericLimits.hpp>

#include <cmath>

namespace orlix::imaproc::glbmsr
{

/// In pairs, then pairs of pairs, ...: an order that does not depend on the instruction set.
inline double addLanes(double (&lane)[Moments::lanes])
{
    for (std::size_t width = Moments::lanes / 2; width != 0; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            lane[k] += lane[k + width];
        }
    }
    return lane[0];
}

template <class Self, class Strip>
void StatsStrip<Self, Strip>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    const auto registerDomain = [&]<core::eInstructionSet::domain D>(DomainConstant<D>) {
        image::forEachPixelType([&]<class T>(std::type_identity<T>) {
            if (kernelOf<T>(getStatsKernels(D)) != nullptr) {
                Algorithm<Self, Strip, OutStatsResult>::template registerKernel<T, D>(selector);
            }
        });
    };
    forEachAvailableDomain(registerDomain);
}

template <class Self, class Strip>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult StatsStrip<Self, Strip>::genericProcessFunction(ProcessingInfo info)
{
    StatsResult& result = this->template value<OutStatsResult>();
    Moments moments{};
    moments.min = result.Min;
    moments.max = result.Max;
    const auto kernel = kernelOf<T>(getStatsKernels(D));
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        kernel({this->getParser(0).template run<T>(i, info.rowSize), info.rowSize}, moments);
    }
    if constexpr (std::is_floating_point_v<T>) {
        result.Sum = addLanes(moments.laneSums);
        sumSq_ = addLanes(moments.laneSquares);
    } else {
        result.Sum = static_cast<double>(moments.sum);
        sumSq_ = static_cast<double>(moments.sumSq);
    }
    result.Min = moments.min;
    result.Max = moments.max;
    return {};
}

template <class Self, class Strip>
core::ProcessingResult StatsStrip<Self, Strip>::preProcess()
{
    StatsResult& result = this->template value<OutStatsResult>();
    result.NbPixels = this->template attribute<Strip>().get().nbPixels();
    result.Sum = 0;
    result.Mean = 0;
    result.Min = core::NumericLimits<double>::s_max;
    result.Max = core::NumericLimits<double>::s_min;
    sumSq_ = 0;
    return {};
}

template <class Self, class Strip>
core::ProcessingResult StatsStrip<Self, Strip>::postProcess()
{
    StatsResult& result = this->template value<OutStatsResult>();
    const auto n = static_cast<double>(result.NbPixels);
    result.Mean = result.Sum / n;
    // On purpose: no clamp. Rounding may make the difference negative, and the deviation NaN.
    result.StdDev = std::sqrt(sumSq_ / n - result.Mean * result.Mean);
    return {};
}

} // namespace orlix::imaproc::glbmsr
