#include <support/ExactNumbers.hpp>
#include <support/HardPixels.hpp>
#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>

#include <ORLIX/Measures/Regions.hpp>

#include <map>

namespace orlix::test
{

using namespace measures;

namespace
{

constexpr ImageGeometry size{283, 13, 2}; // runs of some hundred pixels

/// Blocks of labels, among them one of the background and some that lie at the border.
template <class T>
std::vector<T> makeLabels(T scale)
{
    std::vector<T> labels(size.nbPixels());
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const std::size_t x = i % size.x;
        const std::size_t y = i / size.x % size.y;
        labels[i] = static_cast<T>(static_cast<T>((x + 3) / 141 + 2 * ((y + 5) / 7)) * scale);
    }
    return labels;
}

/// The pixels of a region, and where they lie.
struct Expected
{
    std::vector<Rational> pixels;
    std::vector<std::array<std::uint64_t, 3>> at;
};

} // namespace

template <class T>
class RegionsOf : public testing::Test
{
};
TYPED_TEST_SUITE(RegionsOf, PixelTypes);

TYPED_TEST(RegionsOf, AreWhatTheirPixelsSay)
{
    using T = TypeParam;
    const auto labels = makeLabels<int>(-300000000 / 4);
    for (const auto& hard : makeHardPixels<T>(size.nbPixels())) {
        const std::string& name = hard.name;
        const auto& pixels = hard.pixels;
        SCOPED_TRACE(name);
        std::map<std::int64_t, Expected> expected;
        for (std::size_t i = 0; i < labels.size(); ++i) {
            if (labels[i] != 0) {
                Expected& region = expected[labels[i]];
                region.pixels.emplace_back(static_cast<double>(pixels[i]));
                region.at.push_back({i % size.x, i / size.x % size.y, i / size.x / size.y});
            }
        }
        const Regions found = *regions(view(labels, size), {view(pixels, size)}, {.median = true});
        const RegionFigures& figures = found.images.at(0);
        ASSERT_EQ(found.size(), expected.size());
        ASSERT_EQ(found.nbAxes, 3u);
        std::size_t row = 0;
        for (auto& [label, region] : expected) {
            SCOPED_TRACE(label);
            const Rational n = region.pixels.size();
            Rational sum = 0, squares = 0;
            std::array<Rational, 3> positions{}, moments{};
            std::array<std::uint64_t, 3> first = region.at[0], last = region.at[0];
            for (std::size_t i = 0; i < region.pixels.size(); ++i) {
                sum += region.pixels[i];
                squares += region.pixels[i] * region.pixels[i];
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    positions[axis] += region.at[i][axis];
                    moments[axis] += region.pixels[i] * region.at[i][axis];
                    first[axis] = std::min(first[axis], region.at[i][axis]);
                    last[axis] = std::max(last[axis], region.at[i][axis]);
                }
            }
            EXPECT_EQ(found.Label[row], label);
            EXPECT_EQ(found.NbPixels[row], region.pixels.size());
            EXPECT_TRUE(isNearest(figures.Sum[row], sum));
            EXPECT_TRUE(isNearest(figures.Mean[row], sum / n));
            EXPECT_TRUE(isNearestRoot(figures.StdDev[row], squares / n - sum * sum / (n * n)));
            bool touches = false;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const std::uint64_t side = axis == 0 ? size.x : axis == 1 ? size.y : size.z;
                EXPECT_EQ(found.BoundingBox[row * 6 + axis], first[axis]);
                EXPECT_EQ(found.BoundingBox[row * 6 + 3 + axis], last[axis] + 1);
                EXPECT_TRUE(isNearest(found.Centroid[row * 3 + axis], positions[axis] / n));
                if (sum != 0) {
                    EXPECT_TRUE(isNearest(figures.WeightedCentroid[row * 3 + axis], moments[axis] / sum));
                }
                touches = touches || first[axis] == 0 || last[axis] + 1 == side;
            }
            EXPECT_EQ(found.TouchesBorder[row], touches);
            std::sort(region.pixels.begin(), region.pixels.end());
            EXPECT_EQ(figures.Min[row], static_cast<double>(region.pixels.front()));
            EXPECT_EQ(figures.Max[row], static_cast<double>(region.pixels.back()));
            const std::size_t middle = region.pixels.size() / 2;
            const Rational lower = region.pixels[region.pixels.size() % 2 == 0 ? middle - 1 : middle];
            EXPECT_DOUBLE_EQ(figures.Median[row], static_cast<double>((lower + region.pixels[middle]) / 2));
            ++row;
        }
    }
}

TEST(RegionsOf, LabelsOfEverySize)
{
    const auto check = [](auto scale, std::int64_t lowestLabel) {
        const auto labels = makeLabels(scale);
        const Regions found = *regions(view(labels, size));
        ASSERT_FALSE(found.Label.empty());
        EXPECT_EQ(found.Label.front(), lowestLabel);
        EXPECT_TRUE(std::is_sorted(found.Label.begin(), found.Label.end()));
        EXPECT_TRUE(found.images.empty());
    };
    check(static_cast<unsigned char>(30), 30);
    check(static_cast<signed char>(-21), -126);
    check(static_cast<unsigned short>(8000), 8000);
    check(static_cast<short>(-5000), -30000);
    check(500000000u, 500000000);
}

TEST(RegionsOf, PixelsThatAreNoNumbers)
{
    const std::vector<unsigned char> labels{1, 1, 1, 2, 2, 0};
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> pixels{1, nan, 3, nan, nan, 7};
    const Regions omitted = *regions(view(labels, {6, 1}), {view(pixels, {6, 1})});
    EXPECT_EQ(omitted.images[0].Mean[0], 2);
    EXPECT_TRUE(std::isnan(omitted.images[0].Mean[1]));
    EXPECT_EQ(omitted.images[0].NbNaN, (std::vector<std::uint64_t>{1, 2}));
    const Regions propagated = *regions(view(labels, {6, 1}), {view(pixels, {6, 1})}, {.nan = NanPolicy::Propagate});
    EXPECT_TRUE(std::isnan(propagated.images[0].Sum[0]));
    EXPECT_THROW((void)regions(view(labels, {6, 1}), {view(pixels, {6, 1})}, {.nan = NanPolicy::Fail}),
                 MeasureException);
    EXPECT_EQ(messageOf<MeasureException>([&] {
                  (void)regions(view(pixels, {6, 1}));
              }),
              "labels are integers: convert the float32 image first");
}

} // namespace orlix::test
