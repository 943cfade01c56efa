#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace orlix::test
{

enum class MaskPattern
{
    Full,
    Empty,
    OnePixel,
    Half,
    Runs
};

inline constexpr MaskPattern allMaskPatterns[] = {MaskPattern::Full, MaskPattern::Empty, MaskPattern::OnePixel,
                                                  MaskPattern::Half, MaskPattern::Runs};

/// A mask whose set pixels have any value but 0.
inline std::vector<std::uint8_t> makeMask(MaskPattern pattern, std::size_t size)
{
    std::mt19937 generator{static_cast<unsigned>(size)};
    std::vector<std::uint8_t> mask(size, 0);
    for (std::size_t i = 0; i < size; ++i) {
        const bool set = pattern == MaskPattern::Full || (pattern == MaskPattern::OnePixel && i == size / 2) ||
                         (pattern == MaskPattern::Half && generator() % 2 == 0) ||
                         (pattern == MaskPattern::Runs && i / 37 % 3 == 1);
        mask[i] = set ? static_cast<std::uint8_t>(1 + generator() % 255) : 0;
    }
    return mask;
}

/// The values whose mask byte is not 0.
template <class T>
std::vector<T> select(const std::vector<T>& values, const std::vector<std::uint8_t>& mask)
{
    std::vector<T> selected;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (mask[i] != 0) {
            selected.push_back(values[i]);
        }
    }
    return selected;
}

} // namespace orlix::test
