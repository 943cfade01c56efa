#include <support/Masks.hpp>
#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2d.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

/// The nine weights of the mask, pixel by pixel, in long double.
template <class T>
long double sumResponses(const ImageGeometry& size, const std::vector<T>& values)
{
    const auto at = [&](std::size_t plane, std::ptrdiff_t x, std::ptrdiff_t y) {
        const auto column =
            static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(x, 0, static_cast<std::ptrdiff_t>(size.x) - 1));
        const auto row =
            static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(y, 0, static_cast<std::ptrdiff_t>(size.y) - 1));
        return static_cast<long double>(values[(plane * size.y + row) * size.x + column]);
    };
    long double sum = 0;
    for (std::size_t plane = 0; plane < size.z * size.c * size.t; ++plane) {
        for (std::ptrdiff_t y = 0; y < static_cast<std::ptrdiff_t>(size.y); ++y) {
            for (std::ptrdiff_t x = 0; x < static_cast<std::ptrdiff_t>(size.x); ++x) {
                long double response = 0;
                for (const int dy : {-1, 0, 1}) {
                    for (const int dx : {-1, 0, 1}) {
                        response += (dx == 0 ? -2 : 1) * (dy == 0 ? -2 : 1) * at(plane, x + dx, y + dy);
                    }
                }
                sum += std::abs(response);
            }
        }
    }
    return sum;
}

/// The exact least-squares surface, by Gaussian elimination with pivoting in long double over centred coordinates.
class Surface
{
public:
    template <class T>
    Surface(const ImageGeometry& size, const std::vector<T>& values, const std::vector<std::uint8_t>* mask)
        : x0_{static_cast<long double>(size.x) / 2}, y0_{static_cast<long double>(size.y) / 2}
    {
        long double system[6][7] = {};
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (mask != nullptr && (*mask)[i] == 0) {
                continue;
            }
            const auto basis = basisAt(static_cast<double>(i % size.x), static_cast<double>(i / size.x));
            for (int r = 0; r < 6; ++r) {
                for (int c = 0; c < 6; ++c) {
                    system[r][c] += basis[r] * basis[c];
                }
                system[r][6] += basis[r] * static_cast<long double>(values[i]);
            }
        }
        for (int k = 0; k < 6; ++k) {
            int pivot = k;
            for (int r = k; r < 6; ++r) {
                pivot = std::abs(system[r][k]) > std::abs(system[pivot][k]) ? r : pivot;
            }
            std::swap(system[k], system[pivot]);
            for (int r = 0; r < 6; ++r) {
                const long double factor = r == k ? 0 : system[r][k] / system[k][k];
                for (int c = k; c < 7; ++c) {
                    system[r][c] -= factor * system[k][c];
                }
            }
        }
        for (int k = 0; k < 6; ++k) {
            fit_[k] = system[k][6] / system[k][k];
        }
    }

    long double at(double x, double y) const
    {
        const auto basis = basisAt(x, y);
        long double z = 0;
        for (int k = 0; k < 6; ++k) {
            z += fit_[k] * basis[k];
        }
        return z;
    }

private:
    std::array<long double, 6> basisAt(double x, double y) const
    {
        const long double u = (x - x0_) / (x0_ + 1);
        const long double v = (y - y0_) / (y0_ + 1);
        return {u * u, v * v, u * v, u, v, 1};
    }

    long double x0_;
    long double y0_;
    std::array<long double, 6> fit_{};
};

double evaluate(const ParaboloidParams3d& p, double x, double y)
{
    return p.a * x * x + p.b * y * y + p.c * x * y + p.d * x + p.e * y + p.f;
}

/// The largest distance of a fit from the exact surface, as a share of `most`.
double distance(const ParaboloidParams3d& fit, const Surface& exact, const ImageGeometry& size, double most)
{
    long double worst = 0;
    for (std::size_t y = 0; y < size.y; y += std::max<std::size_t>(1, size.y / 16)) {
        for (std::size_t x = 0; x < size.x; ++x) {
            const auto column = static_cast<double>(x);
            const auto row = static_cast<double>(y);
            worst = std::max(worst, std::abs(evaluate(fit, column, row) - exact.at(column, row)));
        }
    }
    return static_cast<double>(worst) / most;
}

} // namespace

template <class T>
class Noise : public testing::Test
{
};
TYPED_TEST_SUITE(Noise, PixelTypes);

// Any width and height, over strip borders, in any layout, on every set: the sum of the formula, and the same bits.
TYPED_TEST(Noise, IsThatOfTheFormula)
{
    using T = TypeParam;
    for (const ImageGeometry& size : {ImageGeometry{1, 1},
                                      {1, 5},
                                      {5, 1},
                                      {17, 3},
                                      {31, 2},
                                      {33, 9},
                                      {1023, 2},
                                      {1024, 2},
                                      {1025, 3},
                                      {2049, 700},
                                      {40, 30, 2, 1, 3}}) {
        SCOPED_TRACE(toString(size));
        const auto values = randomValues<T>(size.nbPixels());
        const auto expected = static_cast<double>(sumResponses(size, values));
        std::optional<double> bits;
        for (const core::eInstructionSet::domain set : allSets) {
            if (!core::isAvailable(set) || (set == core::eInstructionSet::eIS_AVX && !std::is_same_v<T, float>)) {
                continue;
            }
            const ForcedSet forced{set};
            const auto stats = gaussianNoiseMsr(makeStrided(size, values, true, true, false));
            EXPECT_EQ(stats->NbPixels, size.nbPixels());
            EXPECT_NEAR(stats->SumAbsLaplacian, expected, 1e-13 * expected);
            const double n = static_cast<float>(size.nbPixels());
            EXPECT_DOUBLE_EQ(stats->NoiseStdDev, std::sqrt(std::acos(-1.) / 2) * stats->SumAbsLaplacian / (6 * n));
            bits = bits.value_or(stats->SumAbsLaplacian);
            EXPECT_EQ(stats->SumAbsLaplacian, *bits) << core::getName(set);
            EXPECT_EQ(gaussianNoiseMsr(makeImage(size, values))->SumAbsLaplacian, *bits);
        }
    }
}

// The largest responses that there are fit every lane.
TYPED_TEST(Noise, OfTheWidestRange)
{
    using T = TypeParam;
    if constexpr (std::is_integral_v<T>) {
        const ImageGeometry size{4099, 131};
        std::vector<T> values(size.nbPixels());
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = (i % size.x + i / size.x) % 2 == 0 ? lowest<T> : highest<T>;
        }
        const auto expected = static_cast<double>(sumResponses(size, values));
        EXPECT_EQ(gaussianNoiseMsr(makeImage(size, values))->SumAbsLaplacian, expected);
    }
}

TEST(NoiseOfImages, IsThatWhichWasAdded)
{
    std::mt19937 generator{7};
    const ImageGeometry size{1200, 1000};
    for (const double sigma : {2., 9., 25.}) {
        std::normal_distribution<double> noise{0, sigma};
        std::vector<float> smooth(size.nbPixels());
        for (std::size_t i = 0; i < smooth.size(); ++i) {
            const auto x = static_cast<double>(i % size.x);
            const auto y = static_cast<double>(i / size.x);
            smooth[i] =
                static_cast<float>(1000 + 3 * x - y + 200 * std::sin(x / 150) * std::cos(y / 200) + noise(generator));
        }
        EXPECT_NEAR(gaussianNoiseMsr(makeImage(size, smooth))->NoiseStdDev, sigma, 0.02 * sigma);
    }
}

TEST(NoiseOfImages, KnownCases)
{
    EXPECT_EQ(gaussianNoiseMsr(makeImage<short>({9, 7}, std::vector<short>(63, -5)))->NoiseStdDev, 0);
    EXPECT_TRUE(
        std::isnan(gaussianNoiseMsr(BaseImage::create(image::eImageBufferType::eIBT_UInt8, {0, 4}))->NoiseStdDev));
    // Beyond 2^24 the number goes through single precision, in the merge of strips as well.
    const ImageGeometry size{4097, 4097};
    std::vector<unsigned char> values(size.nbPixels(), 0);
    values[2000 * size.x + 2000] = 100;
    const auto stats = gaussianNoiseMsr(makeImage(size, values));
    EXPECT_EQ(stats->NbPixels, 16785409u);
    EXPECT_EQ(stats->SumAbsLaplacian, 1600);
    EXPECT_EQ(stats->NoiseStdDev, 1.2533141373155001 * 1600 / (16785408. * 6)); // a float has even numbers there
    // The responses to one pixel of infinity are all infinite, and none is NaN.
    std::vector<float> bright(100, 1);
    bright[55] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(gaussianNoiseMsr(makeImage({10, 10}, bright))->SumAbsLaplacian, std::numeric_limits<double>::infinity());
    const auto running = gaussianNoiseMsr_async(makeImage<float>({2, 1}, {1, 4}));
    EXPECT_TRUE(running->wait());
    EXPECT_EQ(getAsyncProcessorOutput(running)->SumAbsLaplacian, 0); // a column repeats above and below
    EXPECT_EQ(messageOf([] { gaussianNoiseMsr(nullptr); }), "GaussianNoiseMsrLvl1: InImg is not set");
}

template <class T>
class Paraboloid : public testing::Test
{
};
TYPED_TEST_SUITE(Paraboloid, PixelTypes);

// Any width, with and without a mask, in any layout, on every set: the exact least-squares surface.
TYPED_TEST(Paraboloid, IsTheLeastSquaresSurface)
{
    using T = TypeParam;
    for (const ImageGeometry& size : {ImageGeometry{3, 3}, {16, 20}, {33, 5}, {511, 40}, {513, 700}, {1030, 6}}) {
        const auto values = randomValues<T>(size.nbPixels());
        double most = 0;
        for (const T value : values) {
            most = std::max(most, std::abs(static_cast<double>(value)));
        }
        auto mask = makeMask(MaskPattern::Half, size.nbPixels());
        if (size.nbPixels() < 20) {
            mask.assign(size.nbPixels(), 9);
        }
        const Surface exact{size, values, nullptr};
        const Surface exactMasked{size, values, &mask};
        const auto image = makeStrided(size, values, true, false, false);
        const auto maskImage = makeStrided(size, mask, true, true, false);
        std::optional<double> bits;
        for (const core::eInstructionSet::domain set : allSets) {
            if (!core::isAvailable(set) || set == core::eInstructionSet::eIS_AVX) {
                continue;
            }
            const ForcedSet forced{set};
            SCOPED_TRACE(toString(size) + core::getName(set));
            const auto fit = paraboloidImgFit2d(image);
            EXPECT_LT(distance(*fit, exact, size, most), 1e-11);
            EXPECT_LT(distance(*paraboloidImgFit2d(image, maskImage), exactMasked, size, most), 1e-11);
            bits = bits.value_or(fit->a);
            EXPECT_EQ(fit->a, *bits);
        }
    }
}

// The largest sums that there are fit every lane.
TYPED_TEST(Paraboloid, OfTheWidestRange)
{
    using T = TypeParam;
    if constexpr (std::is_integral_v<T>) {
        const ImageGeometry size{1100, 5};
        for (const T value : {lowest<T>, highest<T>}) {
            const auto fit = paraboloidImgFit2d(makeImage(size, std::vector<T>(size.nbPixels(), value)));
            for (const double x : {0., 550., 1099.}) {
                EXPECT_NEAR(evaluate(*fit, x, 4), value, 1e-9 * std::abs(static_cast<double>(highest<T>)));
            }
        }
    }
}

TEST(ParaboloidOfPlans, KnownSurfaces)
{
    std::vector<int> surface(3 * 4);
    for (int i = 0; i < 12; ++i) {
        const int x = i % 3;
        const int y = i / 3;
        surface[static_cast<std::size_t>(i)] = 2 * x * x + 3 * y * y + x * y + 4 * x + 5 * y + 6;
    }
    const auto check = [](const ParaboloidParams3d& p, double a, double b, double c, double d, double e, double f) {
        EXPECT_NEAR(p.a, a, 1e-9);
        EXPECT_NEAR(p.b, b, 1e-9);
        EXPECT_NEAR(p.c, c, 1e-9);
        EXPECT_NEAR(p.d, d, 1e-9);
        EXPECT_NEAR(p.e, e, 1e-9);
        EXPECT_NEAR(p.f, f, 1e-9);
    };
    check(*paraboloidImgFit2d(makeImage({3, 4}, surface)), 2, 3, 1, 4, 5, 6);
    check(*paraboloidImgFit2d(makeImage({5, 5}, std::vector<float>(25, 7))), 0, 0, 0, 0, 0, 7);
    // Every plan has its own fit; what a mask leaves out has no influence, not even NaN.
    std::vector<float> planes(2 * 36);
    std::vector<unsigned char> mask(2 * 36, 1);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        planes[i] = static_cast<float>(i < 36 ? i % 6 : i / 6 % 6);
    }
    for (const std::size_t i : {0, 17, 40}) {
        planes[i] = std::numeric_limits<float>::quiet_NaN();
        mask[i] = 0;
    }
    const auto fits = multiSlice_paraboloidImgFit2d(makeImage({6, 6, 2}, planes), makeImage({6, 6, 2}, mask));
    check(*fits->getStorage({0, 0, 0}), 0, 0, 0, 1, 0, 0);
    check(*fits->getStorage({1, 0, 0}), 0, 0, 0, 0, 1, 0);
}

// A known surface and noise on 4096 x 4096 pixels.
TEST(ParaboloidOfPlans, OfLargeImages)
{
    const ImageGeometry size{4096, 4096};
    std::vector<float> values(size.nbPixels());
    std::mt19937 generator{3};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double x = static_cast<double>(i % size.x) / 4096;
        const double y = static_cast<double>(i / size.x) / 4096;
        values[i] = static_cast<float>(900 * x * x - 300 * y * y + 70 * x * y - 400 * x + 20 * y + 500 +
                                       static_cast<double>(generator() % 1000) / 20);
    }
    const auto fit = paraboloidImgFit2d(makeImage(size, values));
    EXPECT_LT(distance(*fit, Surface{size, values, nullptr}, size, 1000), 1e-9);
}

// Positions that do not determine the surface: success, whatever the coefficients.
TEST(ParaboloidOfPlans, SingularFitsSucceed)
{
    const auto row = paraboloidImgFit2d(makeImage<short>({8, 1}, {1, 2, 3, 4, 5, 6, 7, 9}));
    EXPECT_FALSE(std::isfinite(row->b));
    const std::vector<float> values(36, 3);
    for (const std::size_t set : {0, 1, 5}) {
        std::vector<unsigned char> mask(36, 0);
        for (std::size_t i = 0; i < set; ++i) {
            mask[7 * i] = 1;
        }
        const auto running = paraboloidImgFit2d_async(makeImage({6, 6}, values), makeImage({6, 6}, mask));
        EXPECT_TRUE(running->wait()) << set;
        EXPECT_NE(getAsyncProcessorOutput(running), nullptr);
    }
    EXPECT_EQ(messageOf([&] {
                  paraboloidImgFit2d(makeImage({6, 6}, values),
                                     makeImage<unsigned char>({6, 5}, std::vector<unsigned char>(30)));
              }),
              "ParaboloidImgFit2dLvl1: InOptMaskImg has 6 x 5 pixels, but InImg has 6 x 6: both need the same size");
}

// Strips and threads change no bit.
TEST(ParaboloidOfPlans, ThreadsChangeNoBit)
{
    const ImageGeometry size{1500, 1400, 2};
    const auto image = makeImage(size, randomValues<float>(size.nbPixels()));
    const auto measure = [&] {
        return multiSlice_paraboloidImgFit2d(image)->getStorage({1, 0, 0})->c +
               gaussianNoiseMsr(image)->SumAbsLaplacian;
    };
    const auto one = [&] {
        const Threads threads{1};
        return measure();
    }();
    for (const unsigned n : {2, 5}) {
        const Threads threads{n};
        EXPECT_EQ(measure(), one);
    }
}

} // namespace orlix::test
