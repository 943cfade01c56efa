#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImg.hpp>

namespace orlix::bench
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

#ifdef ORLIX_BENCH_OPENCV
/// What its users do; there is no median.
void runPeer(const cv::Mat& mat, eProjStatType statistic, int axis)
{
    cv::Mat result;
    if (statistic == eProjStatType::ePST_Max) {
        cv::reduce(mat, result, axis, cv::REDUCE_MAX);
    } else if (statistic == eProjStatType::ePST_Mean) {
        cv::reduce(mat, result, axis, cv::REDUCE_AVG, CV_64F);
    } else {
        cv::Mat numbers;
        cv::Mat squares;
        mat.convertTo(numbers, CV_64F);
        cv::reduce(numbers.mul(numbers), squares, axis, cv::REDUCE_AVG);
        cv::reduce(numbers, result, axis, cv::REDUCE_AVG);
        result = squares - result.mul(result);
        cv::sqrt(result, result);
    }
    benchmark::DoNotOptimize(result.data);
}
#endif

/// Reduces the rows (axis 0) or columns (axis 1) of a plan of the peer's with the same pixels.
template <class Measure>
void compareWithPeer(benchmark::State& state, const Ptr<const image::BaseImage>& image, eProjStatType statistic,
                     [[maybe_unused]] const image::ImageGeometry& plan, [[maybe_unused]] int axis, Measure measure)
{
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t bytes = image->getGeometry().nbPixels() * image->getPixelSize();
    const auto call = [&] { benchmark::DoNotOptimize(measure(image, statistic)); };
#ifdef ORLIX_BENCH_OPENCV
    cv::setNumThreads(static_cast<int>(core::settings::getNbThreads()));
    const auto type = image->getType();
    const bool hasPeer = statistic != eProjStatType::ePST_Median &&
                         (type == image::eImageBufferType::eIBT_UInt8 || type == image::eImageBufferType::eIBT_UInt16 ||
                          type == image::eImageBufferType::eIBT_Float32);
    const auto view = image::BaseImage::wrap(static_cast<const void*>(image->getRow(0)), type, plan, image);
    compare(
        state, image->getRow(0), bytes, call, [&] { runPeer(asMat(*view), statistic, axis); }, hasPeer);
#else
    compare(
        state, image->getRow(0), bytes, call, [] {}, false);
#endif
    core::settings::setNbThreads(0);
}

template <class T, eProjStatType Statistic>
void alongX(benchmark::State& state)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    compareWithPeer(state, image, Statistic, image->getGeometry(), 0, xProjection2d);
}

template <class T, eProjStatType Statistic>
void alongY(benchmark::State& state)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    compareWithPeer(state, image, Statistic, image->getGeometry(), 1, yProjection2d);
}

/// 128 planes. The peer's plan has a plane in each row.
template <class T, eProjStatType Statistic>
void alongZ(benchmark::State& state)
{
    const std::size_t pixels = static_cast<std::size_t>(state.range(0)) / sizeof(T) / 128;
    const std::size_t x = std::min<std::size_t>(pixels, 1024);
    const Ptr<const image::BaseImage> image =
        makeImage<T>({x, pixels / x, 128}, [generator = std::mt19937{1}]() mutable { return generator() >> 16; });
    compareWithPeer(state, image, Statistic, {pixels, 128}, 0,
                    [](const auto& volume, eProjStatType statistic) { return zProjectionImg(volume, statistic); });
}

#define ORLIX_BENCHMARKS(along, T)                                                                                     \
    BENCHMARK(along<T, eProjStatType::ePST_Mean>)->Apply(sizesAndThreads);                                             \
    BENCHMARK(along<T, eProjStatType::ePST_Max>)->Apply(sizesAndThreads);                                              \
    BENCHMARK(along<T, eProjStatType::ePST_StdDev>)->Apply(sizesAndThreads);                                           \
    BENCHMARK(along<T, eProjStatType::ePST_Median>)->Apply(sizesAndThreads)

ORLIX_BENCHMARKS(alongX, unsigned char);
ORLIX_BENCHMARKS(alongX, unsigned short);
ORLIX_BENCHMARKS(alongX, float);
ORLIX_BENCHMARKS(alongY, unsigned char);
ORLIX_BENCHMARKS(alongY, unsigned short);
ORLIX_BENCHMARKS(alongY, float);
ORLIX_BENCHMARKS(alongZ, unsigned char);
ORLIX_BENCHMARKS(alongZ, unsigned short);
ORLIX_BENCHMARKS(alongZ, float);

} // namespace

} // namespace orlix::bench
