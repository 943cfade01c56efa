#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsr.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityKernels.hpp>

#include <framework/core/NumericLimits.hpp>
#include <framework/process/CallingForms.hpp>
#include <framework/process/MeasureRun.hpp>

#include <cmath>
#include <numeric>

namespace orlix::imaproc::glbmsr
{

struct Similarity
{
    using Result = SimilarityStats;
    struct State
    {
        std::uint64_t nbPixels;
        double sum; ///< of the squared differences
    };
    static constexpr std::size_t nbImages = 2;
    static constexpr auto getKernels = &getSimilarityKernels;

    template <class T>
    static void consume(SimilarityKernel<T> kernel, const Strips& strips, State& state)
    {
        const std::size_t length = strips.info.rowSize;
        SquaredDifferences differences{};
        for (std::size_t i = 0; i < strips.info.nbRuns(); ++i) {
            kernel({strips.parsers[0].run<T>(i, length), length}, {strips.parsers[1].run<T>(i, length), length},
                   differences);
        }
        state.nbPixels = strips.info.size;
        state.sum = std::is_floating_point_v<T>
                        ? std::accumulate(std::begin(differences.laneSums), std::end(differences.laneSums), 0.0)
                        : static_cast<double>(differences.sum);
    }

    static void combine(State& into, const SimilarityStats& part)
    {
        into.nbPixels += part.NbPixels;
        into.sum += part.SumSquaredDiff;
    }

    static void finish(const State& state, SimilarityStats& stats)
    {
        stats.NbPixels = state.nbPixels;
        stats.SumSquaredDiff = state.sum;
        stats.MSE = state.sum / static_cast<double>(state.nbPixels);
        // On purpose: the peak of 8 bits, whatever the pixel type.
        stats.PSNR = stats.MSE == 0 ? core::NumericLimits<double>::s_max : 20 * std::log10(255 / std::sqrt(stats.MSE));
    }
};

LevelClass SimilarityMsrLvl1::processorClass =
    defineLevel<SimilarityMsrLvl1, SimilarityMsrLvl2>(66, inOrder<Similarity>);
LevelClass SimilarityMsrLvl2::processorClass =
    defineLevel<SimilarityMsrLvl2, SimilarityMsrLvl3>(67, inOrder<Similarity>);
AlgorithmClass SimilarityMsrLvl3::processorClass = defineAlgorithm<SimilarityMsrLvl3>(68);

namespace
{

constexpr double toldPeak = 255;
const attr::Parameter peakParameter{
    {"Peak", "peak of the signal", "grey levels", "peak"}, false, data::Value{toldPeak}};

void checkPeak(const NamedValues& parameters)
{
    if (!(findNumber(parameters, "peak").value_or(toldPeak) > 0)) {
        throw MeasureException{"peak is not above 0", ORLIX_HERE};
    }
}

void checkTypes(BaseProcessor& processor, const NamedValues&)
{
    const image::eImageBufferType first = processor.getAttributes()[0]->getImage()->getType();
    const image::eImageBufferType second = processor.getAttributes()[1]->getImage()->getType();
    if (first != second) {
        throw PixelTypeException{std::string{"the images are "} + image::getName(first) + " and " +
                                     image::getName(second) + ": both need the same pixel type",
                                 false, ORLIX_HERE};
    }
}

void applyPeak(NamedFields& fields, const NamedValues& parameters, const image::ImageGeometry&)
{
    const double mse = std::get<double>(fields[2].second.value);
    const double peak = findNumber(parameters, "peak").value_or(toldPeak);
    if (peak != toldPeak && mse != 0 && !std::isnan(mse)) {
        fields[3].second.value = 20 * std::log10(peak / std::sqrt(mse));
    }
}

const MeasureRegistration registration{
    {"Similarity",
     "similarity",
     "squared differences of two images, their mean and the peak signal-to-noise ratio",
     "PSNR is 20 log10(peak / sqrt(MSE)) dB, with a peak of 255 whatever the pixel type. Of equal images it is "
     "infinite, "
     "which the record has as the largest double.",
     {&SimilarityMsrLvl1::processorClass},
     {.parameters = {peakParameter}, .check = &checkPeak, .prepare = &checkTypes, .finish = &applyPeak}}};

} // namespace

Ptr<SimilarityStats> similarityMsr(const Ptr<const image::BaseImage>& image1, const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<SimilarityMsrLvl1>::single<InImg1, InImg2>(image1, image2);
}

Ptr<SimilarityMsrLvl1> similarityMsr_async(const Ptr<const image::BaseImage>& image1,
                                           const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<SimilarityMsrLvl1>::singleAsync<InImg1, InImg2>(image1, image2);
}

Ptr<SimilarityStats> getAsyncProcessorOutput(const Ptr<SimilarityMsrLvl1>& processor)
{
    return CallingForms<SimilarityMsrLvl1>::output(processor);
}

} // namespace orlix::imaproc::glbmsr
