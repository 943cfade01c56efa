#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseKernels.hpp>

#include <framework/process/CallingForms.hpp>

#include <numeric>

namespace orlix::imaproc::glbmsr
{

struct GaussianNoise
{
    using Result = GaussianNoiseStats;
    struct State
    {
        std::uint64_t nbPixels;
        double sum; ///< of the absolute responses
    };

    static constexpr auto getKernels = &getGaussianNoiseKernels;

    template <class T>
    static void consume(GaussianNoiseKernel<T> kernel, const Strips& strips, State& state)
    {
        const image::YStrip2d strip = strips.get<InKnlYStrip2d>();
        state.nbPixels = strip.nbPixels();
        if (state.nbPixels == 0) {
            return;
        }
        const image::PixelBox& box = strips.parsers[0].getBox();
        const auto first = static_cast<std::ptrdiff_t>(strip.first);
        const auto row = [&](std::ptrdiff_t y) {
            const std::ptrdiff_t at = image::continueBorder2d(*strip.image, y) - first;
            return reinterpret_cast<const T*>(box.origin + at * box.strideY);
        };
        AbsResponses responses{};
        for (std::ptrdiff_t y = first; y < first + static_cast<std::ptrdiff_t>(strip.count); ++y) {
            kernel(row(y - 1), row(y), row(y + 1), box.x, responses);
        }
        state.sum = std::is_floating_point_v<T>
                        ? std::accumulate(std::begin(responses.laneSums), std::end(responses.laneSums), 0.0)
                        : static_cast<double>(responses.sum);
    }

    static void combine(State& into, const GaussianNoiseStats& part)
    {
        into.nbPixels += part.NbPixels;
        into.sum += part.SumAbsLaplacian;
    }

    static void finish(const State& state, GaussianNoiseStats& stats)
    {
        stats.NbPixels = state.nbPixels;
        stats.SumAbsLaplacian = state.sum;
        // On purpose: the number goes through single precision. The factor is sqrt(pi / 2).
        const double n = static_cast<float>(state.nbPixels);
        stats.NoiseStdDev = 1.2533141373155001 * state.sum / (n * 6.0);
    }
};

LevelClass GaussianNoiseMsrLvl1::processorClass =
    defineLevel<GaussianNoiseMsrLvl1, GaussianNoiseMsrLvl2>(7, inOrder<GaussianNoise>);
LevelClass GaussianNoiseMsrLvl2::processorClass =
    defineLevel<GaussianNoiseMsrLvl2, GaussianNoiseMsrLvl3>(8, inOrder<GaussianNoise>);
AlgorithmClass GaussianNoiseMsrLvl3::processorClass = defineAlgorithm<GaussianNoiseMsrLvl3>(9);

namespace
{

const MeasureRegistration noiseMeasure{
    {"Gaussian noise", "noise", "standard deviation of Gaussian noise", "", {&GaussianNoiseMsrLvl1::processorClass}}};

} // namespace

Ptr<GaussianNoiseStats> gaussianNoiseMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<GaussianNoiseMsrLvl1>::single<InImg>(image);
}

Ptr<GaussianNoiseMsrLvl1> gaussianNoiseMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<GaussianNoiseMsrLvl1>::singleAsync<InImg>(image);
}

Ptr<GaussianNoiseStats> getAsyncProcessorOutput(const Ptr<GaussianNoiseMsrLvl1>& processor)
{
    return CallingForms<GaussianNoiseMsrLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
