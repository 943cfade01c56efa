#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2d.hpp>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace orlix::bench
{

using namespace imaproc::glbmsr;
using image::eImageBufferType;

namespace
{

/// Labels below 1000, each of which goes on for `length` pixels on average.
template <class T>
Ptr<const image::BaseImage> makeLabels(std::size_t bytes, unsigned length)
{
    return makeImage<T>(chooseSize(bytes, sizeof(T)), [generator = std::mt19937{1}, length, label = 0u]() mutable {
        label = generator() % length == 0 ? generator() % 1000 : label;
        return label;
    });
}

/// The peer is the plain loop over the pixels.
template <class T, unsigned Length>
void percent(benchmark::State& state)
{
    const auto image = makeLabels<T>(static_cast<std::size_t>(state.range(0)), Length);
    const std::size_t pixels = image->getGeometry().nbPixels();
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const auto count = [&] {
        std::vector<std::int64_t> counts(1000);
        const auto* const labels = reinterpret_cast<const T*>(image->getRow(0));
        for (std::size_t i = 0; i < pixels; ++i) {
            ++counts[labels[i]];
        }
        benchmark::DoNotOptimize(counts.data());
    };
    compare(
        state, image->getRow(0), pixels * sizeof(T), [&] { benchmark::DoNotOptimize(areaPercent2dMsr(image)); }, count,
        true);
    core::settings::setNbThreads(0);
}

template <unsigned PerMille>
void locate(benchmark::State& state)
{
    const auto bytes = makeImage<unsigned char>(chooseSize(static_cast<std::size_t>(state.range(0)), 1),
                                                [g = std::mt19937{1}]() mutable { return g() % 1000 < PerMille; });
    const auto image = image::BaseImage::wrap(static_cast<const void*>(bytes->getRow(0)), eImageBufferType::eIBT_Binary,
                                              bytes->getGeometry(), bytes);
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t pixels = image->getGeometry().nbPixels();
    const auto call = [&] { benchmark::DoNotOptimize(locatePixels2d(image)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(core::settings::getNbThreads()));
    const auto find = [&] {
        std::vector<cv::Point> points;
        cv::findNonZero(asMat(*bytes), points);
        benchmark::DoNotOptimize(points.data());
    };
    compare(state, image->getRow(0), pixels, call, find, true);
#else
    compare(
        state, image->getRow(0), pixels, call, [] {}, false);
#endif
    core::settings::setNbThreads(0);
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"bytes", "threads"})
        ->ArgsProduct({{256 << 10, 8 << 20, 64 << 20}, {1, 0}})
        ->Iterations(15)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK(percent<unsigned short, 50>)->Apply(sizes);
BENCHMARK(percent<unsigned short, 1>)->Apply(sizes);
BENCHMARK(percent<unsigned int, 50>)->Apply(sizes);
BENCHMARK(locate<10>)->Apply(sizes);
BENCHMARK(locate<500>)->Apply(sizes);

} // namespace

} // namespace orlix::bench
