#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsr.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::eImageBufferType;
using Image = Ptr<const BaseImage>;

namespace
{

constexpr core::eInstructionSet::domain setsOfPairs[] = {
    core::eInstructionSet::eIS_Generic, core::eInstructionSet::eIS_SSE2, core::eInstructionSet::eIS_AVX2,
    core::eInstructionSet::eIS_AVX512};

/// Pearson's r in long double, pixel by pixel.
template <class A, class B>
double correlate(const std::vector<A>& a, const std::vector<B>& b)
{
    long double meanA = 0;
    long double meanB = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        meanA += static_cast<long double>(a[i]) / static_cast<long double>(a.size());
        meanB += static_cast<long double>(b[i]) / static_cast<long double>(a.size());
    }
    long double squaresA = 0;
    long double squaresB = 0;
    long double products = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const long double da = static_cast<long double>(a[i]) - meanA;
        const long double db = static_cast<long double>(b[i]) - meanB;
        squaresA += da * da;
        squaresB += db * db;
        products += da * db;
    }
    return static_cast<double>(products / std::sqrt(squaresA * squaresB));
}

/// A smooth scene with noise, over most of the range of the type (of floats, of 16 bits).
template <class T>
std::vector<T> makeScene(const ImageGeometry& size, unsigned seed)
{
    constexpr bool isFloat = std::is_same_v<T, float>;
    const double low = isFloat ? 0 : static_cast<double>(lowest<T>);
    const double range = isFloat ? 65535 : static_cast<double>(highest<T>) - low;
    std::mt19937 generator{seed};
    std::normal_distribution<double> noise{0, 0.05};
    std::vector<T> values(size.nbPixels());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double x = static_cast<double>(i % size.x) / static_cast<double>(size.x);
        const double y = static_cast<double>(i / size.x) / static_cast<double>(size.y);
        const double scene = 0.5 + 0.3 * std::sin(9 * x + 1) * std::cos(5 * y) + noise(generator);
        values[i] = static_cast<T>(low + range * std::clamp(scene, 0., 1.));
    }
    return values;
}

double ncc(const Image& a, const Image& b)
{
    return normalizedCrossCorrelationMsr2d(a, b)->Correlation;
}

double pearson(const Image& a, const Image& b)
{
    return pearsonCorrelationCoefficient2d(a, b)->PearsonCC;
}

/// Straight-line squared differences.
template <class T>
long double sumSquaredDifferences(const std::vector<T>& a, const std::vector<T>& b)
{
    long double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const long double d = static_cast<long double>(a[i]) - static_cast<long double>(b[i]);
        sum += d * d;
    }
    return sum;
}

} // namespace

template <class T>
class Correlation : public testing::Test
{
};
TYPED_TEST_SUITE(Correlation, PixelTypes);

// Every pair of types, on every set, in any layout: the same bits, and those of the formula.
TYPED_TEST(Correlation, OfEveryPairOfTypes)
{
    using T = TypeParam;
    const ImageGeometry size{131, 17};
    const auto first = makeScene<T>(size, 1);
    image::forEachPixelType([&]<class U>(std::type_identity<U>) {
        SCOPED_TRACE(getName(image::imageBufferTypeOf<U>));
        const auto second = makeScene<U>(size, 2);
        const double r = correlate(first, second);
        const auto a = makeImage(size, first);
        const auto b = makeStrided(size, second, true, false, false);
        double nccBits = 0;
        double pearsonBits = 0;
        for (const core::eInstructionSet::domain set : setsOfPairs) {
            if (!core::isAvailable(set)) {
                continue;
            }
            const ForcedSet forced{set};
            SCOPED_TRACE(core::getName(set));
            EXPECT_NEAR(ncc(a, b), r, 1e-6);
            EXPECT_NEAR(pearson(a, b) / static_cast<double>(size.nbPixels()), r, 1e-12);
            // The statistics of floats have bits of their own in the generic set.
            if (set != core::eInstructionSet::eIS_Generic) {
                nccBits = nccBits == 0 ? ncc(a, b) : nccBits;
                pearsonBits = pearsonBits == 0 ? pearson(a, b) : pearsonBits;
                EXPECT_EQ(ncc(a, b), nccBits);
                EXPECT_EQ(pearson(a, b), pearsonBits);
            }
        }
    });
}

// Single-precision sums are no longer than a row, in 32 lanes: of wide rows as well they are right to 1e-5.
TYPED_TEST(Correlation, OfWideRows)
{
    using T = TypeParam;
    const ImageGeometry size{16384, 40};
    const auto first = makeScene<T>(size, 3);
    const auto second = makeScene<unsigned short>(size, 4);
    EXPECT_NEAR(ncc(makeImage(size, first), makeImage(size, second)), correlate(first, second), 1e-6);
    // Far from zero, where single precision has few digits left for the deviations.
    auto shifted = makeScene<float>(size, 5);
    for (float& x : shifted) {
        x += 1e6f;
    }
    EXPECT_NEAR(ncc(makeImage(size, first), makeImage(size, shifted)), correlate(first, shifted), 1e-5);
}

TYPED_TEST(Correlation, DifferencesAreExact)
{
    using T = TypeParam;
    for (const ImageGeometry& size : {ImageGeometry{1, 1}, {3, 5}, {67, 9}, {400, 300}}) {
        const auto first = randomValues<T>(size.nbPixels(), 1);
        auto second = randomValues<T>(size.nbPixels(), 2);
        if constexpr (std::is_integral_v<T>) {
            second.assign(second.size(), size.x == 400 ? lowest<T> : second[0]);
            second[0] = highest<T>;
        }
        const long double expected = sumSquaredDifferences(first, second);
        for (const bool gaps : {false, true}) {
            for (const core::eInstructionSet::domain set : setsOfPairs) {
                if (!core::isAvailable(set)) {
                    continue;
                }
                const ForcedSet forced{set};
                SCOPED_TRACE(testing::Message() << toString(size) << ", " << core::getName(set));
                const auto found = similarityMsr(makeImage(size, first), makeStrided(size, second, gaps, false, false));
                EXPECT_EQ(found->NbPixels, size.nbPixels());
                if (std::is_integral_v<T>) {
                    EXPECT_EQ(found->SumSquaredDiff, static_cast<double>(expected));
                } else {
                    EXPECT_NEAR(found->SumSquaredDiff, static_cast<double>(expected),
                                1e-13 * static_cast<double>(expected));
                }
                EXPECT_EQ(found->MSE, found->SumSquaredDiff / static_cast<double>(size.nbPixels()));
                EXPECT_NEAR(found->PSNR, 20 * std::log10(255) - 10 * std::log10(found->MSE), 1e-9);
            }
        }
    }
}

TEST(CorrelationOfPlans, KnownCases)
{
    const ImageGeometry size{50, 40};
    const auto scene = makeScene<short>(size, 1);
    const auto image = makeImage(size, scene);
    const auto transformed = [&](auto change) {
        std::vector<float> values;
        for (const short x : scene) {
            values.push_back(change(static_cast<float>(x)));
        }
        return makeImage(size, values);
    };
    struct Case
    {
        const char* name;
        Image other;
        double r;
    };
    const auto n = static_cast<double>(size.nbPixels());
    for (const auto& [name, other, r] :
         {Case{"itself", image, 1}, Case{"gain and offset", transformed([](float x) { return 3 * x + 7; }), 1},
          Case{"its negation", transformed([](float x) { return -x; }), -1}}) {
        EXPECT_NEAR(ncc(image, other), r, 1e-6) << name;
        EXPECT_NEAR(pearson(image, other), r * n, 1e-10 * n) << name;
    }
    const Image constant = makeImage(size, std::vector<short>(size.nbPixels(), 7));
    EXPECT_TRUE(std::isnan(ncc(image, constant)));
    EXPECT_TRUE(std::isnan(ncc(constant, image)));
    EXPECT_EQ(pearson(image, constant), 0);
    EXPECT_EQ(pearson(constant, constant), 0);
    // Constants whose rounded sums have a deviation that is none.
    const ImageGeometry large{50, 50, 10};
    const Image noise = makeImage(large, makeScene<float>(large, 2));
    for (const float x : {0.1f, 1e-7f, 12345.67f, -3e30f}) {
        const Image same = makeImage(large, std::vector<float>(large.nbPixels(), x));
        const Image whole = makeImage(large, std::vector<unsigned>(large.nbPixels(), 4123456789u));
        for (const Image& flat : {same, whole}) {
            EXPECT_EQ(pearsonCorrelationCoefficient3d(flat, noise)->PearsonCC, 0) << x;
            EXPECT_EQ(pearson(noise, flat), 0) << x;
            EXPECT_TRUE(std::isnan(normalizedCrossCorrelationMsr3d(flat, noise)->Correlation)) << x;
        }
    }
}

// A strip that is constant at the plan's mean makes the plan's value NaN; one that is constant elsewhere does not.
TEST(CorrelationOfPlans, ConstantStrips)
{
    const ImageGeometry size{16, 4};
    const auto run = [&](const std::vector<unsigned char>& values, std::size_t stripBytes) {
        auto processor = makePtr<NormalizedCrossCorrelationMsr2dLvl2>();
        EXPECT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
        processor->setDispatchPolicy({.stripBytes = stripBytes});
        processor->set<InSubImg2d1>(makeImage(size, values));
        processor->set<InSubImg2d2>(makeImage(size, makeScene<short>(size, 1)));
        auto record = makePtr<NCCResult>();
        record->SumSquaredDev2 = 42;
        processor->set<OutNCCResult>(record);
        executeSyncRun(processor);
        EXPECT_EQ(record->SumSquaredDev2, 42); // a merge leaves it as it is
        double squares = 0;
        const auto second = makeScene<short>(size, 1);
        const double mean = std::accumulate(second.begin(), second.end(), 0.) / static_cast<double>(second.size());
        for (const short x : second) {
            squares += (x - mean) * (x - mean);
        }
        EXPECT_NEAR(record->SumSquaredDev1, squares, 1e-5 * squares); // on purpose, that of image 2
        return record->Correlation;
    };
    std::vector<unsigned char> atMean;
    std::vector<unsigned char> elsewhere;
    for (std::size_t y = 0; y < size.y; ++y) {
        for (std::size_t x = 0; x < size.x; ++x) {
            atMean.push_back(static_cast<unsigned char>(y == 2 ? 10 : x % 2 == 0 ? 8 : 12));
            elsewhere.push_back(static_cast<unsigned char>(y == 2 ? 200 : x % 2 == 0 ? 8 : 12));
        }
    }
    EXPECT_FALSE(std::isnan(run(atMean, 1 << 20)));
    EXPECT_TRUE(std::isnan(run(atMean, size.x)));
    EXPECT_NEAR(run(elsewhere, size.x), run(elsewhere, 1 << 20), 1e-6);
}

TEST(CorrelationOfPlans, OneResultPerPlanOrVolume)
{
    const ImageGeometry size{40, 30, 3, 2, 2};
    const auto first = makeScene<unsigned char>(size, 1);
    const auto second = makeScene<float>(size, 2);
    const auto a = makeImage(size, first);
    const auto b = makeImage(size, second);
    for (const auto kind : {image::ePlanKind::ePK_Plan2d, image::ePlanKind::ePK_Volume3d}) {
        const bool flat = kind == image::ePlanKind::ePK_Plan2d;
        const image::PlanRange plans{size, kind};
        const std::size_t pixels = size.nbPixels() / plans.size();
        const auto nccs =
            flat ? multiSlice_normalizedCrossCorrelationMsr2d(a, b) : multiSlice_normalizedCrossCorrelationMsr3d(a, b);
        const auto pearsons =
            flat ? multiSlice_pearsonCorrelationCoefficient2d(a, b) : multiSlice_pearsonCorrelationCoefficient3d(a, b);
        ASSERT_EQ(nccs->size(), plans.size());
        ASSERT_EQ(pearsons->size(), plans.size());
        for (std::size_t i = 0; i < plans.size(); ++i) {
            const auto part = [&](const auto& values) {
                const auto begin = values.begin() + static_cast<std::ptrdiff_t>(i * pixels);
                return std::vector(begin, begin + static_cast<std::ptrdiff_t>(pixels));
            };
            const double r = correlate(part(first), part(second));
            EXPECT_NEAR(nccs->getElement(i)->Correlation, r, 1e-6);
            EXPECT_NEAR(pearsons->getElement(i)->PearsonCC, r * static_cast<double>(pixels), 1e-9);
        }
    }
    const auto run = multiSlice_pearsonCorrelationCoefficient3d_async(a, b);
    ASSERT_TRUE(run->wait());
    EXPECT_EQ(getAsyncProcessorMultiSliceOutput(run)->size(), 4u);
    const auto single = normalizedCrossCorrelationMsr3d_async(a, b);
    ASSERT_TRUE(single->wait());
    EXPECT_EQ(getAsyncProcessorOutput(single)->Correlation, normalizedCrossCorrelationMsr3d(a, b)->Correlation);
}

TEST(CorrelationOfPlans, ThreadsChangeNoBit)
{
    const ImageGeometry size{700, 2000};
    const auto a = makeImage(size, makeScene<unsigned short>(size, 1));
    const auto b = makeImage(size, makeScene<unsigned short>(size, 2));
    const auto results = [&](unsigned threads) {
        const Threads scope{threads};
        return std::vector{ncc(a, b), pearson(a, b), similarityMsr(a, b)->SumSquaredDiff};
    };
    EXPECT_EQ(results(1), results(7));
}

TEST(Similarity, KnownCases)
{
    struct Case
    {
        const char* name;
        Image first;
        Image second;
        double mse;
        double psnr;
    };
    const ImageGeometry stack{5, 4, 2, 1, 3};
    const auto filled = [](const ImageGeometry& size, auto value) {
        return makeImage(size, std::vector<decltype(value)>(size.nbPixels(), value));
    };
    const auto noise = makeImage(stack, randomValues<int>(stack.nbPixels()));
    const Case cases[] = {
        {"identical", noise, noise, 0, highest<double>},
        {"8 bits, 1 apart", filled(stack, static_cast<unsigned char>(7)), filled(stack, static_cast<unsigned char>(8)),
         1, 48.1308036086791},
        {"16 bits, 1000 apart", filled(stack, static_cast<unsigned short>(5000)),
         filled(stack, static_cast<unsigned short>(4000)), 1e6, -11.869196391320894},
        {"the ends of 32 bits", filled({1, 1}, lowest<int>), filled({1, 1}, highest<int>), 4294967295. * 4294967295.,
         -144.52839361424654},
    };
    for (const Case& c : cases) {
        const auto found = similarityMsr(c.first, c.second);
        EXPECT_EQ(found->NbPixels, c.first->getGeometry().nbPixels()) << c.name; // all plans together
        EXPECT_EQ(found->MSE, c.mse) << c.name;
        EXPECT_NEAR(found->PSNR, c.psnr, 1e-8 * std::abs(c.psnr)) << c.name;
    }
}

TEST(Similarity, WhatIsRefused)
{
    const auto create = [](const ImageGeometry& size, eImageBufferType type = eImageBufferType::eIBT_UInt8) {
        return BaseImage::create(type, size);
    };
    const Image flat = create({3, 2});
    const auto expectText = [](const std::string& message, const std::string& part) {
        EXPECT_NE(message.find(part), std::string::npos) << message;
    };
    const std::string sizes = "InImg2 has 3 x 3 pixels, but InImg1 has 3 x 2";
    expectText(messageOf([&] { ncc(flat, create({3, 3})); }), sizes);
    expectText(messageOf([&] { pearson(flat, create({3, 3})); }), sizes);
    expectText(messageOf([&] { similarityMsr(flat, create({3, 3})); }), sizes);
    expectText(messageOf([&] { normalizedCrossCorrelationMsr3d(flat, create({3, 2, 2})); }), "InImg3d2 has");
    expectText(messageOf([&] {
                   similarityMsr(flat, create({3, 2}, eImageBufferType::eIBT_Int8));
               }),
               "InImg2 is a int8 image, but InImg1 a uint8 image");
    expectText(messageOf([&] { ncc(flat, create({3, 2}, eImageBufferType::eIBT_Binary)); }), "binary");
    expectText(messageOf([&] { similarityMsr(create({0, 2}), create({0, 2})); }), "is empty");
    expectText(messageOf([&] { pearson(flat, nullptr); }), "InImg2 is not set");
}

} // namespace orlix::test
