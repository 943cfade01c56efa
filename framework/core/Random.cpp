#include <framework/core/Random.hpp>

#include <random>

namespace orlix::core::random
{

namespace
{

struct Generator
{
    std::mutex mutex;
    std::mt19937 twister{defaultSeed};
};

Generator& generator()
{
    static Generator it;
    return it;
}

} // namespace

void setSeed(std::uint32_t seed)
{
    const std::lock_guard lock{generator().mutex};
    generator().twister.seed(seed);
}

Draw::Draw() : lock_{generator().mutex} {}

std::uint32_t Draw::operator()(std::uint32_t size)
{
    // The standard's distributions differ between libraries. D. Lemire, Fast random integer generation in an interval,
    // 2019: the high half of a product, drawn again where the low half would favour some numbers.
    std::mt19937& twister = generator().twister;
    std::uint64_t product = std::uint64_t{size} * twister();
    if (static_cast<std::uint32_t>(product) < size) {
        const std::uint32_t favoured = (0u - size) % size;
        while (static_cast<std::uint32_t>(product) < favoured) {
            product = std::uint64_t{size} * twister();
        }
    }
    return static_cast<std::uint32_t>(product >> 32);
}

} // namespace orlix::core::random
