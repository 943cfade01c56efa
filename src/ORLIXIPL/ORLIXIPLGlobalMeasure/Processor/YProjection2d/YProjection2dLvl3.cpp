#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2dLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/MomentSums.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace orlix::imaproc::glbmsr
{

using enum eProjStatType;

template <class Self>
void YProjectionStrip<Self>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    YProjectionStrip::registerKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return Self::statistic == ePST_Median ? domain == core::eInstructionSet::eIS_Generic
                                              : kernelOf<T>(getRowKernels().of(domain)).sum != nullptr;
    });
}

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

template <eProjStatType Statistic, class T>
double reduceRow(Run<T> row, const RowKernel<T>& kernel)
{
    Moments moments{};
    const auto n = static_cast<double>(row.size);
    if constexpr (Statistic == ePST_Sum || Statistic == ePST_Mean) {
        kernel.sum(row, moments);
        return Statistic == ePST_Sum ? getSum<T>(moments) : getSum<T>(moments) / n;
    } else if constexpr (Statistic == ePST_Var || Statistic == ePST_StdDev) {
        kernel.squares(row, moments);
        const double sum = getSum<T>(moments);
        // On purpose: no clamp. Rounding may make the variance negative, and the deviation NaN.
        const double variance = (getSumOfSquares<T>(moments) - sum * sum / n) / n;
        return Statistic == ePST_Var ? variance : std::sqrt(variance);
    } else {
        constexpr double worst = Statistic == ePST_Min ? infinity : -infinity;
        moments.min = infinity;
        moments.max = -infinity;
        kernel.extremes(row, moments);
        const double extreme = Statistic == ePST_Min ? moments.min : moments.max;
        // Nothing but NaN, perhaps.
        return extreme == worst && std::all_of(row.pixels, row.pixels + row.size, [](T x) { return x != x; })
                   ? static_cast<double>(row.pixels[0])
                   : extreme;
    }
}

} // namespace

template <class Self>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult YProjectionStrip<Self>::genericProcessFunction(ProcessingInfo)
{
    const image::PixelBox& box = this->getParser(0).getBox();
    std::vector<double>& values = this->template value<OutProjStat>().Values;
    values.resize(box.y);
    const auto row = [&](std::size_t y) {
        return Run<T>{reinterpret_cast<const T*>(box.origin + static_cast<std::ptrdiff_t>(y) * box.strideY), box.x};
    };
    if constexpr (Self::statistic == ePST_Median) {
        const auto kernel = kernelOf<T>(getRowKernels().of(chooseMedianSet(this->getEffectiveSets())));
        const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(rowScratchBytes<T>(box.x));
        for (std::size_t y = 0; y < box.y; ++y) {
            values[y] = kernel.median(row(y), scratch.get());
        }
    } else {
        const auto kernel = kernelOf<T>(getRowKernels().of(D));
        for (std::size_t y = 0; y < box.y; ++y) {
            values[y] = reduceRow<Self::statistic, T>(row(y), kernel);
        }
    }
    return {};
}

AlgorithmClass YProjectionMax2dLvl3::processorClass =
    declareAlgorithm<YProjectionMax2dLvl3>("YProjectionMax2dLvl3", 104);
YProjectionMax2dLvl3::YProjectionMax2dLvl3() = default;
YProjectionMax2dLvl3::~YProjectionMax2dLvl3() = default;

AlgorithmClass YProjectionMean2dLvl3::processorClass =
    declareAlgorithm<YProjectionMean2dLvl3>("YProjectionMean2dLvl3", 105);
YProjectionMean2dLvl3::YProjectionMean2dLvl3() = default;
YProjectionMean2dLvl3::~YProjectionMean2dLvl3() = default;

AlgorithmClass YProjectionMedian2dLvl3::processorClass =
    declareAlgorithm<YProjectionMedian2dLvl3>("YProjectionMedian2dLvl3", 106);
YProjectionMedian2dLvl3::YProjectionMedian2dLvl3() = default;
YProjectionMedian2dLvl3::~YProjectionMedian2dLvl3() = default;

AlgorithmClass YProjectionMin2dLvl3::processorClass =
    declareAlgorithm<YProjectionMin2dLvl3>("YProjectionMin2dLvl3", 107);
YProjectionMin2dLvl3::YProjectionMin2dLvl3() = default;
YProjectionMin2dLvl3::~YProjectionMin2dLvl3() = default;

AlgorithmClass YProjectionStdDev2dLvl3::processorClass =
    declareAlgorithm<YProjectionStdDev2dLvl3>("YProjectionStdDev2dLvl3", 108);
YProjectionStdDev2dLvl3::YProjectionStdDev2dLvl3() = default;
YProjectionStdDev2dLvl3::~YProjectionStdDev2dLvl3() = default;

AlgorithmClass YProjectionSum2dLvl3::processorClass =
    declareAlgorithm<YProjectionSum2dLvl3>("YProjectionSum2dLvl3", 109);
YProjectionSum2dLvl3::YProjectionSum2dLvl3() = default;
YProjectionSum2dLvl3::~YProjectionSum2dLvl3() = default;

AlgorithmClass YProjectionVar2dLvl3::processorClass =
    declareAlgorithm<YProjectionVar2dLvl3>("YProjectionVar2dLvl3", 110);
YProjectionVar2dLvl3::YProjectionVar2dLvl3() = default;
YProjectionVar2dLvl3::~YProjectionVar2dLvl3() = default;

} // namespace orlix::imaproc::glbmsr
