#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityKernels.hpp>

#include <framework/core/NumericLimits.hpp>

#include <cmath>
#include <numeric>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass SimilarityMsrLvl3::processorClass = declareAlgorithm<SimilarityMsrLvl3>("SimilarityMsrLvl3", 68);

SimilarityMsrLvl3::SimilarityMsrLvl3() = default;
SimilarityMsrLvl3::~SimilarityMsrLvl3() = default;

namespace
{

const KernelTables<SimilarityKernels>& getSimilarityKernels()
{
    static const KernelTables<SimilarityKernels> tables{
        similarityKernels_generic, similarityKernels_sse2, {}, similarityKernels_avx2, similarityKernels_avx512};
    return tables;
}

/// Mean and ratio, from number and sum.
void finish(SimilarityStats& stats)
{
    stats.MSE = stats.SumSquaredDiff / static_cast<double>(stats.NbPixels);
    // On purpose: the peak of 8 bits, whatever the pixel type.
    stats.PSNR = stats.MSE == 0 ? core::NumericLimits<double>::s_max : 20 * std::log10(255 / std::sqrt(stats.MSE));
}

} // namespace

core::ProcessingResult SimilarityMerge::merge(std::span<const Ptr<SimilarityStats>> parts, SimilarityStats& merged)
{
    merged.NbPixels = 0;
    merged.SumSquaredDiff = 0;
    for (const Ptr<SimilarityStats>& part : parts) {
        merged.NbPixels += part->NbPixels;
        merged.SumSquaredDiff += part->SumSquaredDiff;
    }
    finish(merged);
    return {};
}

void SimilarityMsrLvl3::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getSimilarityKernels().of(domain)) != nullptr;
    });
}

Rule SimilarityMsrLvl3::makeRule() const
{
    return matchType(attribute<InYStrip2d1>(), attribute<InYStrip2d2>());
}

core::ProcessingResult SimilarityMsrLvl3::preProcess()
{
    value<OutSimilarityStats>().NbPixels = attribute<InYStrip2d1>().get().nbPixels();
    value<OutSimilarityStats>().SumSquaredDiff = 0;
    return {};
}

template <class T, core::eInstructionSet::domain D>
core::ProcessingResult SimilarityMsrLvl3::genericProcessFunction(ProcessingInfo info)
{
    SquaredDifferences differences{};
    const auto kernel = kernelOf<T>(getSimilarityKernels().of(D));
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        kernel({getParser(0).run<T>(i, info.rowSize), info.rowSize},
               {getParser(1).run<T>(i, info.rowSize), info.rowSize}, differences);
    }
    value<OutSimilarityStats>().SumSquaredDiff =
        std::is_floating_point_v<T>
            ? std::accumulate(std::begin(differences.laneSums), std::end(differences.laneSums), 0.0)
            : static_cast<double>(differences.sum);
    return {};
}

core::ProcessingResult SimilarityMsrLvl3::postProcess()
{
    finish(value<OutSimilarityStats>());
    return {};
}

} // namespace orlix::imaproc::glbmsr
