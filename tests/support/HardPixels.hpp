#pragma once

#include <support/TestImages.hpp>

#include <string>

namespace orlix::test
{

template <class T>
struct HardPixels
{
    std::string name;
    std::vector<T> pixels;
};

/// Pixels that sums in doubles get wrong: of integers the extremes, of floats what the literature on sums is made of.
template <class T>
std::vector<HardPixels<T>> makeHardPixels(std::size_t size)
{
    std::vector<HardPixels<T>> images;
    const auto add = [&](const char* name, auto pixelOf) {
        std::vector<T> pixels(size);
        for (std::size_t i = 0; i < size; ++i) {
            pixels[i] = static_cast<T>(pixelOf(i));
        }
        images.push_back({name, std::move(pixels)});
    };
    images.push_back({"random", randomValues<T>(size)});
    if constexpr (std::is_integral_v<T>) {
        add("highest", [](std::size_t) { return highest<T>; });
        add("lowest", [](std::size_t) { return lowest<T>; });
        add("few", [](std::size_t i) { return i % 7; });
    } else {
        std::mt19937_64 random{3};
        const auto power = [&](int from, int to) {
            const double digits = 1 + static_cast<double>(random() % (1 << 23)) / (1 << 23);
            const int range = static_cast<int>(random() % static_cast<unsigned>(to - from));
            return std::ldexp(random() % 2 == 0 ? digits : -digits, from + range);
        };
        add("constant", [](std::size_t) { return 0.1f; });
        add("far from zero", [&](std::size_t) { return 1e6 + static_cast<double>(random() % 1000) / 1000; });
        add("cancelling", [](std::size_t i) { return i % 3 == 0 ? 3e38 : i % 3 == 1 ? -3e38 : 1e-30; });
        add("subnormal", [&](std::size_t) { return std::ldexp(static_cast<double>(random() % 64) - 32, -149); });
        add("all magnitudes", [&](std::size_t) { return power(-149, 127); });
        add("at the edge of what is summed at once", [&](std::size_t) { return power(-20, 2); });
        add("sparse", [&](std::size_t i) { return i % 97 == 0 ? power(-60, 60) : 0.0; });
        add("both zeros", [](std::size_t i) { return i % 2 == 0 ? -0.f : 0.f; });
    }
    return images;
}

} // namespace orlix::test
