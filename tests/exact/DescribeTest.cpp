#include <support/ExactNumbers.hpp>
#include <support/HardPixels.hpp>
#include <support/Masks.hpp>
#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>

#include <ORLIX/Measures/Describe.hpp>

namespace orlix::test
{

using namespace measures;

namespace
{

/// Sums of powers of the deviations from the mean, over n.
Rational getMoment(const std::vector<Rational>& pixels, int power)
{
    Rational mean = 0;
    for (const Rational& x : pixels) {
        mean += x;
    }
    mean /= pixels.size();
    Rational sum = 0;
    for (const Rational& x : pixels) {
        Rational product = 1;
        for (int k = 0; k < power; ++k) {
            product *= x - mean;
        }
        sum += product;
    }
    return sum / pixels.size();
}

void expectExact(const Description& found, const std::vector<Rational>& pixels, bool hasFourth)
{
    Rational sum = 0;
    for (const Rational& x : pixels) {
        sum += x;
    }
    const Rational n = pixels.size();
    const Rational variance = getMoment(pixels, 2);
    EXPECT_EQ(found.NbPixels, pixels.size());
    EXPECT_TRUE(isNearest(found.Sum, sum));
    EXPECT_TRUE(isNearest(found.Mean, sum / n));
    EXPECT_TRUE(isNearest(found.Variance, variance));
    EXPECT_TRUE(isNearestRoot(found.StdDev, variance));
    if (!hasFourth || variance == 0) {
        return;
    }
    const Rational third = getMoment(pixels, 3);
    EXPECT_TRUE(isNearestRoot(std::fabs(*found.Skewness), third * third / (variance * variance * variance)));
    EXPECT_EQ(*found.Skewness < 0, third < 0);
    EXPECT_TRUE(isNearest(*found.Kurtosis, getMoment(pixels, 4) / (variance * variance) - 3));
}

/// NumPy's linear percentile of sorted pixels.
template <class T>
double findPercentile(const std::vector<T>& sorted, double percent)
{
    const double at = static_cast<double>(sorted.size() - 1) * (percent / 100);
    const auto lower = static_cast<std::size_t>(at);
    const double a = static_cast<double>(sorted[lower]);
    const double b = static_cast<double>(sorted[std::min(lower + 1, sorted.size() - 1)]);
    const double part = at - static_cast<double>(lower);
    return part == 0 || a == b ? a : part >= 0.5 ? b - (b - a) * (1 - part) : a + (b - a) * part;
}

} // namespace

template <class T>
class Describe : public testing::Test
{
};
TYPED_TEST_SUITE(Describe, PixelTypes);

// The doubles nearest to the exact values, in every set: blocks that fit, that do not, and what is left over.
TYPED_TEST(Describe, GivesTheNearestDoubles)
{
    using T = TypeParam;
    for (const std::size_t size : {1, 37, 2500}) {
        for (const auto& hard : makeHardPixels<T>(size)) {
            const std::string& name = hard.name;
            const auto& pixels = hard.pixels;
            SCOPED_TRACE(name + ", " + std::to_string(size));
            const auto image = makeImage<T>({size, 1}, pixels);
            const std::vector<Rational> exact = toRationals(pixels);
            std::optional<Description> generic;
            for (const auto set : allSets) {
                if (!core::isAvailable(set) || set == core::eInstructionSet::eIS_AVX) {
                    continue;
                }
                const ForcedSet forced{set};
                const Description found = *describe(image, {.moments = 4});
                if (!generic) {
                    generic = found;
                    expectExact(found, exact, true);
                }
                EXPECT_EQ(found.Sum, generic->Sum);
                EXPECT_EQ(found.StdDev, generic->StdDev);
                EXPECT_EQ(found.Min, *std::min_element(pixels.begin(), pixels.end()));
                EXPECT_EQ(found.Max, *std::max_element(pixels.begin(), pixels.end()));
                const auto first = [&](auto at) { return static_cast<std::uint64_t>(at - pixels.begin()); };
                EXPECT_EQ(found.MinPosition[0], first(std::min_element(pixels.begin(), pixels.end())));
                EXPECT_EQ(found.MaxPosition[0], first(std::max_element(pixels.begin(), pixels.end())));
            }
        }
    }
}

TYPED_TEST(Describe, CountsOnlyInsideTheMask)
{
    using T = TypeParam;
    constexpr std::size_t size = 4301;
    const auto pixels = randomValues<T>(size);
    const auto image = makeImage<T>({size, 1}, pixels);
    for (const MaskPattern pattern : allMaskPatterns) {
        const auto mask = makeMask(pattern, size);
        const auto selected = select(pixels, mask);
        for (const auto set : {core::eInstructionSet::eIS_Generic, core::eInstructionSet::eIS_AVX2}) {
            if (!core::isAvailable(set)) {
                continue;
            }
            const ForcedSet forced{set};
            const Description found = *describe(image, {.mask = view(mask, {size, 1})});
            if (selected.empty()) {
                EXPECT_EQ(found.NbPixels, 0u);
                EXPECT_TRUE(std::isnan(found.Mean) && std::isnan(found.Min) && std::isnan(*found.Median));
                continue;
            }
            expectExact(found, toRationals(selected), false);
            auto sorted = selected;
            std::sort(sorted.begin(), sorted.end());
            EXPECT_EQ(found.Min, sorted.front());
            EXPECT_EQ(found.Max, sorted.back());
            EXPECT_EQ(found.Median, findPercentile(sorted, 50));
        }
    }
}

// Few percentiles are found in two passes, many in three.
TYPED_TEST(Describe, FindsPercentiles)
{
    using T = TypeParam;
    for (const auto& hard : makeHardPixels<T>(70001)) {
        const std::string& name = hard.name;
        const auto& pixels = hard.pixels;
        SCOPED_TRACE(name);
        auto sorted = pixels;
        std::sort(sorted.begin(), sorted.end());
        std::vector<double> many;
        for (double percent = 0; percent <= 100; percent += 0.4) {
            many.push_back(percent);
        }
        for (const auto& percents : {std::vector<double>{0, 33.3, 100}, many}) {
            const Description found = *describe(makeImage<T>({70001, 1}, pixels), {.percentiles = percents});
            EXPECT_EQ(found.Median, findPercentile(sorted, 50));
            for (std::size_t i = 0; i < percents.size(); ++i) {
                ASSERT_EQ(found.Percentiles[2 * i + 1], findPercentile(sorted, percents[i])) << percents[i];
            }
        }
    }
}

TEST(Describe, DefinesPercentilesAsAsked)
{
    const std::vector<unsigned char> pixels{1, 2, 4, 8};
    const auto find = [&](double percent, PercentileDefinition definition) {
        return describe(view(pixels, {4, 1}), {.percentiles = {percent}, .definition = definition})->Percentiles[1];
    };
    EXPECT_EQ(find(50, PercentileDefinition::Linear), 3); // between places 1 and 2
    EXPECT_EQ(find(40, PercentileDefinition::Lower), 2);
    EXPECT_EQ(find(40, PercentileDefinition::Higher), 4);
    EXPECT_EQ(find(50, PercentileDefinition::Nearest), 4); // place 1.5: the even one
}

TEST(Describe, CountsWhatIsNoNumber)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> pixels(5000, 2.f);
    for (std::size_t i = 0; i < pixels.size(); i += 100) {
        pixels[i] = nan;
    }
    const auto image = view(pixels, {100, 50});
    const Description omitted = *describe(image);
    EXPECT_EQ(omitted.NbPixels, 4950u);
    EXPECT_EQ(omitted.NbNaN, 50u);
    EXPECT_EQ(omitted.Mean, 2);
    EXPECT_EQ(omitted.StdDev, 0);
    EXPECT_EQ(omitted.MinPosition, (std::vector<std::uint64_t>{1, 0}));
    EXPECT_TRUE(std::isnan(describe(image, {.nan = NanPolicy::Propagate})->Mean));
    EXPECT_EQ(messageOf<MeasureException>([&] { (void)describe(image, {.nan = NanPolicy::Fail}); }),
              "50 pixels are NaN");
    pixels[4321] = infinity;
    EXPECT_EQ(describe(image)->Mean, infinity);
    EXPECT_TRUE(std::isnan(describe(image)->StdDev));
    EXPECT_EQ(describe(image)->Max, infinity);
    EXPECT_EQ(describe(image)->NbPositiveInfinity, 1u);
    pixels[4322] = -infinity;
    EXPECT_TRUE(std::isnan(describe(image)->Sum));
    EXPECT_EQ(describe(image)->NbNegativeInfinity, 1u);
}

TEST(Describe, CountsLimitsAndEntropy)
{
    const std::vector<short> pixels{lowest<short>, 0, 0, highest<short>, highest<short>, 1};
    for (const auto& percentiles : {std::vector<double>{}, std::vector<double>{50}}) {
        EXPECT_EQ(describe(view(pixels, {6, 1}), {.percentiles = percentiles})->NbSaturated, 3u);
    }
    const double expected = -(2 * (2 / 6.0) * std::log(2 / 6.0) + 2 * (1 / 6.0) * std::log(1 / 6.0));
    EXPECT_NEAR(*describe(view(pixels, {6, 1}))->Entropy, expected, 1e-15);
    const std::vector<int> wide{7, -7, 7, 1 << 30};
    EXPECT_FALSE(describe(view(wide, {4, 1}))->Entropy.has_value());
    EXPECT_NEAR(*describe(view(wide, {4, 1}), {.entropy = EntropyPolicy::Always})->Entropy, 1.5 * std::log(2.0), 1e-15);
    EXPECT_NEAR(describe(view(wide, {4, 1}), {.ddof = 1})->Variance, describe(view(wide, {4, 1}))->Variance * 4 / 3,
                1e3);
}

// A result for every plan or volume; positions have as many axes as tell pixels apart.
TEST(Describe, CoversPlansAndVolumes)
{
    const auto image = makeRamp({4, 3, 2, 2, 1});
    const auto plans = describe(image, {.per = Per::Plan});
    ASSERT_EQ(plans.size(), 4u);
    EXPECT_EQ(plans[3].plan, (image::PlanIndex{1, 1, 0}));
    EXPECT_EQ(plans[3].Min, 36);
    EXPECT_EQ(plans[3].MaxPosition, (std::vector<std::uint64_t>{3, 2}));
    const auto volumes = describe(image, {.per = Per::Volume});
    ASSERT_EQ(volumes.size(), 2u);
    EXPECT_EQ(volumes[1].Mean, 35.5);
    EXPECT_EQ(volumes[1].MaxPosition, (std::vector<std::uint64_t>{3, 2, 1}));
    EXPECT_EQ(describe(image)->MaxPosition, (std::vector<std::uint64_t>{3, 2, 1, 1, 0}));
    EXPECT_EQ(describe(BaseImage::create(image::eImageBufferType::eIBT_UInt8, {0, 5}))->NbPixels, 0u);
}

TEST(Describe, RefusesWhatMakesNoSense)
{
    const auto image = makeRamp({4, 3});
    const auto refusal = [&](const DescribeOptions& options) {
        return messageOf<MeasureException>([&] { (void)describe(image, options); });
    };
    EXPECT_EQ(refusal({.percentiles = {50, 101}}), "a percentile lies from 0 to 100, not at 101.000000");
    EXPECT_EQ(refusal({.ddof = 2}), "ddof is 0 or 1, not 2");
    EXPECT_EQ(refusal({.moments = 3}), "moments is 2 or 4, not 3");
    EXPECT_EQ(refusal({.mask = makeRamp({4, 3})}),
              "describe: a mask has pixels of one byte in memory: binary, uint8 or int8");
    EXPECT_EQ(refusal({.mask = BaseImage::create(image::eImageBufferType::eIBT_Binary, {3, 4})}),
              "describe: the mask has 3 x 4, but the image 4 x 3");
    EXPECT_EQ(messageOf<MeasureException>([] { (void)describe({}); }), "describe: there is no image");
    EXPECT_EQ(messageOf<image::ImageException>([] {
                  const std::vector<int> seven(7);
                  (void)view(seven, {2, 3});
              }),
              "there are 7 pixels, but an image of 2 x 3 has 6");
}

} // namespace orlix::test
