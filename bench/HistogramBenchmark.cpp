#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsr.hpp>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace orlix::bench
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

/// Intensities around the middle of the range, as a camera gives them.
template <class T>
Ptr<const image::BaseImage> makeIntensities(std::size_t bytes)
{
    const double middle = sizeof(T) == 1 ? 128 : 32768;
    return makeImage<T>(chooseSize(bytes, sizeof(T)),
                        [generator = std::mt19937{1}, noise = std::normal_distribution<double>{middle, middle / 4},
                         middle]() mutable { return std::clamp(noise(generator), 0., 2 * middle - 1); });
}

#ifdef ORLIX_BENCH_OPENCV
/// The range, and a histogram of 256 bins of it.
void runPeer(const image::BaseImage& image)
{
    const cv::Mat mat = asMat(image);
    double least = 0;
    double most = 0;
    cv::minMaxLoc(mat, &least, &most);
    const int classes = 256;
    const int channel = 0;
    const float range[] = {static_cast<float>(least), static_cast<float>(most) + 1};
    const float* ranges[] = {range};
    cv::Mat histogram;
    cv::calcHist(&mat, 1, &channel, cv::Mat{}, histogram, 1, &classes, ranges);
    benchmark::DoNotOptimize(histogram.data);
}
#endif

template <class Measure>
void compareWithPeer(benchmark::State& state, const Ptr<const image::BaseImage>& image, Measure measure)
{
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t pixels = image->getGeometry().nbPixels();
    const std::size_t bytes = pixels * image->getPixelSize();
    const auto call = [&] { benchmark::DoNotOptimize(measure(image)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(core::settings::getNbThreads()));
    const auto type = image->getType();
    const bool hasPeer = type == image::eImageBufferType::eIBT_UInt8 || type == image::eImageBufferType::eIBT_UInt16 ||
                         type == image::eImageBufferType::eIBT_Float32;
    compare(
        state, image->getRow(0), bytes, call, [&] { runPeer(*image); }, hasPeer);
#else
    compare(
        state, image->getRow(0), bytes, call, [] {}, false);
#endif
    state.counters["Mpx/s"] = state.counters["GB/s"] * 1e3 / static_cast<double>(image->getPixelSize());
    core::settings::setNbThreads(0);
}

/// 256 bins of the image's own range, which is found first.
template <class T>
void histogram(benchmark::State& state)
{
    compareWithPeer(state, makeIntensities<T>(static_cast<std::size_t>(state.range(0))),
                    [](const auto& image) { return histogramMsr(image); });
}

/// Up to 65536 bins; the peer has 256 and takes no logarithm.
template <class T>
void entropy(benchmark::State& state)
{
    compareWithPeer(state, makeIntensities<T>(static_cast<std::size_t>(state.range(0))),
                    [](const auto& image) { return globalEntropyMsr2d(image); });
}

/// A volume of so many labels, in runs of up to 120 pixels or, where `longest` is 1, at random.
template <class T>
void labels(benchmark::State& state)
{
    const image::ImageGeometry size{1024, 1024, static_cast<std::size_t>(state.range(0))};
    const auto longest = static_cast<unsigned>(state.range(2));
    const auto nbLabels = sizeof(T) == 2 ? 60000u : 200000u;
    const auto image =
        makeImage<T>(size, [generator = std::mt19937{3}, longest, nbLabels, label = 0u, left = 0u]() mutable {
            if (left == 0) {
                label = longest == 1 || generator() % 2 == 0 ? generator() % nbLabels : 0;
                left = longest == 1 ? 1 : 20 + generator() % (longest - 20);
            }
            --left;
            return label;
        });
    compareWithPeer(state, image, [](const auto& volume) { return counting3dMsr(volume); });
}

BENCHMARK_TEMPLATE(histogram, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(histogram, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(histogram, short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(histogram, unsigned int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(histogram, float)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(entropy, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(entropy, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(entropy, float)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(labels, unsigned short)
    ->ArgNames({"planes", "threads", "longest"})
    ->ArgsProduct({{4, 256}, {1, 0}, {120, 1}})
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(labels, unsigned int)
    ->ArgNames({"planes", "threads", "longest"})
    ->ArgsProduct({{4, 256}, {1, 0}, {120, 1}})
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace orlix::bench
