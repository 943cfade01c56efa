#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2d.hpp>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace orlix::bench
{

using namespace imaproc::glbmsr;

namespace
{

#ifdef ORLIX_BENCH_OPENCV
/// The responses to the mask, in a type that holds them, and the sum of their magnitudes.
void estimatePeer(const cv::Mat& image)
{
    const float mask[] = {1, -2, 1};
    const cv::Mat kernel{1, 3, CV_32F, const_cast<float*>(mask)};
    cv::Mat responses;
    cv::sepFilter2D(image, responses, image.depth() == CV_8U ? CV_16S : CV_32F, kernel, kernel, {-1, -1}, 0,
                    cv::BORDER_REPLICATE);
    benchmark::DoNotOptimize(cv::norm(responses, cv::NORM_L1));
}

void momentsPeer(const cv::Mat& image)
{
    benchmark::DoNotOptimize(cv::moments(image).m02);
}
#else
constexpr auto estimatePeer = 0;
constexpr auto momentsPeer = 0;
#endif

template <class T, class Measure, class Peer>
void compareImage(benchmark::State& state, Measure measure, [[maybe_unused]] Peer peer)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t bytes = image->getGeometry().nbPixels() * sizeof(T);
    const auto call = [&] { benchmark::DoNotOptimize(measure(image)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(core::settings::getNbThreads()));
    compare(
        state, image->getRow(0), bytes, call, [&] { peer(asMat(*image)); }, true);
#else
    compare(
        state, image->getRow(0), bytes, call, [] {}, false);
#endif
    core::settings::setNbThreads(0);
}

template <class T>
void noise(benchmark::State& state)
{
    compareImage<T>(
        state, [](const auto& image) { return gaussianNoiseMsr(image); }, estimatePeer);
}

template <class T>
void paraboloid(benchmark::State& state)
{
    compareImage<T>(
        state, [](const auto& image) { return paraboloidImgFit2d(image); }, momentsPeer);
}

BENCHMARK(noise<unsigned char>)->Apply(sizesAndThreads);
BENCHMARK(noise<unsigned short>)->Apply(sizesAndThreads);
BENCHMARK(noise<float>)->Apply(sizesAndThreads);
BENCHMARK(paraboloid<unsigned char>)->Apply(sizesAndThreads);
BENCHMARK(paraboloid<unsigned short>)->Apply(sizesAndThreads);
BENCHMARK(paraboloid<float>)->Apply(sizesAndThreads);

} // namespace

} // namespace orlix::bench
