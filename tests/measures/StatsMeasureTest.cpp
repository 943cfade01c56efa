#include <support/PixelTypes.hpp>
#include <support/ReferenceStats.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>
#include <framework/process/StripCut.hpp>

#include <gtest/gtest.h>

#include <bit>
#include <numeric>
#include <random>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

void expectStats(const StatsResult& result, const ReferenceStats& expected)
{
    EXPECT_EQ(result.NbPixels, expected.n);
    EXPECT_EQ(result.Min, expected.min);
    EXPECT_EQ(result.Max, expected.max);
    EXPECT_NEAR(result.Sum, static_cast<double>(expected.sum), 1e-14 * static_cast<double>(expected.sumAbs));
    EXPECT_NEAR(result.Mean, static_cast<double>(expected.mean()),
                1e-14 * static_cast<double>(expected.sumAbs / static_cast<long double>(expected.n)));
    const auto variance = static_cast<double>(expected.variance());
    EXPECT_NEAR(result.StdDev * result.StdDev, variance,
                1e-12 * static_cast<double>(expected.sumSq / static_cast<long double>(expected.n)));
}

template <class T>
std::vector<T> slice(const std::vector<T>& values, std::size_t part, std::size_t size)
{
    const auto first = values.begin() + static_cast<std::ptrdiff_t>(part * size);
    return {first, first + static_cast<std::ptrdiff_t>(size)};
}

bool sameBits(const StatsResult& a, const StatsResult& b)
{
    const auto bits = [](double x) { return std::bit_cast<std::uint64_t>(x); };
    return a.NbPixels == b.NbPixels && bits(a.Sum) == bits(b.Sum) && bits(a.Mean) == bits(b.Mean) &&
           bits(a.Min) == bits(b.Min) && bits(a.Max) == bits(b.Max) && bits(a.StdDev) == bits(b.StdDev);
}

} // namespace

template <class T>
class StatsMeasure : public testing::Test
{
};
TYPED_TEST_SUITE(StatsMeasure, PixelTypes);

// One result per image, plan and volume, for shapes with one of everything and many of everything, however the pixels
// lie in memory.
TYPED_TEST(StatsMeasure, CoversImagePlansAndVolumes)
{
    using T = TypeParam;
    const ImageGeometry shapes[] = {{1, 1}, {1, 70}, {70, 1}, {5, 3, 4}, {33, 17, 3, 2, 2}, {7, 5, 1, 3, 2}};
    for (const ImageGeometry& shape : shapes) {
        const auto values = randomValues<T>(shape.nbPixels(), 3);
        for (const int layout : {0, 1, 2, 3, 4}) {
            SCOPED_TRACE(toString(shape) + ", layout " + std::to_string(layout));
            const auto image = makeStrided(shape, values, layout % 2 == 1, layout >= 2, layout == 4);
            expectStats(*statsMsr(image), referenceStats(values));

            const auto plans = multiSlice_statsMsr2d(image);
            const std::size_t planSize = shape.x * shape.y;
            ASSERT_EQ(plans->size(), shape.z * shape.c * shape.t);
            for (std::size_t t = 0, i = 0; t < shape.t; ++t) {
                for (std::size_t c = 0; c < shape.c; ++c) {
                    for (std::size_t z = 0; z < shape.z; ++z, ++i) {
                        const image::PlanIndex plan{unsigned(z), unsigned(c), unsigned(t)};
                        EXPECT_EQ(plans->getPlan(i), plan);
                        expectStats(*plans->getStorage(plan), referenceStats(slice(values, i, planSize)));
                    }
                }
            }

            const auto volumes = multiSlice_statsMsr3d(image);
            ASSERT_EQ(volumes->size(), shape.c * shape.t);
            for (std::size_t i = 0; i < volumes->size(); ++i) {
                EXPECT_EQ(volumes->getPlan(i), (image::PlanIndex{0, unsigned(i % shape.c), unsigned(i / shape.c)}));
                expectStats(*volumes->getElement(i), referenceStats(slice(values, i, planSize * shape.z)));
            }
        }
    }
}

// However the rows lie in memory, the bits are the same.
TYPED_TEST(StatsMeasure, DoesNotDependOnTheLayout)
{
    using T = TypeParam;
    const ImageGeometry shape{45, 37, 5};
    const auto values = randomValues<T>(shape.nbPixels(), 9);
    for (const auto set : allSets) {
        if (core::isAvailable(set) && (set != core::eInstructionSet::eIS_AVX || std::is_same_v<T, float>)) {
            const ForcedSet forced{set};
            const auto gapless = statsMsr3d(makeStrided(shape, values, false, false, false));
            EXPECT_TRUE(sameBits(*statsMsr3d(makeStrided(shape, values, true, false, false)), *gapless));
            EXPECT_TRUE(sameBits(*statsMsr3d(makeStrided(shape, values, true, true, true)), *gapless));
        }
    }
}

// Large enough for many strips, plans and slabs: the same bits for any number of threads and from run to run.
TYPED_TEST(StatsMeasure, DoesNotDependOnThreads)
{
    using T = TypeParam;
    const ImageGeometry shape{1021, 997, 3, 2};
    const auto values = randomValues<T>(shape.nbPixels(), 5);
    const auto image = makeImage(shape, values);
    StatsResult whole;
    StatsResult volume;
    {
        const Threads one{1};
        whole = *statsMsr(image);
        volume = *statsMsr3d(image);
        expectStats(whole, referenceStats(values));
    }
    for (const unsigned threads : {2u, 3u, 16u}) {
        const Threads many{threads};
        EXPECT_TRUE(sameBits(*statsMsr(image), whole)) << threads;
        EXPECT_TRUE(sameBits(*statsMsr3d(image), volume)) << threads;
    }
}

TEST(StatsMeasureValues, OfKnownImages)
{
    const auto one = statsMsr2d(makeImage<short>({1, 1}, {-7}));
    EXPECT_EQ(one->StdDev, 0);
    EXPECT_EQ(one->Mean, -7);

    std::vector<unsigned char> ramp(256);
    std::iota(ramp.begin(), ramp.end(), std::uint8_t{0});
    const auto all = statsMsr(makeImage({16, 16}, ramp));
    EXPECT_EQ(all->Sum, 32640);
    EXPECT_EQ(all->Mean, 127.5);
    EXPECT_DOUBLE_EQ(all->StdDev, std::sqrt(5461.25)); // (256^2 - 1) / 12

    // A constant image has a deviation of 0, or NaN where rounding makes the variance negative.
    const auto constant = statsMsr(makeImage<float>({37, 3}, std::vector<float>(111, 0.1f)));
    EXPECT_TRUE(constant->StdDev < 1e-8 || std::isnan(constant->StdDev)) << constant->StdDev;
    const auto negative = statsMsr(makeImage<unsigned int>({5, 1}, std::vector<unsigned int>(5, 3000000001u)));
    EXPECT_TRUE(std::isnan(negative->StdDev)); // a merge does not clamp, either
}

// Without pixels the mean is NaN and the limits stay where they start.
TEST(StatsMeasureValues, OfEmptyImages)
{
    for (const ImageGeometry& shape : {ImageGeometry{0, 5}, ImageGeometry{5, 0}, ImageGeometry{4, 4, 0},
                                       ImageGeometry{4, 4, 2, 0}, ImageGeometry{4, 4, 1, 1, 0}}) {
        const Ptr<const BaseImage> image = BaseImage::create(image::eImageBufferType::eIBT_Int16, shape);
        for (const auto& result : {statsMsr(image), statsMsr2d(image), statsMsr3d(image)}) {
            SCOPED_TRACE(toString(shape));
            EXPECT_EQ(result->NbPixels, 0u);
            EXPECT_EQ(result->Sum, 0);
            EXPECT_TRUE(std::isnan(result->Mean));
            EXPECT_TRUE(std::isnan(result->StdDev));
            EXPECT_EQ(result->Min, std::numeric_limits<double>::max());
            EXPECT_EQ(result->Max, std::numeric_limits<double>::lowest());
        }
        EXPECT_EQ(multiSlice_statsMsr2d(image)->size(), shape.z * shape.c * shape.t);
    }
}

// Each part counts by its number of pixels, in the order given; a NaN deviation of one part reaches the whole.
TEST(StatsMerge, RebuildsTheSumsOfSquares)
{
    const auto part = [](std::uint64_t n, double sum, double mean, double min, double max, double deviation) {
        auto result = makePtr<StatsResult>();
        result->NbPixels = n;
        result->Sum = sum;
        result->Mean = mean;
        result->Min = min;
        result->Max = max;
        result->StdDev = deviation;
        return result;
    };
    const auto merge = [](std::vector<Ptr<data::BaseDataItem>> parts) {
        StatsResult merged;
        StatsMsr2dLvl2::processorClass.getMerge().merge(parts, merged, StatsMsr2dLvl2{});
        return merged;
    };
    // {1, 3} and {5, 5, 8}
    const auto first = part(2, 4, 2, 1, 3, 1);
    const auto second = part(3, 18, 6, 5, 8, std::sqrt(2.0));
    StatsResult merged = merge({first, second});
    EXPECT_EQ(merged.NbPixels, 5u);
    EXPECT_EQ(merged.Mean, 4.4);
    EXPECT_EQ(merged.Min, 1);
    EXPECT_EQ(merged.Max, 8);
    EXPECT_NEAR(merged.StdDev, std::sqrt(5.44), 1e-15);

    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto unknown = part(2, nan, nan, nan, nan, nan);
    merged = merge({unknown, first});
    EXPECT_TRUE(std::isnan(merged.StdDev));
    EXPECT_EQ(merged.Min, 1); // the next number replaces a NaN
    merged = merge({first, unknown});
    EXPECT_TRUE(std::isnan(merged.Min)); // min(part, lowest so far), max(part, highest so far)
    EXPECT_TRUE(std::isnan(merged.Max));

    // A part of nothing adds nothing; nothing but such has no mean.
    const double highest = std::numeric_limits<double>::max();
    const auto nothing = part(0, 0, nan, highest, -highest, nan);
    EXPECT_NEAR(merge({nothing, first, nothing, second}).StdDev, std::sqrt(5.44), 1e-15);
    merged = merge({nothing, nothing});
    EXPECT_TRUE(std::isnan(merged.Mean) && std::isnan(merged.StdDev));
    EXPECT_EQ(merged.Min, highest);
    EXPECT_EQ(merged.Max, -highest);
}

// Strips cover everything once, in order, whatever the sizes.
TEST(StripCut, CoversEveryElementOnce)
{
    for (const std::size_t elements : {0, 1, 2, 7, 64, 1000}) {
        for (const std::size_t bytes : {0, 1, 100, 4096, 1 << 20}) {
            for (const std::size_t limit : {0, 1, 1000, 1 << 19}) {
                const StripCut cut{elements, bytes, limit};
                SCOPED_TRACE(testing::Message() << elements << " of " << bytes << " bytes, limit " << limit);
                ASSERT_EQ(cut.size() == 0, elements * bytes == 0);
                for (std::size_t i = 0; i < cut.size(); ++i) {
                    EXPECT_LT(cut.begin(i), cut.begin(i + 1));
                    const std::size_t size = (cut.begin(i + 1) - cut.begin(i)) * bytes;
                    EXPECT_TRUE(size <= limit + bytes) << size;
                }
                if (cut.size() != 0) {
                    EXPECT_EQ(cut.begin(0), 0u);
                    EXPECT_EQ(cut.begin(cut.size()), elements);
                }
            }
        }
    }
}

} // namespace orlix::test
