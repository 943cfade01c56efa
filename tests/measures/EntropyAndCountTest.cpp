#include <support/Messages.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2d.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numeric>
#include <set>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

template <class T>
Ptr<BaseImage> makeRow(const std::vector<T>& values)
{
    return makeImage({values.size(), 1}, values);
}

} // namespace

TEST(Entropy, OfKnownDistributions)
{
    const double ln2 = 0.6931471805599453;
    std::vector<unsigned char> bytes(1024);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    std::vector<unsigned short> words(65536);
    std::iota(words.begin(), words.end(), static_cast<unsigned short>(0));
    std::vector<float> unit(512);
    for (std::size_t i = 0; i < unit.size(); ++i) {
        unit[i] = static_cast<float>(i % 257) / 256;
    }
    unit.resize(257); // 256 classes, the last of which has two values
    EXPECT_NEAR(globalEntropyMsr2d(makeRow(bytes))->Entropy, 5.545177444479562, 1e-13);
    EXPECT_NEAR(globalEntropyMsr2d(makeRow(words))->Entropy, 16 * ln2, 1e-10); // of 65536 terms
    EXPECT_NEAR(globalEntropyMsr2d(makeRow(unit))->Entropy, 255. / 257 * std::log(257.) + 2. / 257 * std::log(257. / 2),
                1e-12);
    EXPECT_EQ(globalEntropyMsr2d(makeRow(std::vector<short>(50, -3)))->Entropy, 0);
    EXPECT_EQ(globalEntropyMsr2d(makeRow(std::vector<float>(50, 0.1f)))->Entropy, 0);
    for (const int other : {1, 9, 30000}) {
        EXPECT_NEAR(globalEntropyMsr2d(makeRow<int>({0, other, 0, other, other, 0}))->Entropy, ln2, 1e-15);
        EXPECT_NEAR(globalEntropyMsr2d(makeRow<float>({0, static_cast<float>(other) * 1e-3f}))->Entropy, ln2, 1e-15);
    }
}

// Parameters are for their plan; the others have their defaults.
TEST(Entropy, TakesParametersPlanByPlan)
{
    std::vector<unsigned char> values(3 * 256);
    std::iota(values.begin(), values.end(), static_cast<unsigned char>(0));
    const auto image = makeImage({16, 16, 3}, values);
    const double all = 5.545177444479562;
    const auto halves = attr::createHistoMsrParamsWithBinWidth(0, 255, 128);
    EXPECT_NEAR(globalEntropyMsr2d(image, halves)->Entropy, std::log(2), 1e-15);
    const auto single = globalEntropyMsr2d_async(image, halves);
    EXPECT_TRUE(single->wait());
    EXPECT_NEAR(getAsyncProcessorOutput(single)->Entropy, std::log(2), 1e-15);

    const auto some = makePtr<PlanIndexedHistoMsrParams>();
    some->insert({1, 0, 0}, halves);
    some->insert({2, 0, 0}, attr::createHistoMsrParamsWithBinWidth(254.5, 254.5, 1)); // where no pixel is
    const auto plans = multiSlice_globalEntropyMsr2d(image, some);
    EXPECT_NEAR(plans->getStorage({0, 0, 0})->Entropy, all, 1e-13);
    EXPECT_NEAR(plans->getStorage({1, 0, 0})->Entropy, std::log(2), 1e-15);
    EXPECT_EQ(plans->getStorage({2, 0, 0})->Entropy, 0);
    EXPECT_NEAR(multiSlice_globalEntropyMsr2d(image)->getStorage({2, 0, 0})->Entropy, all, 1e-13);
    EXPECT_NEAR(globalEntropyMsr2d(image, nullptr)->Entropy, all, 1e-13);
}

TEST(Entropy, FailsWhereTheHistogramDoes)
{
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_NE(messageOf([&] {
                  globalEntropyMsr2d(makeRow<float>({0, inf}));
              }).find("ranges from 0 to inf"),
              std::string::npos);
    const auto image = makeRow<unsigned char>({1, 2});
    EXPECT_NE(messageOf([&] { globalEntropyMsr2d(image, attr::createHistoMsrParamsWithBinWidth(-1)); }).find("-1"),
              std::string::npos);
}

TEST(Counting, LeavesOutTheFirstClass)
{
    const std::pair<Ptr<const BaseImage>, std::uint64_t> cases[] = {
        {makeRow<unsigned short>({0, 1, 2, 5, 5, 0}), 3},
        {makeRow<unsigned char>({3, 4, 9}), 2}, // no background: the lowest label is left out
        {makeRow<unsigned int>({0, 0, 0}), 0},
        {makeRow<int>({-5, 0, 7}), 2},
        {makeRow<unsigned int>({0, 16777215, 3}), 2},
        {makeRow<signed char>({-128, 127, 0}), 2},
    };
    for (const auto& [image, objects] : cases) {
        EXPECT_EQ(counting2dMsr(image)->Value, objects);
        EXPECT_EQ(counting3dMsr(image)->Value, objects);
    }
}

// A volume of many labels, in runs and one by one, in plans and channels, on every set.
TEST(Counting, FindsEveryLabel)
{
    const ImageGeometry shape{512, 300, 4, 2};
    const std::size_t plan = shape.x * shape.y;
    const auto make = [&](auto zero, unsigned labels, std::size_t longest) {
        std::vector<decltype(zero)> values;
        std::mt19937 generator{labels};
        while (values.size() < shape.nbPixels()) {
            const unsigned label = generator() % 2 * (generator() % labels);
            values.insert(values.end(), 1 + generator() % longest, static_cast<decltype(zero)>(label));
        }
        values.resize(shape.nbPixels());
        values[0] = 0;
        return values;
    };
    const auto expectCounts = [&](const auto& values) {
        const auto image = makeImage(shape, values);
        const auto plans = multiSlice_counting2dMsr(image);
        const auto volumes = multiSlice_counting3dMsr(image);
        ASSERT_EQ(plans->size(), 8u);
        ASSERT_EQ(volumes->size(), 2u);
        const auto count = [&](std::size_t first, std::size_t size) {
            const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
            const std::set labels(begin, begin + static_cast<std::ptrdiff_t>(size));
            return labels.size() - 1;
        };
        EXPECT_EQ(plans->getStorage({2, 1, 0})->Value, count(6 * plan, plan));
        EXPECT_EQ(volumes->getStorage({0, 1, 0})->Value, count(4 * plan, 4 * plan));
    };
    for (const auto set : allSets) {
        if (core::isAvailable(set) && set != core::eInstructionSet::eIS_AVX) {
            SCOPED_TRACE(core::getName(set));
            const ForcedSet forced{set};
            expectCounts(make(static_cast<unsigned short>(0), 60000, 100));
            expectCounts(make(0u, 200000, 40));
            expectCounts(make(0u, 70000, 1));
        }
    }
}

TEST(Counting, RefusesWhatIsNoLabelImage)
{
    EXPECT_EQ(messageOf([] {
                  counting2dMsr(makeRow<float>({0, 1}));
              }),
              "Counting2dMsrLvl1: InLabelImg does not take a float32 image: convert it to one of uint8, int8, uint16, "
              "int16, uint32, int32");
    core::settings::setMemoryLimit(std::size_t{300} << 20);
    EXPECT_NE(messageOf([&] {
                  counting3dMsr(makeRow<unsigned int>({0, 0xffffffff}));
              }).find("the labels range from 0 to 4294967295, which needs 513 MiB, and the memory limit is 300 MiB"),
              std::string::npos);
    EXPECT_EQ(counting3dMsr(makeRow<unsigned int>({0, 0x80000000, 3}))->Value, 2u);
    core::settings::setMemoryLimit(0);
}

// Where single precision takes several labels for one, and where there are few of many.
TEST(Counting, TellsHighLabelsApart)
{
    const ImageGeometry shape{700, 300, 3};
    const auto expectCount = [&](const auto& labels) {
        const auto image = makeImage(shape, labels);
        const std::set all(labels.begin(), labels.end());
        const std::size_t plan = shape.x * shape.y;
        const std::set ofFirst(labels.begin(), labels.begin() + static_cast<std::ptrdiff_t>(plan));
        for (const unsigned threads : {1u, 3u}) {
            const Threads number{threads};
            EXPECT_EQ(counting3dMsr(image)->Value, all.size() - 1);
            EXPECT_EQ(counting2dMsr(image)->Value, ofFirst.size() - 1);
            EXPECT_EQ(counting3dMsr(makeStrided(shape, labels, true, true, true))->Value, all.size() - 1);
        }
    };
    expectCount(randomValues<unsigned int>(shape.nbPixels())); // sparse, all over
    expectCount(randomValues<int>(shape.nbPixels()));
    std::vector<unsigned int> dense(shape.nbPixels());
    for (std::size_t i = 0; i < dense.size(); ++i) {
        dense[i] = static_cast<unsigned int>((1u << 24) - 1000 + i / 7 % 90000);
    }
    expectCount(dense);
}

} // namespace orlix::test
