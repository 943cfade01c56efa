#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIX/Measures/Describe.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>

namespace orlix::bench
{

namespace
{

/// The peer is our own statistics, which are not exact: x_peer is what exactness costs.
template <class T>
void description(benchmark::State& state)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t size = image->getGeometry().nbPixels() * sizeof(T);
    compare(
        state, image->getRow(0), size,
        [&] {
            benchmark::DoNotOptimize(measures::describe(
                image, {.percentiles = {}, .saturated = false, .entropy = measures::EntropyPolicy::Never}));
        },
        [&] { benchmark::DoNotOptimize(imaproc::glbmsr::statsMsr(image)); }, true);
    core::settings::setNbThreads(0);
}

/// Noise about a level, as of a camera; of 8 and 32 bits any pixel.
template <class T>
Ptr<const image::BaseImage> makePhoto(std::size_t bytes)
{
    if (sizeof(T) != 2 && !std::is_same_v<T, float>) {
        return makeNoise<T>(bytes);
    }
    const double level = sizeof(T) == 2 ? 2000 : 100;
    return makeImage<T>(chooseSize(bytes, sizeof(T)),
                        [generator = std::mt19937{1}, noise = std::normal_distribution{level, level / 7}]() mutable {
                            return noise(generator);
                        });
}

/// With the median, six percentiles and, of integers of 8 and 16 bits, the entropy.
template <class T>
void percentiles(benchmark::State& state)
{
    const auto image = makePhoto<T>(static_cast<std::size_t>(state.range(0)));
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    const std::size_t size = image->getGeometry().nbPixels() * sizeof(T);
    compare(
        state, image->getRow(0), size, [&] { benchmark::DoNotOptimize(measures::describe(image)); }, [] {}, false);
    core::settings::setNbThreads(0);
}

BENCHMARK_TEMPLATE(description, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(description, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(description, unsigned int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(description, int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(description, float)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(percentiles, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(percentiles, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(percentiles, unsigned int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(percentiles, float)->Apply(sizesAndThreads);

} // namespace

} // namespace orlix::bench
