#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationSums.hpp>

#include <cmath>
#include <limits>

namespace orlix::imaproc::glbmsr
{

void SecondStrip::read(std::size_t row, std::size_t x, std::size_t size, float mean, float* deviations) const
{
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (type == image::imageBufferTypeOf<T>) {
            kernelOf<T>(kernels).readFloats({parser.run<T>(row, parser.getBox().x) + x, mean}, size, deviations);
        }
    });
}

void SecondStrip::read(std::size_t row, std::size_t x, std::size_t size, double mean, double* deviations) const
{
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (type == image::imageBufferTypeOf<T>) {
            kernelOf<T>(kernels).readDoubles({parser.run<T>(row, parser.getBox().x) + x, mean}, size, deviations);
        }
    });
}

DeviationSums total(const PairTotals& totals, std::size_t size, double mean1, double mean2)
{
    // The bulk of a mean comes off the exact sums, as an integer, and what is left of it in double. So nothing cancels,
    // and a strip that is constant at its mean comes to 0 exactly.
    const auto centreOf = [](double mean) { return std::abs(mean) < 65536 ? std::llround(mean) : 0; };
    const Int128 n = size;
    const Int128 centre1 = centreOf(mean1);
    const Int128 centre2 = centreOf(mean2);
    const double rest1 = mean1 - static_cast<double>(centre1);
    const double rest2 = mean2 - static_cast<double>(centre2);
    const auto sum1 = static_cast<double>(totals.sum1 - n * centre1);
    const auto sum2 = static_cast<double>(totals.sum2 - n * centre2);
    const auto count = static_cast<double>(size);
    const auto squares1 = totals.squares1 - 2 * centre1 * totals.sum1 + n * centre1 * centre1;
    const auto squares2 = totals.squares2 - 2 * centre2 * totals.sum2 + n * centre2 * centre2;
    const auto products = totals.products - centre1 * totals.sum2 - centre2 * totals.sum1 + n * centre1 * centre2;
    return {static_cast<double>(squares1) - 2 * rest1 * sum1 + count * rest1 * rest1,
            static_cast<double>(squares2) - 2 * rest2 * sum2 + count * rest2 * rest2,
            static_cast<double>(products) - rest1 * sum2 - rest2 * sum1 + count * rest1 * rest2};
}

namespace
{

/// Strips in their order. On purpose, the first field of a merged record is the sum over image 2, and its second field
/// is left as it is.
struct NCC
{
    using Result = NCCResult;
    struct State
    {
        double squares1;
        double squares2;
        double products;
    };

    static void combine(State& into, const NCCResult& part)
    {
        into.squares1 += part.SumSquaredDev1;
        into.squares2 += part.SumSquaredDev2;
        into.products += part.Correlation * std::sqrt(part.SumSquaredDev1 * part.SumSquaredDev2);
    }
    static void finish(const State& state, NCCResult& merged)
    {
        merged.Correlation = state.products / std::sqrt(state.squares1 * state.squares2);
        merged.SumSquaredDev1 = state.squares2;
    }
};

/// The sum of the strips, in their order.
struct PearsonCC
{
    using Result = PearsonCCResult;
    using State = double;

    static void combine(State& into, const PearsonCCResult& part) { into += part.PearsonCC; }
    static void finish(const State& sum, PearsonCCResult& merged) { merged.PearsonCC = sum; }
};

constexpr auto hasKernel = []<class T>(std::type_identity<T>, auto set) {
    return kernelOf<T>(getDeviationKernels().of(set)).readFloats != nullptr;
};

} // namespace

void CorrelationLevel::clearIntermediateDataDerived()
{
    Level::clearIntermediateDataDerived();
    statistics_[0].reset();
    statistics_[1].reset();
}

Ptr<BaseProcessor> CorrelationLevel::makeStage(std::size_t index)
{
    statistics_[index] = makeStageProcessor(getStatisticsClass(), {getAttributes()[index]});
    return statistics_[index];
}

CorrelationLevel::Deviations CorrelationLevel::getDeviations(std::size_t image) const
{
    const auto statistics = statistics_[image]->getStorage<OutStatsResult>();
    // Those of a constant image are exact, which rounded sums need not be: its deviation might be NaN.
    return statistics->Min == statistics->Max ? Deviations{statistics->Min, 0}
                                              : Deviations{statistics->Mean, statistics->StdDev};
}

void NCCLevel::prepareChild(BaseProcessor& child, std::size_t)
{
    child.set<InOffset1>(static_cast<float>(getDeviations(0).mean));
    child.set<InOffset2>(static_cast<float>(getDeviations(1).mean));
}

void PearsonCCLevel::prepareChild(BaseProcessor& child, std::size_t)
{
    const Deviations first = getDeviations(0);
    const Deviations second = getDeviations(1);
    child.set<InImgMean1>(first.mean);
    child.set<InImgMean2>(second.mean);
    child.set<InFactor>(first.stdDev * second.stdDev);
}

void NCCStrip::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerPairKernels<NCCStrip>(selector, hasKernel);
}

template <class T>
core::ProcessingResult NCCStrip::genericProcessFunction(ProcessingInfo info)
{
    const DeviationKernels& kernels = getDeviationKernels().of(getDomain());
    const SecondStrip second{kernels, getParser(1), getAttributes()[1]->getImage()->getType()};
    const DeviationSums sums = sumDeviations<T>(kernelOf<T>(kernels).cross, getParser(0), second, info,
                                                *find<InOffset1>().get(), *find<InOffset2>().get());
    NCCResult& result = output<NCCResult>();
    result.SumSquaredDev1 = sums.squares1;
    result.SumSquaredDev2 = sums.squares2;
    // On purpose: NaN where a strip is constant at its offset.
    result.Correlation = sums.products / std::sqrt(sums.squares1 * sums.squares2);
    return {};
}

void PearsonCCStrip::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerPairKernels<PearsonCCStrip>(selector, hasKernel);
}

template <class T>
core::ProcessingResult PearsonCCStrip::genericProcessFunction(ProcessingInfo info)
{
    const DeviationKernels& kernels = getDeviationKernels().of(getDomain());
    const SecondStrip second{kernels, getParser(1), getAttributes()[1]->getImage()->getType()};
    const DeviationSums sums = sumDeviations<T>(kernelOf<T>(kernels).products, getParser(0), second, info,
                                                *find<InImgMean1>().get(), *find<InImgMean2>().get());
    // A constant image has no deviations: 0 / epsilon.
    const double factor = *find<InFactor>().get();
    output<PearsonCCResult>().PearsonCC =
        sums.products / (factor == 0 ? factor + std::numeric_limits<float>::epsilon() : factor);
    return {};
}

LevelClass NormalizedCrossCorrelationMsr2dLvl1::processorClass =
    defineLevel<NormalizedCrossCorrelationMsr2dLvl1, NormalizedCrossCorrelationMsr2dLvl2>(41);
LevelClass NormalizedCrossCorrelationMsr2dLvl2::processorClass =
    defineLevel<NormalizedCrossCorrelationMsr2dLvl2, NormalizedCrossCorrelationMsr2dLvl3>(42, inOrder<NCC>);
AlgorithmClass NormalizedCrossCorrelationMsr2dLvl3::processorClass =
    defineAlgorithm<NormalizedCrossCorrelationMsr2dLvl3>(43);
LevelClass NormalizedCrossCorrelationMsr3dLvl1::processorClass =
    defineLevel<NormalizedCrossCorrelationMsr3dLvl1, NormalizedCrossCorrelationMsr3dLvl2>(44);
LevelClass NormalizedCrossCorrelationMsr3dLvl2::processorClass =
    defineLevel<NormalizedCrossCorrelationMsr3dLvl2, NormalizedCrossCorrelationMsr3dLvl3>(45, inOrder<NCC>);
AlgorithmClass NormalizedCrossCorrelationMsr3dLvl3::processorClass =
    defineAlgorithm<NormalizedCrossCorrelationMsr3dLvl3>(46);
LevelClass PearsonCorrelationCoefficient2dLvl1::processorClass =
    defineLevel<PearsonCorrelationCoefficient2dLvl1, PearsonCorrelationCoefficient2dLvl2>(50);
LevelClass PearsonCorrelationCoefficient2dLvl2::processorClass =
    defineLevel<PearsonCorrelationCoefficient2dLvl2, PearsonCorrelationCoefficient2dLvl3>(51, inOrder<PearsonCC>);
AlgorithmClass PearsonCorrelationCoefficient2dLvl3::processorClass =
    defineAlgorithm<PearsonCorrelationCoefficient2dLvl3>(52);
LevelClass PearsonCorrelationCoefficient3dLvl1::processorClass =
    defineLevel<PearsonCorrelationCoefficient3dLvl1, PearsonCorrelationCoefficient3dLvl2>(53);
LevelClass PearsonCorrelationCoefficient3dLvl2::processorClass =
    defineLevel<PearsonCorrelationCoefficient3dLvl2, PearsonCorrelationCoefficient3dLvl3>(54, inOrder<PearsonCC>);
AlgorithmClass PearsonCorrelationCoefficient3dLvl3::processorClass =
    defineAlgorithm<PearsonCorrelationCoefficient3dLvl3>(55);

namespace
{

const MeasureRegistration nccMeasure{
    {"Normalized cross correlation",
     "ncc",
     "normalized cross correlation of two images",
     "NaN where an image is constant over a plan, or over a part of some 512 KiB of it.",
     {&NormalizedCrossCorrelationMsr2dLvl1::processorClass, &NormalizedCrossCorrelationMsr3dLvl1::processorClass}}};

constexpr data::FieldInfo coefficientField{"r", "Pearson's coefficient, from -1 to 1"};

void addCoefficient(NamedFields& fields, const NamedValues&, const image::ImageGeometry& part)
{
    const double r = std::get<double>(fields[0].second.value) / static_cast<double>(part.nbPixels());
    fields.emplace_back(coefficientField.name, data::Field{coefficientField, r});
}

const MeasureRegistration pearsonMeasure{
    {"Pearson correlation",
     "pearson",
     "Pearson correlation of two images: times the number of pixels, and the coefficient r",
     "",
     {&PearsonCorrelationCoefficient2dLvl1::processorClass, &PearsonCorrelationCoefficient3dLvl1::processorClass},
     {.fields = {PearsonCCResult{}.getFields()[0], coefficientField}, .finish = &addCoefficient}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
