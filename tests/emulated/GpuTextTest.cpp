#include <support/EmulatedGpu.hpp>
#include <support/PixelTypes.hpp>
#include <support/ReferenceStats.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsGpu.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/StatsGpu.cu"

namespace orlix::imaproc::glbmsr::device
{
CudaStatsRecord shared[40]; ///< the shared memory of the block that runs
} // namespace orlix::imaproc::glbmsr::device

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using emulated::Runtime;
using emulated::runtime;

namespace
{

/// What the measure would say of the figures of these pixels.
template <class T>
void expectFigures(CudaStatsInfo stats, const std::vector<T>& values)
{
    StatsResult result;
    stats.nbPixels = values.size();
    setResult(stats, result);
    const ReferenceStats expected = referenceStats(values);
    const auto n = static_cast<double>(values.size());
    EXPECT_EQ(result.NbPixels, values.size());
    EXPECT_EQ(result.Min, expected.min);
    EXPECT_EQ(result.Max, expected.max);
    EXPECT_NEAR(result.Sum, static_cast<double>(expected.sum),
                std::is_integral_v<T> ? 0 : 1e-14 * static_cast<double>(expected.sumAbs));
    EXPECT_EQ(result.Mean, result.Sum / n);
    // Rounding may make the variance of equal pixels negative, and the deviation NaN.
    EXPECT_NEAR(std::isnan(result.StdDev) ? 0 : result.StdDev * result.StdDev, static_cast<double>(expected.variance()),
                1e-14 * static_cast<double>(expected.sumSq) / n);
}

constexpr std::int32_t blocks = 3;
constexpr std::int32_t threads = 40; // no power of two, no whole warps

LauncherInfo infoOf(const ImageGeometry& size)
{
    return {blocks, threads, threads, 8, 0, size.x, size.y, size.z, size.c, size.t};
}

template <class T>
class EmulatedGpu : public testing::Test
{
};
TYPED_TEST_SUITE(EmulatedGpu, PixelTypes);

} // namespace

// Few and many rows, narrower and wider than the loads, with gaps and without, forward and backward, at any alignment.
TYPED_TEST(EmulatedGpu, ReadsEveryPixelOnce)
{
    using T = TypeParam;
    for (const ImageGeometry& size : {ImageGeometry{1, 1}, {5, 1}, {37, 3}, {130, 2, 3}, {3, 50, 3}, {20011, 2}}) {
        for (const auto& [gaps, reverse] : {std::pair{false, false}, {true, false}, {true, true}}) {
            SCOPED_TRACE(testing::Message() << toString(size) << " gaps " << gaps << " reverse " << reverse);
            const auto values = randomValues<T>(size.nbPixels());
            const auto image = makeStrided(size, values, gaps, reverse, reverse);
            const GpuBuffer buffer{image->getRow(0), image->getStrides().y, image->getStrides().z};
            LauncherInfo info = infoOf(size);
            CudaStatsInfo volume;
            ASSERT_TRUE(StatsMsr3d_knlLauncher<T>(&info, buffer, &volume).success);
            expectFigures(volume, values);
            info.z = 1;
            CudaStatsInfo plan;
            ASSERT_TRUE(StatsMsr2d_knlLauncher<T>(&info, buffer, &plan).success);
            const std::vector<T> first{values.begin(), values.begin() + static_cast<std::ptrdiff_t>(size.x * size.y)};
            expectFigures(plan, first);
        }
    }
    EXPECT_TRUE(runtime.allocations.empty());
}

// So many pixels of the highest value that a thread's small sums must be emptied in time.
TYPED_TEST(EmulatedGpu, DoesNotOverflow)
{
    using T = TypeParam;
    const std::vector<T> values(8'000'000 / sizeof(T), std::is_integral_v<T> ? highest<T> : T{1});
    const GpuBuffer buffer{values.data(), 0, 0};
    LauncherInfo info = infoOf({values.size(), 1});
    CudaStatsInfo stats;
    ASSERT_TRUE(StatsMsr2d_knlLauncher<T>(&info, buffer, &stats).success);
    expectFigures(stats, values);
}

TEST(EmulatedGpuFloats, NoNumberIsNoExtreme)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr double highestDouble = std::numeric_limits<double>::max();
    struct Case
    {
        std::vector<float> values;
        double sum;
        double min;
        double max;
    };
    // Minima begin with the highest finite number, maxima with the lowest.
    for (const Case& c : {Case{{nan, 2, -1}, nan, -1, 2},
                          {{nan}, nan, highestDouble, -highestDouble},
                          {{infinity}, infinity, highestDouble, infinity},
                          {{-infinity, 3}, -infinity, -infinity, 3}}) {
        LauncherInfo info = infoOf({c.values.size(), 1});
        CudaStatsInfo stats;
        ASSERT_TRUE(StatsMsr2d_knlLauncher<float>(&info, {c.values.data(), 0, 0}, &stats).success);
        EXPECT_TRUE(stats.sum == c.sum || (std::isnan(stats.sum) && std::isnan(c.sum))) << stats.sum;
        EXPECT_EQ(stats.min, c.min);
        EXPECT_EQ(stats.max, c.max);
    }
}

// Whichever call of the runtime fails, its text comes out, the figures stay, and nothing leaks or fails later.
TEST(EmulatedGpuFailure, CarriesTheTextOfTheRuntime)
{
    const auto image = makeImage<short>({3, 1}, {1, -5, 2});
    const GpuBuffer buffer{image->getRow(0), 6, 6};
    LauncherInfo info = infoOf(image->getGeometry());
    struct Case
    {
        Runtime::Call failing;
        const char* text;
    };
    for (const Case& c : {Case{Runtime::Call::Malloc, "out of memory"},
                          {Runtime::Call::Launch, "unspecified launch failure"},
                          {Runtime::Call::Synchronize, "unknown error"},
                          {Runtime::Call::Memcpy, "unknown error"}}) {
        CudaStatsInfo stats;
        runtime.failing = c.failing;
        const CudaResult failed = StatsMsr2d_knlLauncher<short>(&info, buffer, &stats);
        runtime.failing = Runtime::Call::None;
        EXPECT_FALSE(failed.success);
        EXPECT_EQ(failed.message, c.text);
        EXPECT_EQ(stats.sum, 0);
        EXPECT_TRUE(runtime.allocations.empty());
        EXPECT_EQ(runtime.last, cudaSuccess);
    }
    runtime.last = cudaErrorUnknown; // an error of somebody else's call before
    CudaStatsInfo stats;
    EXPECT_TRUE(StatsMsr2d_knlLauncher<short>(&info, buffer, &stats).success);
    EXPECT_EQ(stats.sum, -2);
}

} // namespace orlix::test
