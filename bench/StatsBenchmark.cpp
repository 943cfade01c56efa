#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

namespace orlix::bench
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

#ifdef ORLIX_BENCH_OPENCV
void runPeer(const image::BaseImage& image, const cv::Mat& mask = {})
{
    const cv::Mat mat = asMat(image);
    cv::Scalar mean;
    cv::Scalar deviation;
    double least = 0;
    double most = 0;
    cv::meanStdDev(mat, mean, deviation, mask);
    cv::minMaxLoc(mat, &least, &most, nullptr, nullptr, mask);
    benchmark::DoNotOptimize(mean);
    benchmark::DoNotOptimize(most);
}
#endif

template <class T>
void statistics(benchmark::State& state)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
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

/// Half of the pixels count. The read is that of the image and its mask.
template <class T>
void maskedStatistics(benchmark::State& state)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    const image::ImageGeometry& size = image->getGeometry();
    const Ptr<const image::BaseImage> mask =
        makeImage<unsigned char>(size, [generator = std::mt19937{2}]() mutable { return generator() % 2; });
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t bytes = size.nbPixels() * (sizeof(T) + 1);
    const std::vector<std::byte> both(bytes);
    const auto measure = [&] { benchmark::DoNotOptimize(statsMaskMsr(image, mask)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(core::settings::getNbThreads()));
    compare(
        state, both.data(), bytes, measure, [&] { runPeer(*image, asMat(*mask)); }, peerType(image->getType()) >= 0);
#else
    compare(
        state, both.data(), bytes, measure, [] {}, false);
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

BENCHMARK_TEMPLATE(statistics, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, signed char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, unsigned int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(statistics, float)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(maskedStatistics, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(maskedStatistics, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(maskedStatistics, float)->Apply(sizesAndThreads);
BENCHMARK(smallImage)->Arg(64)->Arg(512);
BENCHMARK(manyPlans)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace orlix::bench
