#include <support/Masks.hpp>
#include <support/PixelTypes.hpp>
#include <support/ReferenceHistogram.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2d.hpp>
#include <framework/data/Archive.hpp>

#include <gtest/gtest.h>

#include <numeric>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

struct Classes
{
    double min;
    double max;
    double width;
    std::size_t size; ///< with the guard bin
};

template <class T>
bool hasKernel(core::eInstructionSet::domain set)
{
    return core::isAvailable(set) && (set != core::eInstructionSet::eIS_AVX || std::is_same_v<T, float>);
}

Ptr<HistogramData> makeHistogram(const Classes& classes)
{
    auto histogram = makePtr<HistogramData>();
    histogram->Min = classes.min;
    histogram->Max = classes.max;
    histogram->BinWidth = classes.width;
    histogram->Frequencies.assign(classes.size, 77); // what was there before does not count
    return histogram;
}

template <class Lvl3>
std::vector<std::uint64_t> run(const Ptr<Lvl3>& strip, const Classes& classes)
{
    const auto histogram = makeHistogram(classes);
    strip->template set<OutHistogram>(histogram);
    executeSyncRun(strip);
    return histogram->Frequencies;
}

/// Every set, with masks and without, against the reference.
template <class T>
void expectFrequencies(const std::vector<T>& values, const Classes& classes)
{
    const ImageGeometry shape{values.size(), 1};
    const auto image = makeImage(shape, values);
    const auto expected = referenceFrequencies(values, classes.min, classes.max, classes.width, classes.size);
    for (const auto set : allSets) {
        if (!hasKernel<T>(set)) {
            continue;
        }
        SCOPED_TRACE(testing::Message() << core::getName(set) << ", " << values.size() << " pixels, " << classes.min
                                        << ".." << classes.max << " by " << classes.width);
        const ForcedSet forced{set};
        const auto strip = makePtr<HistogramMsr2dLvl3>();
        EXPECT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
        strip->set<InYStrip2d>({image, 0, 1});
        EXPECT_EQ(run(strip, classes), expected);

        const auto masked = makePtr<HistogramMaskMsr2dLvl3>();
        EXPECT_TRUE(masked->init(eProcessorRulePolicy::eRP_CheckRules));
        masked->set<InYStrip2d>({image, 0, 1});
        for (const MaskPattern pattern : allMaskPatterns) {
            const auto mask = makeMask(pattern, values.size());
            masked->set<InMaskYStrip2d>({makeImage(shape, mask), 0, 1});
            EXPECT_EQ(run(masked, classes),
                      referenceFrequencies(select(values, mask), classes.min, classes.max, classes.width, classes.size))
                << static_cast<int>(pattern);
        }
    }
}

/// The bins that every type can have.
template <class T>
std::vector<Classes> makeBins()
{
    const double low = lowest<T>;
    const double high = highest<T>;
    std::vector<Classes> classes{
        {0, 100, 1, 102},  {10, 90, 7, 13}, {0, 127, 128. / 100, 101}, {5, 5, 1, 2},    {20.5, 90.25, 2.5, 29},
        {0, 100, 1000, 2}, {0, 120, 1, 50}, {3, 99, 1.1, 89},          {100, 20, 1, 3}, {0, 126, 63. / 32, 65}};
    for (std::size_t size = 2050; sizeof(T) > 1 && size < 2085; ++size) { // where eight tables become fewer
        classes.push_back({0, static_cast<double>(size - 2), 1, size});
    }
    if constexpr (sizeof(T) == 1) {
        classes.push_back({low, high, 1, 257});
    } else if constexpr (sizeof(T) == 2) {
        classes.insert(classes.end(), {{low, high, 1, 65537},
                                       {low, high, 256, 257},
                                       {low, high, 65536. / 1000, 1001},
                                       {low, high, 10, 6555},
                                       {0, 32767, 1, 32769}});
    } else if constexpr (std::is_integral_v<T>) {
        classes.insert(classes.end(), {{low, high, 0x1p24, 257},
                                       {low, high, 0x1p32 / 1000, 1001},
                                       {16777200, 16777230, 1, 32},
                                       {0, 200000, 1, 200002},
                                       {0, 1000000, 37, 27029},
                                       {1e9, 1e9 + 5000, 1, 5002}});
    } else {
        classes.insert(classes.end(), {{-1000, 1000, 2000. / 256, 257},
                                       {-1, 1, 2. / 256, 257},
                                       {0, 1, 1 / 256., 257},
                                       {-3000, 3000, 6000. / 65536, 65537},
                                       {low, high, high / 128, 257},
                                       {0.1, 0.7, 0.1, 8},
                                       {0, 100, 1e-300, 5},
                                       {7, 7, 0, 2},
                                       {0, 1e-30, 1e-14, 2},
                                       {16777217, 16777300, 0.5, 168}});
    }
    return classes;
}

} // namespace

template <class T>
class HistogramKernel : public testing::Test
{
};
TYPED_TEST_SUITE(HistogramKernel, PixelTypes);

// Over the whole type, over the bins and their borders, at lengths around the blocks.
TYPED_TEST(HistogramKernel, FindsTheClassOfEveryPixel)
{
    using T = TypeParam;
    for (const Classes& classes : makeBins<T>()) {
        for (const std::size_t size : {1, 15, 16, 33, 1000}) {
            expectFrequencies(randomValues<T>(size, 5), classes);
        }
        // Borders and their neighbours, inside and outside the range.
        std::vector<T> values;
        const double first = std::max<double>(classes.min, lowest<T>);
        for (std::size_t i = 0; i < 4000; ++i) {
            const double border = first + classes.width * static_cast<double>(i % (classes.size + 2));
            if (border > static_cast<double>(lowest<T>) + 2 && border < static_cast<double>(highest<T>) - 2) {
                const auto near = static_cast<T>(border);
                if constexpr (std::is_same_v<T, float>) {
                    values.insert(values.end(), {near, std::nextafter(near, 1e38f), std::nextafter(near, -1e38f)});
                } else {
                    values.insert(values.end(), {near, static_cast<T>(near - 1), static_cast<T>(near + 1)});
                }
            }
        }
        values.insert(values.end(), {lowest<T>, highest<T>});
        if constexpr (std::is_same_v<T, float>) {
            const float inf = std::numeric_limits<float>::infinity();
            values.insert(values.end(), {inf, -inf, std::numeric_limits<float>::quiet_NaN(), 0.f, -0.f});
        }
        expectFrequencies(values, classes);
    }
}

// Bounds that single precision cannot hold are those of the pixels as they are compared, whether few pixels are counted
// or many.
TYPED_TEST(HistogramKernel, BoundsFinerThanPixels)
{
    using T = TypeParam;
    for (const std::size_t repeats : {1, 20000}) {
        std::vector<T> values;
        for (std::size_t i = 0; i < repeats; ++i) {
            values.insert(values.end(), {static_cast<T>(100), static_cast<T>(110), static_cast<T>(120)});
        }
        expectFrequencies(values, {100.0000001, 119.9999999, 1, 22});
        expectFrequencies(values, {99.9999999, 120.0000001, 2.5, 10});
        if constexpr (sizeof(T) == 4) {
            for (T& value : values) {
                value += 8388608;
            }
            expectFrequencies(values, {8388708.4, 8388728.6, 1, 22});
        }
    }
}

// The highest bins that memory allows by default: the index of a bin and their number differ by less than single
// precision tells.
TEST(HistogramKernelFloat, ClassesBeyondSinglePrecision)
{
    const std::vector<float> values{-1, -1e-30f, -0.5f};
    const std::size_t size = (std::size_t{1} << 25) + 2;
    const auto strip = makePtr<HistogramMsr2dLvl3>();
    ASSERT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    strip->set<InYStrip2d>({makeImage({3, 1}, values), 0, 1});
    const auto frequencies = run(strip, {-1, 0, 1. / static_cast<double>(size - 1), size});
    EXPECT_EQ(std::accumulate(frequencies.begin(), frequencies.end(), std::uint64_t{0}), 3u);
    EXPECT_EQ(frequencies[0], 1u);
}

// Every value of 16 bits, in every kind of bins; enough pixels to be counted by value where that is worth while.
TEST(HistogramKernelInteger, EveryValueOf16Bits)
{
    std::vector<unsigned short> values(65536);
    std::iota(values.begin(), values.end(), static_cast<unsigned short>(0));
    for (const double width : {1., 2., 3., 10., 41., 255., 256., 1.0009765625, 655.36, 15.12109375}) {
        expectFrequencies(values, {0, 65535, width, static_cast<std::size_t>(65536 / width) + 2});
        expectFrequencies(values, {1000, 4999, width, static_cast<std::size_t>(4000 / width) + 2});
    }
}

// Labels come in runs of any length: runs within a block, across blocks, and of one pixel.
TYPED_TEST(HistogramKernel, CountsRuns)
{
    using T = TypeParam;
    for (const std::size_t longest : {1, 3, 9, 33, 100, 1000}) {
        std::vector<T> labels;
        for (std::size_t label = 0; labels.size() < 20000; ++label) {
            labels.insert(labels.end(), 1 + label * 7 % longest, static_cast<T>(label % 120));
        }
        expectFrequencies(labels, {0, 119, 1, 121});
        expectFrequencies(labels, {10, 100, 1, 92});
    }
}

// What a strip refuses, in a histogram that somebody made.
TEST(HistogramStrip, RefusesClassesThatDoNotFit)
{
    const auto bytes = makeImage<unsigned char>({2, 1}, {1, 2});
    const auto floats = makeImage<float>({2, 1}, {1, 2});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case
    {
        Ptr<const BaseImage> image;
        Classes classes;
        std::string message;
    };
    const Case cases[] = {
        {bytes, {0, 255, 1, 1}, "has no classes"},
        {bytes, {-1, 255, 1, 5}, "uint8 pixels need bounds from 0 to 255"},
        {bytes, {0, 256, 1, 5}, "ranges from 0 to 256"},
        {bytes, {nan, 255, 1, 5}, "ranges from nan to 255"},
        {bytes, {0, 255, 0, 5}, "BinWidth 0"},
        {bytes, {0, 255, -1, 5}, "BinWidth -1"},
        {bytes, {0, 255, nan, 5}, "BinWidth nan"},
        {bytes, {0, 255, 0.5, 5}, "width 0.5: at least 1"},
        {floats, {0, 1, 0, 5}, "BinWidth 0"},
        {floats, {0, 1e39, 1, 5}, "float32 pixels need"},
    };
    const auto strip = makePtr<HistogramMsr2dLvl3>();
    ASSERT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    for (const Case& each : cases) {
        strip->set<InYStrip2d>({each.image, 0, 1});
        strip->set<OutHistogram>(makeHistogram(each.classes));
        const auto result = strip->run(eSynchroType::eST_Synchronous);
        EXPECT_FALSE(result);
        EXPECT_NE(result.getMessage().find(each.message), std::string::npos) << result.getMessage();
    }
    strip->set<OutHistogram>(nullptr);
    EXPECT_NE(strip->run(eSynchroType::eST_Synchronous).getMessage().find("OutHistogram has no classes"),
              std::string::npos);
    strip->set<OutHistogram>(makeHistogram({0, 1, 0.5, 3}));
    EXPECT_TRUE(strip->run(eSynchroType::eST_Synchronous));

    // Without rules, nothing is written where there are no bins.
    const auto unruled = makePtr<HistogramMsr2dLvl3>();
    ASSERT_TRUE(unruled->init(eProcessorRulePolicy::eRP_NoRules));
    unruled->set<InYStrip2d>({floats, 0, 1});
    EXPECT_NE(unruled->run(eSynchroType::eST_Synchronous).getMessage().find("has no classes"), std::string::npos);
}

// A strip that was written to an archive, histogram and all, runs after it was read.
TEST(HistogramStrip, RunsFromAnArchive)
{
    const auto strip = makePtr<HistogramMaskMsr2dLvl3>();
    ASSERT_TRUE(strip->init(eProcessorRulePolicy::eRP_CheckRules));
    strip->set<InYStrip2d>({makeImage<unsigned char>({3, 2}, {1, 2, 3, 1, 1, 9}), 0, 2});
    strip->set<InMaskYStrip2d>({makeImage<unsigned char>({3, 2}, {1, 0, 1, 1, 1, 1}), 0, 2});
    strip->set<OutHistogram>(makeHistogram({0, 3, 1, 5}));
    data::OutputArchive archive;
    ASSERT_TRUE(archive.write("strip", strip.get()));
    data::InputArchive back{archive.str()};
    Ptr<HistogramMaskMsr2dLvl3> read;
    ASSERT_TRUE(back.read("strip", read));
    executeSyncRun(read);
    EXPECT_EQ(read->getStorage<OutHistogram>()->Frequencies, (std::vector<std::uint64_t>{0, 3, 0, 1, 0}));
}

} // namespace orlix::test
