#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsrLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseKernels.hpp>

#include <numeric>

namespace orlix::imaproc::glbmsr
{

AlgorithmClass GaussianNoiseMsrLvl3::processorClass = declareAlgorithm<GaussianNoiseMsrLvl3>("GaussianNoiseMsrLvl3", 9);

GaussianNoiseMsrLvl3::GaussianNoiseMsrLvl3() = default;
GaussianNoiseMsrLvl3::~GaussianNoiseMsrLvl3() = default;

namespace
{

const KernelTables<GaussianNoiseKernels>& getGaussianNoiseKernels()
{
    static const KernelTables<GaussianNoiseKernels> tables{gaussianNoiseKernels_generic, gaussianNoiseKernels_sse2,
                                                           gaussianNoiseKernels_avx, gaussianNoiseKernels_avx2,
                                                           gaussianNoiseKernels_avx512};
    return tables;
}

void estimate(GaussianNoiseStats& stats)
{
    // On purpose: the number goes through single precision. The factor is sqrt(pi / 2).
    const double n = static_cast<float>(stats.NbPixels);
    stats.NoiseStdDev = 1.2533141373155001 * stats.SumAbsLaplacian / (n * 6.0);
}

} // namespace

core::ProcessingResult GaussianNoiseMerge::merge(std::span<const Ptr<GaussianNoiseStats>> parts,
                                                 GaussianNoiseStats& merged)
{
    merged.NbPixels = 0;
    merged.SumAbsLaplacian = 0;
    for (const Ptr<GaussianNoiseStats>& part : parts) {
        merged.NbPixels += part->NbPixels;
        merged.SumAbsLaplacian += part->SumAbsLaplacian;
    }
    estimate(merged);
    return {};
}

void GaussianNoiseMsrLvl3::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getGaussianNoiseKernels().of(domain)) != nullptr;
    });
}

core::ProcessingResult GaussianNoiseMsrLvl3::preProcess()
{
    value<OutGaussianNoiseStats>().NbPixels = attribute<InKnlYStrip2d>().get().nbPixels();
    value<OutGaussianNoiseStats>().SumAbsLaplacian = 0;
    return {};
}

template <class T, core::eInstructionSet::domain D>
core::ProcessingResult GaussianNoiseMsrLvl3::genericProcessFunction(ProcessingInfo info)
{
    if (info.size == 0) {
        return {};
    }
    const image::YStrip2d& strip = attribute<InKnlYStrip2d>().get();
    const std::size_t width = strip.image->getGeometry().x;
    const auto row = [&](std::size_t y, int step) {
        const auto at = static_cast<std::ptrdiff_t>(y) + step;
        return reinterpret_cast<const T*>(image::continueBorder2d(*strip.image, at));
    };
    AbsResponses responses{};
    const auto kernel = kernelOf<T>(getGaussianNoiseKernels().of(D));
    for (std::size_t y = strip.first; y < strip.first + strip.count; ++y) {
        kernel(row(y, -1), row(y, 0), row(y, 1), width, responses);
    }
    value<OutGaussianNoiseStats>().SumAbsLaplacian =
        std::is_floating_point_v<T> ? std::accumulate(std::begin(responses.laneSums), std::end(responses.laneSums), 0.0)
                                    : static_cast<double>(responses.sum);
    return {};
}

core::ProcessingResult GaussianNoiseMsrLvl3::postProcess()
{
    estimate(value<OutGaussianNoiseStats>());
    return {};
}

} // namespace orlix::imaproc::glbmsr
