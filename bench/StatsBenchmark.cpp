#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

#include <cstring>
#include <random>
#include <string>

namespace orlix::bench
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

/// A square image of about `bytes`, or of 4096 columns where that is large.
template <class T>
Ptr<const image::BaseImage> makeImage(std::size_t bytes)
{
    std::size_t x = 512;
    while (x < 4096 && x * x * sizeof(T) * 2 <= bytes) {
        x *= 2;
    }
    const image::ImageGeometry size{x, bytes / sizeof(T) / x};
    const auto image = image::BaseImage::create(image::imageBufferTypeOf<T>, size);
    std::mt19937 generator{1};
    std::vector<T> row(size.x);
    for (T& pixel : row) {
        pixel = static_cast<T>(generator());
    }
    for (std::size_t y = 0; y < size.y; ++y) {
        std::memcpy(image->getRow(y), row.data(), row.size() * sizeof(T));
    }
    return image;
}

#ifdef ORLIX_BENCH_OPENCV
constexpr int peerType(image::eImageBufferType type)
{
    constexpr int types[] = {CV_8U, CV_8S, CV_16U, CV_16S, -1, CV_32S, CV_32F}; // it has no unsigned 32-bit
    return types[static_cast<std::size_t>(type)];
}

void runPeer(const image::BaseImage& image)
{
    const cv::Mat mat(static_cast<int>(image.getGeometry().y), static_cast<int>(image.getGeometry().x),
                      peerType(image.getType()), const_cast<std::byte*>(image.getRow(0)));
    cv::Scalar mean;
    cv::Scalar deviation;
    double least = 0;
    double most = 0;
    cv::meanStdDev(mat, mean, deviation);
    cv::minMaxLoc(mat, &least, &most);
    benchmark::DoNotOptimize(mean);
    benchmark::DoNotOptimize(most);
}
#endif

template <class T>
void statistics(benchmark::State& state)
{
    const auto image = makeImage<T>(static_cast<std::size_t>(state.range(0)));
    const auto threads = static_cast<unsigned>(state.range(1));
    core::settings::setNbThreads(threads);
    const std::size_t size = image->getGeometry().nbPixels() * sizeof(T);
    const auto measure = [&] { benchmark::DoNotOptimize(statsMsr(image)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(threads != 0 ? threads : core::settings::getNbThreads()));
    compare(
        state, image->getRow(0), size, measure, [&] { runPeer(*image); }, peerType(image->getType()) >= 0);
#else
    compare(
        state, image->getRow(0), size, measure, [] {}, false);
#endif
    core::settings::setNbThreads(0);
}

/// One call on a small image, as a user makes it.
void smallImage(benchmark::State& state)
{
    const auto side = static_cast<std::size_t>(state.range(0));
    const Ptr<const image::BaseImage> image =
        image::BaseImage::create(image::eImageBufferType::eIBT_UInt8, {side, side});
    for (auto _ : state) {
        benchmark::DoNotOptimize(statsMsr2d(image));
    }
}

void manyPlans(benchmark::State& state)
{
    const Ptr<const image::BaseImage> image =
        image::BaseImage::create(image::eImageBufferType::eIBT_UInt8, {64, 64, 10000});
    core::settings::setNbThreads(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(multiSlice_statsMsr2d(image));
    }
    core::settings::setNbThreads(0);
    state.counters["per_plan"] =
        benchmark::Counter(10000, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// Buffer sizes that fit the L2 cache, the L3 cache and neither; one thread and all.
void sizesAndThreads(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"bytes", "threads"})
        ->ArgsProduct({{256 << 10, 8 << 20, 512 << 20}, {1, 0}})
        ->Iterations(15)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK_TEMPLATE(statistics, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, signed char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, unsigned int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, float)->Apply(sizesAndThreads);
BENCHMARK(smallImage)->Arg(64)->Arg(512);
BENCHMARK(manyPlans)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace orlix::bench
