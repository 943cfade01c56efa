#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsr.hpp>

namespace orlix::bench
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

#ifdef ORLIX_BENCH_OPENCV
/// Mean and deviation of both, and the dot product.
void correlatePeer(const cv::Mat& a, const cv::Mat& b)
{
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(a, mean, deviation);
    cv::meanStdDev(b, mean, deviation);
    benchmark::DoNotOptimize(a.dot(b));
}

void comparePeer(const cv::Mat& a, const cv::Mat& b)
{
    benchmark::DoNotOptimize(cv::norm(a, b, cv::NORM_L2SQR));
}
#else
constexpr auto correlatePeer = 0;
constexpr auto comparePeer = 0;
#endif

/// The read is that of the first image; both are read.
template <class T, class Measure, class Peer>
void comparePair(benchmark::State& state, Measure measure, [[maybe_unused]] Peer peer)
{
    const auto first = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    // Further than a power of two from the first.
    const image::ImageGeometry& size = first->getGeometry();
    const auto both = makeImage<T>({size.x, size.y + 3}, [g = std::mt19937{2}]() mutable { return g() >> 16; });
    const auto second = image::BaseImage::wrap(static_cast<const void*>(both->getRow(3)), both->getType(), size, both);
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t bytes = size.nbPixels() * sizeof(T);
    const auto call = [&] { benchmark::DoNotOptimize(measure(first, second)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(core::settings::getNbThreads()));
    compare(
        state, first->getRow(0), bytes, call, [&] { peer(asMat(*first), asMat(*second)); },
        peerType(first->getType()) >= 0);
#else
    compare(
        state, first->getRow(0), bytes, call, [] {}, false);
#endif
    core::settings::setNbThreads(0);
}

template <class T>
void crossCorrelation(benchmark::State& state)
{
    comparePair<T>(
        state, [](const auto& a, const auto& b) { return normalizedCrossCorrelationMsr2d(a, b); }, correlatePeer);
}

template <class T>
void pearsonCorrelation(benchmark::State& state)
{
    comparePair<T>(
        state, [](const auto& a, const auto& b) { return pearsonCorrelationCoefficient2d(a, b); }, correlatePeer);
}

template <class T>
void similarity(benchmark::State& state)
{
    comparePair<T>(
        state, [](const auto& a, const auto& b) { return similarityMsr(a, b); }, comparePeer);
}

BENCHMARK(crossCorrelation<unsigned char>)->Apply(sizesAndThreads);
BENCHMARK(crossCorrelation<unsigned short>)->Apply(sizesAndThreads);
BENCHMARK(crossCorrelation<float>)->Apply(sizesAndThreads);
BENCHMARK(pearsonCorrelation<unsigned char>)->Apply(sizesAndThreads);
BENCHMARK(pearsonCorrelation<unsigned short>)->Apply(sizesAndThreads);
BENCHMARK(pearsonCorrelation<float>)->Apply(sizesAndThreads);
BENCHMARK(similarity<unsigned char>)->Apply(sizesAndThreads);
BENCHMARK(similarity<unsigned short>)->Apply(sizesAndThreads);
BENCHMARK(similarity<float>)->Apply(sizesAndThreads);

} // namespace

} // namespace orlix::bench
