#include <support/Masks.hpp>
#include <support/PixelTypes.hpp>
#include <support/ReferenceStats.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

#include <bit>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

bool hasKernel(core::eInstructionSet::domain set)
{
    return core::isAvailable(set) && set != core::eInstructionSet::eIS_AVX;
}

template <class T>
StatsResult runMasked(core::eInstructionSet::domain set, const std::vector<T>& values,
                      const std::vector<std::uint8_t>& mask)
{
    const ForcedSet forced{set};
    const ImageGeometry shape{values.size(), 1};
    auto strip = makePtr<StatsMaskMsr2dLvl3>();
    EXPECT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    strip->set<InYStrip2d>({makeImage(shape, values), 0, 1});
    strip->set<InMaskYStrip2d>({makeImage(shape, mask), 0, 1});
    executeSyncRun(strip);
    return *strip->getStorage<OutStatsResult>();
}

template <class T>
StatsResult runUnmasked(core::eInstructionSet::domain set, const std::vector<T>& values)
{
    const ForcedSet forced{set};
    auto strip = makePtr<StatsMsr2dLvl3>();
    EXPECT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    strip->set<InYStrip2d>({makeImage({values.size(), 1}, values), 0, 1});
    executeSyncRun(strip);
    return *strip->getStorage<OutStatsResult>();
}

void expectNothing(const StatsResult& result)
{
    EXPECT_EQ(result.NbPixels, 0u);
    EXPECT_EQ(result.Sum, 0);
    EXPECT_EQ(result.Mean, 0); // 0 in a strip; a merge of nothing gives NaN
    EXPECT_EQ(result.StdDev, 0);
    EXPECT_EQ(result.Min, highest<double>);
    EXPECT_EQ(result.Max, lowest<double>);
}

bool sameBits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

} // namespace

template <class T>
class StatsMaskKernel : public testing::Test
{
};
TYPED_TEST_SUITE(StatsMaskKernel, PixelTypes);

// The pixels under the mask count, and no others: at every short length, and where lanes would overflow.
TYPED_TEST(StatsMaskKernel, CountsWhatTheMaskSelects)
{
    using T = TypeParam;
    std::vector<std::vector<T>> images;
    for (std::size_t size = 1; size <= 3 * 64 / sizeof(T) + 1; ++size) {
        images.push_back(randomValues<T>(size));
    }
    images.push_back(randomValues<T>(100003, 7));
    if constexpr (std::is_integral_v<T>) {
        images.emplace_back(8192 * 64 / sizeof(T) * 2 + 1, highest<T>);
    }
    for (const auto& values : images) {
        for (const MaskPattern pattern : allMaskPatterns) {
            const auto mask = makeMask(pattern, values.size());
            const auto selected = select(values, mask);
            for (const auto set : allSets) {
                if (!hasKernel(set)) {
                    continue;
                }
                SCOPED_TRACE(std::string{core::getName(set)} + ", length " + std::to_string(values.size()) +
                             ", pattern " + std::to_string(static_cast<int>(pattern)));
                const StatsResult result = runMasked(set, values, mask);
                if (selected.empty()) {
                    expectNothing(result);
                } else {
                    expectReference(result, selected);
                }
                if (pattern == MaskPattern::Full) {
                    const StatsResult unmasked = runUnmasked(set, values);
                    EXPECT_TRUE(sameBits(result.Sum, unmasked.Sum) && sameBits(result.StdDev, unmasked.StdDev));
                }
            }
        }
    }
}

// A NaN counts under the mask alone, where it stays until the next number under the mask replaces it; so does an
// infinity.
TEST(StatsMaskKernelFloat, NaNAndInfinities)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    for (const auto set : allSets) {
        if (!hasKernel(set)) {
            continue;
        }
        SCOPED_TRACE(core::getName(set));
        for (const std::size_t size : {7, 100}) {
            std::vector<float> values(size, 5);
            std::vector<std::uint8_t> mask(size, 1);
            values[2] = nan;
            values[3] = -inf;
            mask[2] = mask[3] = 0;
            StatsResult result = runMasked(set, values, mask);
            EXPECT_EQ(result.Min, 5);
            EXPECT_EQ(result.Sum, 5 * static_cast<double>(size - 2));

            mask[2] = 1;
            values[0] = -9;
            result = runMasked(set, values, mask);
            EXPECT_EQ(result.Min, 5);
            EXPECT_TRUE(std::isnan(result.Sum));

            // Nothing after the NaN is under the mask.
            std::fill(mask.begin() + 3, mask.end(), std::uint8_t{0});
            result = runMasked(set, values, mask);
            EXPECT_TRUE(std::isnan(result.Min) && std::isnan(result.Max));

            values.assign(size, inf);
            mask.assign(size, 1);
            result = runMasked(set, values, mask);
            EXPECT_EQ(result.Min, highest<double>);
            EXPECT_EQ(result.Max, inf);
        }
    }
}

} // namespace orlix::test
