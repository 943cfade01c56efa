#include <support/Images.hpp>
#include <support/Rounds.hpp>

#include <ORLIX/Measures/Regions.hpp>

#include <cmath>

namespace orlix::bench
{

namespace
{

/// Labels of cells, about 40 pixels wide, whose borders run in waves; 10,000 in 4096 x 4096 pixels.
Ptr<const image::BaseImage> makeCells(const image::ImageGeometry& size)
{
    constexpr double width = 40.96;
    const auto image = image::BaseImage::create(image::eImageBufferType::eIBT_UInt16, size);
    for (std::size_t y = 0; y < size.y; ++y) {
        auto* const row = reinterpret_cast<std::uint16_t*>(image->getRow(y));
        const auto cell = [&](std::size_t at, std::size_t across) {
            const double wave = 6 * std::sin(static_cast<double>(across) / 7);
            return static_cast<unsigned>(std::max(0.0, static_cast<double>(at) + wave) / width);
        };
        for (std::size_t x = 0; x < size.x; ++x) {
            row[x] = static_cast<std::uint16_t>(1 + cell(y, x) % 100 * 100 + cell(x, y) % 100);
        }
    }
    return image;
}

template <class T>
void tableOfRegions(benchmark::State& state)
{
    const auto image = makeNoise<T>(static_cast<std::size_t>(state.range(0)));
    const std::size_t size = image->getGeometry().nbPixels() * sizeof(T);
    const auto labels = makeCells(image->getGeometry());
    core::settings::setNbThreads(static_cast<unsigned>(state.range(1)));
    compare(
        state, image->getRow(0), size, [&] { benchmark::DoNotOptimize(measures::regions(labels, {ImageView{image}})); },
        [] {}, false);
    state.counters["Gpx/s"] = state.counters["GB/s"] / sizeof(T);
    core::settings::setNbThreads(0);
}

BENCHMARK_TEMPLATE(tableOfRegions, unsigned char)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(tableOfRegions, unsigned short)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(tableOfRegions, int)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(tableOfRegions, float)->Apply(sizesAndThreads);

} // namespace

} // namespace orlix::bench
