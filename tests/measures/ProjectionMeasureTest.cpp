#include <support/Messages.hpp>
#include <support/PixelTypes.hpp>
#include <support/ReferenceProjection.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImg.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImg.hpp>

#include <gtest/gtest.h>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::eImageBufferType;

namespace
{

/// The pixel (x, y) of plane i, in an array of planes.
template <class T>
T pixelAt(const std::vector<T>& values, const ImageGeometry& size, std::size_t x, std::size_t y, std::size_t i)
{
    return values[(i * size.y + y) * size.x + x];
}

template <class T>
std::vector<T> columnOf(const std::vector<T>& values, const ImageGeometry& size, std::size_t x)
{
    std::vector<T> pixels;
    for (std::size_t y = 0; y < size.y; ++y) {
        pixels.push_back(pixelAt(values, size, x, y, 0));
    }
    return pixels;
}

template <class T>
std::vector<T> rowOf(const std::vector<T>& values, const ImageGeometry& size, std::size_t y)
{
    const auto first = values.begin() + static_cast<std::ptrdiff_t>(y * size.x);
    return {first, first + static_cast<std::ptrdiff_t>(size.x)};
}

/// The pixels of an image as doubles, in the order of memory.
std::vector<double> pixelsOf(const BaseImage& image)
{
    std::vector<double> pixels;
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (image.getType() == image::imageBufferTypeOf<T>) {
            const auto* const first = reinterpret_cast<const T*>(image.getRow(0));
            pixels.assign(first, first + image.getGeometry().nbPixels());
        }
    });
    return pixels;
}

/// Values of either sign, and NaN now and then among floats.
template <class T>
std::vector<T> makePixels(std::size_t size)
{
    auto values = randomValues<T>(size);
    if constexpr (std::is_same_v<T, float>) {
        for (std::size_t i = 5; i < size; i += 97) {
            values[i] = NAN;
        }
    }
    return values;
}

/// Whether two results differ by no more than sums do that are added in another order.
template <class T>
bool isClose(double found, double expected, const std::vector<T>& pixels, eProjStatType statistic)
{
    double sumAbs = 0;
    double sumSq = 0;
    for (const T x : pixels) {
        sumAbs += std::abs(static_cast<double>(x));
        sumSq += static_cast<double>(x) * static_cast<double>(x);
    }
    if (statistic == eProjStatType::ePST_StdDev) {
        // NaN is the root of a variance that rounding made negative.
        const auto square = [](double x) { return std::isnan(x) ? 0 : x * x; };
        return isSame(found, expected) || std::abs(square(found) - square(expected)) <= 1e-14 * sumSq;
    }
    const double scale = statistic == eProjStatType::ePST_Var ? sumSq : sumAbs;
    return isSame(found, expected) || std::abs(found - expected) <= 1e-14 * scale;
}

constexpr core::eInstructionSet::domain setsOfAllTypes[] = {
    core::eInstructionSet::eIS_Generic, core::eInstructionSet::eIS_SSE2, core::eInstructionSet::eIS_AVX2,
    core::eInstructionSet::eIS_AVX512};

} // namespace

template <class T>
class Projection : public testing::Test
{
};
TYPED_TEST_SUITE(Projection, PixelTypes);

// Every statistic of every column and row, on every set; float sums along rows may be added in another order.
TYPED_TEST(Projection, AlongXAndY)
{
    using T = TypeParam;
    for (const ImageGeometry& size : {ImageGeometry{1, 1}, {1, 40}, {40, 1}, {5, 4}, {67, 31}, {130, 300}}) {
        const auto values = makePixels<T>(size.nbPixels());
        for (const bool gaps : {false, true}) {
            const auto image = makeStrided(size, values, gaps, gaps, false);
            for (const core::eInstructionSet::domain set : allSets) {
                if (!core::isAvailable(set) || (set == core::eInstructionSet::eIS_AVX && !std::is_same_v<T, float>)) {
                    continue;
                }
                const ForcedSet forced{set};
                for (const eProjStatType statistic : allStatistics) {
                    SCOPED_TRACE(testing::Message() << toString(size) << ", " << core::getName(set) << ", statistic "
                                                    << static_cast<unsigned>(statistic));
                    const auto columns = xProjection2d(image, statistic)->Values;
                    ASSERT_EQ(columns.size(), size.x);
                    for (std::size_t x = 0; x < size.x; ++x) {
                        const double expected = projectPixels(columnOf(values, size, x), statistic, Begin::EndOfType);
                        ASSERT_TRUE(isSame(columns[x], expected)) << x << ": " << columns[x] << " for " << expected;
                    }
                    const auto rows = yProjection2d(image, statistic)->Values;
                    ASSERT_EQ(rows.size(), size.y);
                    for (std::size_t y = 0; y < size.y; ++y) {
                        const double expected = projectPixels(rowOf(values, size, y), statistic);
                        const bool inOrder = !std::is_same_v<T, float> && statistic != eProjStatType::ePST_Var &&
                                             statistic != eProjStatType::ePST_StdDev;
                        ASSERT_TRUE(inOrder ? isSame(rows[y], expected)
                                            : isClose(rows[y], expected, rowOf(values, size, y), statistic))
                            << y << ": " << rows[y] << " for " << expected;
                    }
                }
            }
        }
    }
}

// Along z and along the time, into every type, on every set: the same bits, whatever else the image has.
TYPED_TEST(Projection, AlongZAndTimeIntoEveryType)
{
    using T = TypeParam;
    for (const std::size_t n : {1, 2, 5, 33}) {
        const ImageGeometry plane{37, 3};
        const ImageGeometry size{plane.x, plane.y, n};
        const auto values = makePixels<T>(size.nbPixels());
        const auto volume = makeStrided(size, values, n % 2 == 1, false, n == 5);
        const ImageGeometry times{plane.x, plane.y, 1, 1, n};
        const auto sequence = makeImage(times, values);
        for (const core::eInstructionSet::domain set : setsOfAllTypes) {
            if (!core::isAvailable(set)) {
                continue;
            }
            const ForcedSet forced{set};
            for (const eProjStatType statistic : allStatistics) {
                image::forEachPixelType([&]<class U>(std::type_identity<U>) {
                    SCOPED_TRACE(testing::Message() << n << " planes, " << core::getName(set) << ", statistic "
                                                    << static_cast<unsigned>(statistic) << " into "
                                                    << getName(image::imageBufferTypeOf<U>));
                    const auto output = BaseImage::create(image::imageBufferTypeOf<U>, plane);
                    EXPECT_EQ(zProjectionImg(volume, statistic, output), output);
                    const auto alongTime = BaseImage::create(image::imageBufferTypeOf<U>, plane);
                    EXPECT_EQ(seqProjectionImg(sequence, statistic, alongTime), alongTime);
                    const auto pixels = pixelsOf(*output);
                    const auto pixelsToo = pixelsOf(*alongTime);
                    for (std::size_t i = 0; i < plane.nbPixels(); ++i) {
                        std::vector<T> column;
                        for (std::size_t z = 0; z < n; ++z) {
                            column.push_back(values[z * plane.nbPixels() + i]);
                        }
                        const double expected = toPixelType<U>(projectPixels(column, statistic, Begin::FirstPixel));
                        ASSERT_TRUE(isSame(pixels[i], expected)) << i << ": " << pixels[i] << " for " << expected;
                        ASSERT_TRUE(isSame(pixelsToo[i], expected)) << i;
                    }
                });
            }
        }
    }
}

// Cuts into strips, by rows or columns, come to the same; so does any number of threads, to the bit.
TYPED_TEST(Projection, OfManyStrips)
{
    using T = TypeParam;
    const ImageGeometry size{150, 700};
    const auto values = randomValues<T>(size.nbPixels());
    const auto image = makeImage(size, values);
    for (const eProjStatType statistic : allStatistics) {
        SCOPED_TRACE(static_cast<unsigned>(statistic));
        const auto run = [&]<class Lvl1>(std::type_identity<Lvl1>, unsigned threads) {
            const Threads scope{threads};
            auto processor = makePtr<Lvl1>();
            EXPECT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
            processor->setDispatchPolicy({.stripBytes = 10000});
            processor->template set<attr::InSubImg2d>(image);
            processor->template set<attr::InProjStatType>(statistic);
            executeSyncRun(processor);
            return processor->template getStorage<attr::OutProjStat>()->Values;
        };
        const auto columns = run(std::type_identity<XProjection2dLvl1>{}, 1);
        const auto rows = run(std::type_identity<YProjection2dLvl1>{}, 1);
        EXPECT_EQ(columns, run(std::type_identity<XProjection2dLvl1>{}, 5));
        EXPECT_EQ(rows, run(std::type_identity<YProjection2dLvl1>{}, 5));
        ASSERT_EQ(columns.size(), size.x);
        ASSERT_EQ(rows.size(), size.y);
        for (std::size_t x = 0; x < size.x; ++x) {
            const auto column = columnOf(values, size, x);
            EXPECT_TRUE(isClose(columns[x], projectPixels(column, statistic), column, statistic)) << columns[x];
        }
        for (std::size_t y = 0; y < size.y; ++y) {
            const auto row = rowOf(values, size, y);
            EXPECT_TRUE(isClose(rows[y], projectPixels(row, statistic), row, statistic)) << rows[y];
        }
    }
}

TEST(ProjectionOfStacks, KeepsTheOtherAxes)
{
    // Every pixel tells where it is.
    const ImageGeometry size{3, 2, 4, 2, 3};
    std::vector<unsigned short> values;
    for (std::size_t i = 0; i < size.nbPixels(); ++i) {
        values.push_back(static_cast<unsigned short>(i));
    }
    const auto image = makeImage(size, values);
    const auto flat = zProjectionImg(image, eProjStatType::ePST_Min);
    EXPECT_EQ(flat->getGeometry(), (ImageGeometry{3, 2, 1, 2, 3}));
    EXPECT_EQ(flat->getType(), eImageBufferType::eIBT_UInt16);
    const auto single = seqProjectionImg(image, eProjStatType::ePST_Max);
    EXPECT_EQ(single->getGeometry(), (ImageGeometry{3, 2, 4, 2, 1}));
    for (std::size_t c = 0; c < size.c; ++c) {
        for (std::size_t y = 0; y < size.y; ++y) {
            for (std::size_t x = 0; x < size.x; ++x) {
                const auto value = [&](std::size_t z, std::size_t t) {
                    return static_cast<unsigned>((((t * size.c + c) * size.z + z) * size.y + y) * size.x + x);
                };
                for (std::size_t t = 0; t < size.t; ++t) {
                    EXPECT_EQ(reinterpret_cast<const unsigned short*>(flat->getRow(y, 0, c, t))[x], value(0, t));
                }
                for (std::size_t z = 0; z < size.z; ++z) {
                    EXPECT_EQ(reinterpret_cast<const unsigned short*>(single->getRow(y, z, c, 0))[x], value(z, 2));
                }
            }
        }
    }
    const auto run = seqProjectionImg_async(image, eProjStatType::ePST_Max);
    ASSERT_TRUE(run->wait());
    EXPECT_EQ(pixelsOf(*getAsyncProcessorOutput(run)), pixelsOf(*single));
}

// The output may be any plane of the input: it is written only where nothing is read any more.
TEST(ProjectionOfStacks, IntoAPlaneOfTheInput)
{
    const ImageGeometry size{40, 40, 4};
    const auto values = randomValues<unsigned char>(size.nbPixels());
    for (const eProjStatType statistic : allStatistics) {
        const auto expected = pixelsOf(*zProjectionImg(makeImage(size, values), statistic));
        for (unsigned z = 0; z < size.z; ++z) {
            const auto image = makeImage(size, values);
            const auto plane = image->getSubImage({z, 0, 0}, image::ePlanKind::ePK_Plan2d);
            EXPECT_EQ(pixelsOf(*zProjectionImg(image, statistic, plane)), expected)
                << static_cast<unsigned>(statistic) << " into plane " << z;
        }
    }
}

TEST(ProjectionOfStacks, SmallCasesByHand)
{
    struct Case
    {
        std::vector<unsigned char> pixels;
        eProjStatType statistic;
        double rounded;
        float exact;
    };
    using enum eProjStatType;
    const Case cases[] = {
        {{10, 11}, ePST_Mean, 11, 10.5f},      {{10, 11}, ePST_Median, 11, 11},   {{10, 11}, ePST_Sum, 21, 21},
        {{200, 200, 200}, ePST_Sum, 255, 600}, {{1, 2, 3, 4}, ePST_Median, 3, 3}, {{1, 2, 3, 4}, ePST_Mean, 3, 2.5f},
        {{1, 2, 3, 4}, ePST_Var, 1, 1.25f},    {{7}, ePST_StdDev, 0, 0},
    };
    for (const Case& c : cases) {
        const ImageGeometry size{1, 1, c.pixels.size()};
        const auto volume = makeImage(size, c.pixels);
        EXPECT_EQ(pixelsOf(*zProjectionImg(volume, c.statistic))[0], c.rounded);
        const auto output = BaseImage::create(eImageBufferType::eIBT_Float32, {1, 1});
        EXPECT_EQ(pixelsOf(*zProjectionImg(volume, c.statistic, output))[0], c.exact);
    }
    // Values that cancel: a variance of nearly nothing beside squares of 1e14, and never clamped.
    const auto column = makeImage<float>({1, 3}, {1e7f, 1e7f + 1, 1e7f - 1});
    EXPECT_NEAR(xProjection2d(column, ePST_Var)->Values[0], 2. / 3, 0.1);
}

TEST(ProjectionOfStacks, WhatIsRefused)
{
    const auto stack = makeImage<unsigned char>({2, 2, 2, 1, 3}, std::vector<unsigned char>(24));
    const auto mean = eProjStatType::ePST_Mean;
    const auto expectText = [](const std::string& message, const std::string& part) {
        EXPECT_NE(message.find(part), std::string::npos) << message;
    };
    expectText(messageOf([&] { xProjection2d(stack, mean); }), "one 2d plan is needed");
    expectText(messageOf([&] { yProjection2d(stack, mean); }), "one 2d plan is needed");
    const auto create = [](const ImageGeometry& size, eImageBufferType type = eImageBufferType::eIBT_UInt8) {
        return BaseImage::create(type, size);
    };
    expectText(messageOf([&] {
                   zProjectionImg(stack, mean, create({2, 2, 1, 1, 1}));
               }),
               "OutImg2d is an image of 2 x 2: one of 2 x 2, 3 times is "
               "needed for InImg3d of 2 x 2, 2 planes, 3 times");
    expectText(messageOf([&] {
                   seqProjectionImg(stack, mean, create({2, 2, 2, 1, 3}));
               }),
               "one of 2 x 2, 2 planes is needed");
    expectText(messageOf([&] {
                   seqProjectionImg(stack, mean, create({2, 2, 2}, eImageBufferType::eIBT_Binary));
               }),
               "OutSingleImg does not take a binary image");
    expectText(messageOf([&] { zProjectionImg(create({2, 2}, eImageBufferType::eIBT_Binary), mean); }), "binary");
    expectText(messageOf([&] { xProjection2d(create({0, 2}), mean); }), "is empty");
    expectText(messageOf([&] { seqProjectionImg(nullptr, mean); }), "InSeqImg is not set");

    auto noStatistic = makePtr<XProjection2dLvl1>();
    EXPECT_TRUE(noStatistic->init(eProcessorRulePolicy::eRP_CheckRules));
    noStatistic->set<attr::InSubImg2d>(create({2, 2}));
    expectText(messageOf([&] { executeSyncRun(noStatistic); }), "InProjStatType is not set");
    auto noOutput = makePtr<SeqProjectionMinImgLvl3>();
    EXPECT_TRUE(noOutput->init(eProcessorRulePolicy::eRP_CheckRules));
    noOutput->set<attr::InSeqYStrip2d>({create({2, 2, 1, 1, 3}), 0, 2});
    expectText(messageOf([&] { executeSyncRun(noOutput); }), "OutSingleYStrip2d is not set");
}

// What was set travels through copies and archives; a run's own output is made anew, for another image as well.
TEST(ProjectionOfStacks, ProcessorsAreCopiedAndRunAgain)
{
    const auto image = makeImage<short>({2, 1, 1, 1, 2}, {-5, 6, 9, -7});
    auto processor = makePtr<SeqProjectionImgLvl1>();
    EXPECT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    processor->set<attr::InSeqImg>(image);
    processor->set<attr::InProjStatType>(eProjStatType::ePST_Sum);
    executeSyncRun(processor);
    EXPECT_EQ(pixelsOf(*getAsyncProcessorOutput(processor)), (std::vector<double>{4, -1}));

    data::OutputArchive archive;
    ASSERT_TRUE(archive.write("it", processor.get()));
    data::InputArchive back{archive.str()};
    Ptr<SeqProjectionImgLvl1> read;
    ASSERT_TRUE(back.read("it", read));
    EXPECT_EQ(read->getStorage<attr::InProjStatType>(), eProjStatType::ePST_Sum);
    const auto copy = boost::static_pointer_cast<SeqProjectionImgLvl1>(processor->duplicateShared());
    for (const auto& other : {read, copy}) {
        other->set<attr::InSeqImg>(makeImage<float>({1, 1, 1, 1, 2}, {1.5f, 2}));
        executeSyncRun(other);
        EXPECT_EQ(pixelsOf(*getAsyncProcessorOutput(other)), std::vector<double>{3.5});
    }
    EXPECT_EQ(pixelsOf(*getAsyncProcessorOutput(processor)), (std::vector<double>{4, -1}));
}

} // namespace orlix::test
