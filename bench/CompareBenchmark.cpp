#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIX/Measures/Compare.hpp>

namespace orlix::bench
{

namespace
{

/// Two images that differ by their place, timed with the options of `change`.
template <class T, class Change>
void comparePair(benchmark::State& state, Change change)
{
    const auto bytes = static_cast<std::size_t>(state.range(0));
    const auto image = makeNoise<T>(bytes);
    const auto larger = makeNoise<T>(bytes + bytes / image->getGeometry().y);
    const Ptr<const image::BaseImage> image2 =
        image::BaseImage::wrap(larger->getRow(1), image->getType(), image->getGeometry(), larger);
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    measures::CompareOptions options{.peak = 255, .bins = 0, .ssim = false};
    change(options);
    const std::size_t size = image->getGeometry().nbPixels() * sizeof(T);
    compare(
        state, image->getRow(0), size, [&] { benchmark::DoNotOptimize(measures::compare(image, image2, options)); },
        [] {}, false);
    state.counters["Gpx/s"] = state.counters["GB/s"] / sizeof(T);
    core::settings::setNbThreads(0);
}

template <class T>
void comparison(benchmark::State& state)
{
    comparePair<T>(state, [](measures::CompareOptions&) {});
}
template <class T>
void structuralSimilarity(benchmark::State& state)
{
    comparePair<T>(state, [](measures::CompareOptions& options) { options.ssim = true; });
}
template <class T>
void mutualInformation(benchmark::State& state)
{
    comparePair<T>(state, [](measures::CompareOptions& options) { options.bins = 256; });
}

BENCHMARK_TEMPLATE(comparison, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(comparison, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(comparison, float)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(structuralSimilarity, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(structuralSimilarity, float)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(mutualInformation, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(mutualInformation, float)->Apply(sizesAndThreads);

} // namespace

} // namespace orlix::bench
