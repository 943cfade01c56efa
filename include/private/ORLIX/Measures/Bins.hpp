#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace orlix::measures
{

/// Bins of equal width from the lowest to the highest pixel; each has its lower bound, the last one both.
class Bins
{
public:
    Bins(double lowest, double highest, unsigned size) : edges_(size + 1)
    {
        if (lowest == highest) {
            lowest -= 0.5;
            highest += 0.5;
        }
        const double step = (highest - lowest) / size;
        for (unsigned i = 0; i < size; ++i) {
            edges_[i] = i * step + lowest;
        }
        edges_[size] = highest;
        perPixel_ = step > 0 ? 1 / step : 0;
    }

    std::uint32_t find(double pixel) const
    {
        const auto last = static_cast<std::uint32_t>(edges_.size() - 2);
        const double guess = (pixel - edges_[0]) * perPixel_;
        std::uint32_t bin = guess < last ? static_cast<std::uint32_t>(std::max(0.0, guess)) : last;
        while (bin != 0 && pixel < edges_[bin]) {
            --bin;
        }
        while (bin != last && pixel >= edges_[bin + 1]) {
            ++bin;
        }
        return bin;
    }

    double getLowest(std::uint32_t bin) const { return edges_[bin]; }
    double getCentre(std::uint32_t bin) const { return (edges_[bin] + edges_[bin + 1]) / 2; }

private:
    std::vector<double> edges_;
    double perPixel_;
};

} // namespace orlix::measures
