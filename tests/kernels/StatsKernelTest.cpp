#include <support/PixelTypes.hpp>
#include <support/ReferenceStats.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

#include <gtest/gtest.h>

#include <bit>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

/// The kernel of a set, run by the level 3 processor on one run of pixels that starts `offset` pixels into its buffer.
template <class T>
StatsResult runKernel(core::eInstructionSet::domain set, const std::vector<T>& values, std::size_t offset = 0)
{
    const ForcedSet forced{set};
    auto buffer = makePtr<std::vector<T>>(offset);
    buffer->insert(buffer->end(), values.begin(), values.end());
    const auto image = BaseImage::wrap(static_cast<const void*>(buffer->data() + offset), image::imageBufferTypeOf<T>,
                                       {values.size(), 1}, buffer);
    auto strip = makePtr<StatsMsr2dLvl3>();
    EXPECT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    strip->set<InYStrip2d>({image, 0, 1});
    executeSyncRun(strip);
    return *strip->getStorage<OutStatsResult>();
}

template <class T>
bool hasKernel(core::eInstructionSet::domain set)
{
    return core::isAvailable(set) && (set != core::eInstructionSet::eIS_AVX || std::is_same_v<T, float>);
}

} // namespace

template <class T>
class StatsKernel : public testing::Test
{
};
TYPED_TEST_SUITE(StatsKernel, PixelTypes);

// From nothing to three of the widest registers and one more, at offsets that no register is aligned to.
TYPED_TEST(StatsKernel, EveryShortLength)
{
    using T = TypeParam;
    const auto values = randomValues<T>(3 * 64 / sizeof(T) + 1);
    for (const auto set : allSets) {
        for (std::size_t size = 1; hasKernel<T>(set) && size <= values.size(); ++size) {
            SCOPED_TRACE(std::string{core::getName(set)} + ", length " + std::to_string(size));
            const std::vector<T> part{values.end() - static_cast<std::ptrdiff_t>(size), values.end()};
            expectReference(runKernel(set, part, size % 5), part);
        }
    }
}

// All-extreme pixels overflow any lane that is too narrow; lengths around the blocks find a lane that is kept too long.
TYPED_TEST(StatsKernel, ExtremesAroundTheBlocks)
{
    using T = TypeParam;
    for (const auto set : allSets) {
        if (!hasKernel<T>(set)) {
            continue;
        }
        for (const std::size_t register_ : {16, 32, 64}) {
            for (const std::size_t block : {255, 4096, 8192, 16384}) {
                for (const int more : {-1, 0, 1}) {
                    const std::size_t size = block * register_ / sizeof(T) + static_cast<std::size_t>(more);
                    SCOPED_TRACE(std::string{core::getName(set)} + ", length " + std::to_string(size));
                    std::vector<T> values(size, highest<T>);
                    if constexpr (std::is_integral_v<T>) {
                        expectReference(runKernel(set, values), values);
                        std::fill(values.begin(), values.end(), lowest<T>);
                        expectReference(runKernel(set, values), values);
                        values[size / 2] = highest<T>;
                    } else {
                        values.assign(size, 0.1f);
                        values[size - 1] = -7;
                    }
                    expectReference(runKernel(set, values), values);
                }
            }
        }
    }
}

// The variance of five pixels of 3000000001 rounds below zero: 45000000030000000005 / 5 in double, less the square of
// the mean in double.
TEST(StatsKernelInteger, ARoundedVarianceBelowZeroIsNaN)
{
    const std::vector<unsigned int> values(5, 3000000001u);
    for (const auto set : allSets) {
        if (hasKernel<unsigned int>(set)) {
            EXPECT_TRUE(std::isnan(runKernel(set, values).StdDev)) << core::getName(set);
        }
    }
}

// A float sum is added in one order on every vector set, an integer sum is exact on every set.
TYPED_TEST(StatsKernel, TheSameBitsOnEverySet)
{
    using T = TypeParam;
    const bool isFloat = std::is_same_v<T, float>;
    for (const std::size_t size : {1, 15, 17, 1000, 100003}) {
        const auto values = randomValues<T>(size, 7);
        const StatsResult first = runKernel(isFloat ? allSets[1] : allSets[0], values);
        for (const auto set : allSets) {
            if (hasKernel<T>(set) && !(isFloat && set == core::eInstructionSet::eIS_Generic)) {
                const StatsResult result = runKernel(set, values, 3);
                EXPECT_EQ(std::bit_cast<std::uint64_t>(result.Sum), std::bit_cast<std::uint64_t>(first.Sum));
                EXPECT_EQ(std::bit_cast<std::uint64_t>(result.StdDev), std::bit_cast<std::uint64_t>(first.StdDev));
            }
        }
    }
}

// A NaN stays in minimum and maximum until the next number replaces it. Both start at the limits of the finite doubles,
// which no infinity of the other side replaces.
TEST(StatsKernelFloat, NaNAndInfinities)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    struct Case
    {
        std::vector<float> values;
        double min;
        double max;
    };
    std::vector<float> early(100, 5);
    early[10] = nan;
    early[3] = -50;
    early[99] = 6;
    std::vector<float> late(100, 5);
    late[99] = nan;
    const Case cases[] = {{{nan}, nan, nan},
                          {{nan, 1}, 1, 1},
                          {{1, nan}, nan, nan},
                          {{1, nan, 3, 2}, 2, 3},
                          {std::vector<float>(40, nan), nan, nan},
                          {early, 5, 6},
                          {late, nan, nan},
                          {std::vector<float>(40, inf), highest<double>, inf},
                          {std::vector<float>(7, -inf), -inf, lowest<double>},
                          {{inf, -inf, 0}, -inf, inf}};
    for (const Case& each : cases) {
        for (const auto set : allSets) {
            if (hasKernel<float>(set)) {
                SCOPED_TRACE(std::string{core::getName(set)} + ", length " + std::to_string(each.values.size()));
                const StatsResult result = runKernel(set, each.values);
                EXPECT_TRUE(result.Min == each.min || (std::isnan(each.min) && std::isnan(result.Min))) << result.Min;
                EXPECT_TRUE(result.Max == each.max || (std::isnan(each.max) && std::isnan(result.Max))) << result.Max;
                EXPECT_FALSE(std::isfinite(result.Sum));
            }
        }
    }
}

// Forcing a set really chooses it, by a class and by the settings; what the machine lacks is not there at all.
TEST(ForcedInstructionSets, ChooseTheKernel)
{
    using Set = core::eInstructionSet;
    const auto& selector = StatsMsr2dLvl3::retrieveFunctionSelector();
    const image::DataTypeIdentifierColl bytes{image::ImageBufferTypeIdentifier{image::eImageBufferType::eIBT_UInt8}};
    for (const auto set : allSets) {
        const auto* const kernel = selector.select(bytes, set);
        ASSERT_EQ(kernel != nullptr, hasKernel<unsigned char>(set)) << core::getName(set);
        if (kernel != nullptr) {
            EXPECT_EQ(kernel->instructionSets, core::InstructionSetsIdentifier{set});
            EXPECT_LE(kernel->efficiency, selector.select(bytes, {})->efficiency);
        }
    }

    const std::vector<unsigned char> values(10, 3);
    StatsMsr2dLvl3::forceInstructionSets(Set::eIS_SSE2);
    EXPECT_EQ(StatsMsr2dLvl3::retrieveForcedInstructionSets(), core::InstructionSetsIdentifier{Set::eIS_SSE2});
    EXPECT_NO_THROW(runKernel(Set::eIS_AVX, values)); // the class's own set wins over the settings
    StatsMsr2dLvl3::releaseForcedInstructionSets();
    if (core::isAvailable(Set::eIS_AVX512)) {
        try {
            runKernel(Set::eIS_AVX, values);
            ADD_FAILURE() << "there is no AVX kernel for bytes";
        } catch (const ORLIXBaseProcessingException& error) {
            EXPECT_STREQ(error.what(), "StatsMsr2dLvl3 has no avx kernel for uint8 pixels: there are generic, sse2, "
                                       "avx2, avx512");
        }
    }
}

} // namespace orlix::test
