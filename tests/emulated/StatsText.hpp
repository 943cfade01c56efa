#pragma once

#include <support/EmulatedAvx512.hpp>
#include <support/Masks.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsKernels.inl"

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace // each file has a text of its own
{

/// Whether the AVX-512 text leaves the same moments, to the bit, as the text of another domain.
template <Domain::domain D, class R>
void expectSameMoments(const R& run)
{
    Moments here{};
    Moments there{};
    here.min = there.min = highest<double>;
    here.max = there.max = lowest<double>;
    accumulate<R, Domain::eIS_AVX512>(run, here);
    accumulate<R, D>(run, there);
    EXPECT_EQ(here.min, there.min);
    EXPECT_EQ(here.max, there.max);
    EXPECT_EQ(here.selected, there.selected);
    EXPECT_TRUE(here.sum == there.sum && here.sumSq == there.sumSq);
    EXPECT_EQ(std::memcmp(here.laneSums, there.laneSums, sizeof here.laneSums), 0);
    EXPECT_EQ(std::memcmp(here.laneSquares, there.laneSquares, sizeof here.laneSquares), 0);
}

/// Runs of every short length, and long ones of extreme pixels, with every kind of mask.
template <class T>
void compareStatsText()
{
    // A float goes to one of 16 lanes in the text of every vector domain.
    constexpr auto other = std::is_same_v<T, float> ? Domain::eIS_SSE2 : Domain::eIS_Generic;
    std::vector<std::vector<T>> images;
    for (std::size_t size = 1; size <= 3 * 64 / sizeof(T) + 1; ++size) {
        images.push_back(randomValues<T>(size));
    }
    images.push_back(randomValues<T>(5003, 7));
    if constexpr (std::is_integral_v<T>) {
        images.emplace_back(8192 * 64 / sizeof(T) + 65, highest<T>);
        images.emplace_back(8192 * 64 / sizeof(T) + 65, lowest<T>);
    }
    for (const auto& values : images) {
        SCOPED_TRACE(values.size());
        expectSameMoments<other>(Run<T>{values.data(), values.size()});
        for (const MaskPattern pattern : allMaskPatterns) {
            const auto mask = makeMask(pattern, values.size());
            expectSameMoments<other>(MaskedRun<T>{values.data(), values.size(), mask.data()});
        }
    }
}

} // namespace

} // namespace orlix::test
