#include <support/ExactNumbers.hpp>
#include <support/HardPixels.hpp>
#include <support/Masks.hpp>
#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>

#include <ORLIX/Measures/Compare.hpp>
#include <ORLIX/Measures/Threshold.hpp>

namespace orlix::test
{

using namespace measures;

namespace
{

/// The same numbers in every language: x <- x a + c.
std::vector<unsigned> makeNumbers(std::size_t count, std::uint32_t x)
{
    std::vector<unsigned> numbers(count);
    for (unsigned& number : numbers) {
        x = x * 1664525u + 1013904223u;
        number = x >> 16;
    }
    return numbers;
}

constexpr ImageGeometry photoSize{24, 20};

/// Two grey levels with noise.
std::vector<unsigned char> makePhoto()
{
    const auto r = makeNumbers(photoSize.nbPixels(), 1);
    const auto s = makeNumbers(photoSize.nbPixels(), 2);
    std::vector<unsigned char> pixels(photoSize.nbPixels());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const unsigned level = (r[i] % 3 == 0 ? 150 : 60) + (r[i] >> 4) % 40 + (s[i] >> 5) % 17;
        pixels[i] = static_cast<unsigned char>(level);
    }
    return pixels;
}
std::vector<unsigned char> disturb(std::vector<unsigned char> pixels)
{
    const auto s = makeNumbers(pixels.size(), 2);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const int level = pixels[i] + static_cast<int>((s[i] >> 3) % 31) - 12;
        pixels[i] = static_cast<unsigned char>(std::clamp(level, 0, 255));
    }
    return pixels;
}

/// Every error, the correlation and the line, against their definitions.
void expectExact(const Comparison& found, const std::vector<Rational>& a, const std::vector<Rational>& b)
{
    const Rational n = a.size();
    Rational sumA = 0, sumB = 0, aa = 0, bb = 0, ab = 0, errors = 0, magnitudes = 0, where = 0, where2 = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sumA += a[i];
        sumB += b[i];
        aa += a[i] * a[i];
        bb += b[i] * b[i];
        ab += a[i] * b[i];
        errors += (b[i] - a[i]) * (b[i] - a[i]);
        magnitudes += abs(b[i] - a[i]);
        where += b[i] > 20 ? a[i] : Rational{0};
        where2 += a[i] > 10 ? b[i] : Rational{0};
    }
    const Rational varianceA = aa / n - sumA * sumA / (n * n);
    const Rational varianceB = bb / n - sumB * sumB / (n * n);
    const Rational covariance = ab / n - sumA * sumB / (n * n);
    EXPECT_TRUE(isNearest(found.ME, (sumB - sumA) / n));
    EXPECT_TRUE(isNearest(found.MSE, errors / n));
    EXPECT_TRUE(isNearestRoot(found.RMSE, errors / n));
    EXPECT_TRUE(isNearest(found.MAE, magnitudes / n));
    if (aa != 0) {
        EXPECT_TRUE(isNearestRoot(found.NRMSE, errors / aa));
    }
    if (varianceA != 0) {
        EXPECT_TRUE(isNearest(found.Slope, covariance / varianceA));
        EXPECT_TRUE(isNearest(found.Intercept, (sumB - covariance / varianceA * sumA) / n));
    }
    if (varianceA != 0 && varianceB != 0) {
        EXPECT_TRUE(isNearestRoot(std::fabs(found.r), covariance * covariance / (varianceA * varianceB)));
        EXPECT_EQ(found.r < 0, covariance < 0);
    } else {
        EXPECT_TRUE(std::isnan(found.r));
    }
    if (sumA != 0 && sumB != 0) {
        EXPECT_TRUE(isNearest(found.MandersM1, where / sumA));
        EXPECT_TRUE(isNearest(found.MandersM2, where2 / sumB));
    }
}

const CompareOptions sumsOnly{.peak = 255, .threshold = 10, .threshold2 = 20, .bins = 0, .ssim = false};

} // namespace

template <class T>
class Compare : public testing::Test
{
};
TYPED_TEST_SUITE(Compare, PixelTypes);

// With pixels of every type, in every set, with a mask and without.
TYPED_TEST(Compare, GivesTheNearestDoubles)
{
    using T = TypeParam;
    constexpr std::size_t size = 1311;
    const auto mask = makeMask(MaskPattern::Half, size);
    for (const auto& hard : makeHardPixels<T>(size)) {
        const std::string& name = hard.name;
        const auto& pixels = hard.pixels;
        image::forEachPixelType([&]<class U>(std::type_identity<U>) {
            for (const auto& hard2 : makeHardPixels<U>(size)) {
                const std::string& name2 = hard2.name;
                const auto& pixels2 = hard2.pixels;
                if (name2 != "random" && name2 != name) {
                    continue;
                }
                SCOPED_TRACE(name + " and " + image::getName(image::imageBufferTypeOf<U>) + " " + name2);
                std::optional<Comparison> generic;
                for (const auto set : allSets) {
                    if (!core::isAvailable(set) || set == core::eInstructionSet::eIS_AVX) {
                        continue;
                    }
                    const ForcedSet forced{set};
                    CompareOptions options = sumsOnly;
                    const Comparison found = *compare(view(pixels, {size, 1}), view(pixels2, {size, 1}), options);
                    if (!generic) {
                        generic = found;
                        expectExact(found, toRationals(pixels), toRationals(pixels2));
                        options.mask = view(mask, {size, 1});
                        expectExact(*compare(view(pixels, {size, 1}), view(pixels2, {size, 1}), options),
                                    toRationals(select(pixels, mask)), toRationals(select(pixels2, mask)));
                    }
                    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
                    EXPECT_EQ(found.MSE, generic->MSE);
                    EXPECT_EQ(found.MAE, generic->MAE);
                    EXPECT_EQ(found.MaxAbsError, generic->MaxAbsError);
                    EXPECT_EQ(found.MaxAbsErrorPosition, generic->MaxAbsErrorPosition);
                    EXPECT_TRUE(same(found.r, generic->r) && same(found.MandersM1, generic->MandersM1));
                }
            }
        });
    }
}

TEST(Compare, FindsTheLargestError)
{
    std::vector<float> a(3000, 1.f);
    std::vector<float> b = a;
    b[2100] = -2;
    b[2500] = 4;
    const Comparison found = *compare(view(a, {100, 30}), view(b, {100, 30}), {.peak = 1});
    EXPECT_EQ(found.MaxAbsError, 3);
    EXPECT_EQ(found.MaxAbsErrorPosition, (std::vector<std::uint64_t>{0, 21}));
    EXPECT_EQ(compare(view(a, {100, 30}), view(a, {100, 30}), {.peak = 1})->PSNR,
              std::numeric_limits<double>::infinity());
    EXPECT_NEAR(found.PSNR, 10 * std::log10(3000 / 18.0), 1e-12);
    b[0] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(compare(view(a, {100, 30}), view(b, {100, 30}), {.peak = 1})->NbPixels, 2999u);
    a[1] = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(std::isnan(compare(view(a, {100, 30}), view(b, {100, 30}), {.peak = 1})->MSE));
}

// What scikit-image 0.26 gives for the same images.
TEST(Compare, GivesTheSimilarityOfScikitImage)
{
    const auto a = makePhoto();
    const auto b = disturb(a);
    const auto find = [&](const CompareOptions& options) {
        return *compare(view(a, photoSize), view(b, photoSize), options);
    };
    EXPECT_NEAR(*find({}).SSIM, 0.9793612100466391, 1e-14);
    EXPECT_NEAR(*find({.window = SsimWindow::Gaussian, .sampleCovariance = false}).SSIM, 0.9785095393224233, 1e-14);
    EXPECT_NEAR(*find({.windowSize = 5, .k1 = 0.02, .k2 = 0.04}).SSIM, 0.9793565035411772, 1e-14);
    EXPECT_NEAR(*find({}).NMI, 1.481312002099539, 1e-14);
    EXPECT_NEAR(*find({.bins = 20}).NMI, 1.296441679532987, 1e-14);
    const auto image = ssimImage(view(a, photoSize), view(b, photoSize));
    const auto at = [&](std::size_t x, std::size_t y) { return reinterpret_cast<const float*>(image->getRow(y))[x]; };
    EXPECT_NEAR(at(0, 0), 0.9834192014261224, 1e-7);
    EXPECT_NEAR(at(23, 0), 0.9764014512821403, 1e-7);
    EXPECT_NEAR(at(5, 19), 0.9744368904224516, 1e-7);
    EXPECT_NEAR(at(12, 9), 0.9811455114624095, 1e-7);
    // The same pixels as other types, in two passes.
    std::vector<float> floats{a.begin(), a.end()};
    std::vector<unsigned short> shorts{b.begin(), b.end()};
    const Comparison mixed = *compare(view(floats, photoSize), view(shorts, photoSize), {.peak = 255, .bins = 20});
    EXPECT_NEAR(*mixed.NMI, 1.296441679532987, 1e-14);
    EXPECT_NEAR(*mixed.SSIM, 0.9793612100466391, 1e-14);
}

// What rounding makes of windows without contrast stays a similarity, with a mask and without.
TEST(Compare, GivesSimilaritiesUpToOne)
{
    constexpr ImageGeometry size{60, 20};
    std::vector<float> a(size.nbPixels(), 235.217f);
    const std::vector<float> b(a.size(), 25.5724f);
    const std::vector<unsigned char> all(a.size(), 1);
    CompareOptions options{.peak = 1, .bins = 0, .window = SsimWindow::Gaussian, .k1 = 0, .k2 = 0};
    const double plain = *compare(view(a, size), view(b, size), options)->SSIM;
    EXPECT_LE(std::fabs(plain), 1);
    options.mask = view(all, size);
    EXPECT_EQ(*compare(view(a, size), view(b, size), options)->SSIM, plain);
    a[5] = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(std::isnan(*compare(view(a, size), view(b, size), {.peak = 1, .bins = 0})->SSIM));
}

TEST(Compare, RefusesWhatMakesNoSense)
{
    const auto bytes = randomValues<unsigned char>(12);
    const auto floats = randomValues<float>(12);
    const auto refusal = [&](const ImageView& a, const ImageView& b, const CompareOptions& options) {
        return messageOf<MeasureException>([&] { (void)compare(a, b, options); });
    };
    EXPECT_EQ(
        refusal(view(floats, {4, 3}), view(floats, {4, 3}), {}),
        "float32 images have no peak of their own: give it as the option peak, the highest value that a pixel may "
        "have, less the lowest");
    EXPECT_EQ(refusal(view(bytes, {4, 3}), view(bytes, {3, 4}), {}),
              "compare: all images have one size, but one has 4 x 3, another 3 x 4");
    EXPECT_EQ(refusal(view(bytes, {4, 3}), view(bytes, {4, 3}), {.windowSize = 4}),
              "a window of structural similarity has an odd size up to 255, not 4");
    EXPECT_EQ(refusal(view(bytes, {4, 3}), view(bytes, {4, 3}), {.bins = 2000}),
              "mutual information takes up to 1024 bins for each image, not 2000");
    EXPECT_TRUE(std::isnan(*compare(view(bytes, {4, 3}), view(bytes, {4, 3}))->SSIM)); // smaller than a window
    EXPECT_EQ(compare(view(bytes, {4, 3}), view(bytes, {4, 3}))->Peak, 255);
}

// What scikit-image 0.26 gives for the same images, of every width and of float.
TEST(Threshold, IsThatOfScikitImage)
{
    struct Case
    {
        ThresholdMethod method;
        double bytes, shorts, ints, floats;
    };
    const auto photo = makePhoto();
    std::vector<unsigned short> shorts;
    std::vector<int> ints;
    std::vector<float> floats;
    for (const unsigned char pixel : photo) {
        shorts.push_back(static_cast<unsigned short>(pixel * 100 + 7));
        ints.push_back(pixel * 1000 - 50000);
        floats.push_back(static_cast<float>(pixel) / 7);
    }
    for (const Case& c :
         {Case{ThresholdMethod::Otsu, 113, 11307, 63000, 16.11244419642857},
          {ThresholdMethod::Triangle, 114, 8308, 33001, 12.042689732142858},
          {ThresholdMethod::Isodata, 131, 13158, 81511, 18.745814732142858},
          {ThresholdMethod::Li, 121.0650281714136, 12113.502817141361, 71065.02817141367, 17.29500402448766},
          {ThresholdMethod::Yen, 104, 10407, 54000, 14.835658482142858}}) {
        SCOPED_TRACE(namesOf(c.method)[static_cast<std::size_t>(c.method)]);
        const ThresholdOptions options{.method = c.method};
        EXPECT_NEAR(threshold(view(photo, photoSize), options)->Threshold, c.bytes, 1e-9);
        EXPECT_NEAR(threshold(view(shorts, photoSize), options)->Threshold, c.shorts, 1e-9);
        // More than 65536 values go to as many classes.
        EXPECT_NEAR(threshold(view(ints, photoSize), options)->Threshold, c.ints, 3);
        EXPECT_NEAR(threshold(view(floats, photoSize), options)->Threshold, c.floats, 1e-3);
    }
}

TEST(Threshold, PartsTwoNormalDistributions)
{
    // The densities of N(50, 5) and of N(110, 15) with the same weights meet at 65.9.
    std::vector<unsigned char> pixels;
    for (int level = 0; level < 256; ++level) {
        const auto density = [&](double mean, double deviation) {
            return std::exp(-0.5 * std::pow((level - mean) / deviation, 2)) / deviation;
        };
        pixels.insert(pixels.end(), static_cast<std::size_t>(3e5 * (density(50, 5) + density(110, 15))),
                      static_cast<unsigned char>(level));
    }
    const auto find = [&](ThresholdMethod method) {
        return threshold(view(pixels, {pixels.size(), 1}), {.method = method})->Threshold;
    };
    EXPECT_NEAR(find(ThresholdMethod::MinimumError), 65.9, 1.5);
    const double sum = std::accumulate(pixels.begin(), pixels.end(), 0.0);
    EXPECT_EQ(find(ThresholdMethod::Mean), sum / static_cast<double>(pixels.size()));
    const std::vector<int> constant(9, -4);
    EXPECT_EQ(threshold(view(constant, {3, 3}))->Threshold, -4);
}

// A pixel that is the threshold is below it: (0.5 - 2) / ln(0.5 / 2).
TEST(Threshold, OfThreeLevelsByLi)
{
    std::vector<float> pixels;
    for (int i = 0; i < 27; ++i) {
        pixels.push_back(static_cast<float>(i % 3));
    }
    EXPECT_NEAR(threshold(view(pixels, {9, 3}), {.method = ThresholdMethod::Li})->Threshold, 1.0820212806667227, 3e-5);
}

} // namespace orlix::test
