#include <support/Messages.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator3d/KernelDensityEstimator3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsr.hpp>
#include <framework/core/Random.hpp>

#include <gtest/gtest.h>

#include <map>
#include <numeric>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::Coords2d;
using image::Coords3d;
using image::eImageBufferType;

namespace
{

/// Bytes as a binary image.
Ptr<const BaseImage> makeBinary(const ImageGeometry& size, const std::vector<unsigned char>& bytes)
{
    const auto owner = makeImage(size, bytes);
    return BaseImage::wrap(static_cast<const void*>(owner->getRow(0)), eImageBufferType::eIBT_Binary, size, owner);
}

/// The share in percent of every label; outside the mask it is 0.
template <class T>
std::vector<double> percentages(const std::vector<T>& labels, const std::vector<unsigned char>& mask)
{
    std::map<std::uint32_t, std::size_t> counts;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        ++counts[mask.empty() || mask[i] != 0 ? labels[i] : 0];
    }
    std::vector<double> values(counts.rbegin()->first + 1, 0);
    for (const auto& [value, count] : counts) {
        values[value] = 100.0 * static_cast<double>(count) / static_cast<double>(labels.size());
    }
    return values;
}

void expectNear(const std::vector<double>& actual, const std::vector<double>& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        EXPECT_NEAR(actual[i], expected[i], 1e-12) << i;
    }
}

/// Labels that come in runs and grow from strip to strip.
template <class T>
std::vector<T> makeLabels(const ImageGeometry& size)
{
    std::mt19937 generator{5};
    std::vector<T> labels(size.nbPixels());
    std::uint32_t label = 0;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const bool noisy = i / 3000 % 2 == 0;
        label = noisy || generator() % 20 == 0 ? generator() % (2 + static_cast<std::uint32_t>(i / 50)) : label;
        labels[i] = static_cast<T>(label);
    }
    return labels;
}

template <class T>
void comparePercentages()
{
    for (const ImageGeometry& size : {ImageGeometry{1, 1}, {7, 1}, {65, 9}, {1000, 701}}) {
        SCOPED_TRACE(toString(size));
        const auto labels = makeLabels<T>(size);
        std::vector<unsigned char> mask(size.nbPixels());
        std::vector<unsigned char> anyMask(size.nbPixels()); // not only 0 and 1
        for (std::size_t i = 0; i < mask.size(); ++i) {
            mask[i] = i / 5 % 3 != 0;
            anyMask[i] = static_cast<unsigned char>(i % 4 * 85);
        }
        const auto image = makeStrided(size, labels, true, false, false);
        for (const core::eInstructionSet::domain set : allSets) {
            if (!core::isAvailable(set) || set == core::eInstructionSet::eIS_AVX) {
                continue;
            }
            const ForcedSet forced{set};
            SCOPED_TRACE(core::getName(set));
            expectNear(areaPercent2dMsr(image)->Values, percentages(labels, {}));
            expectNear(areaPercent2dMsr(makeImage(size, labels))->Values, percentages(labels, {}));
            expectNear(areaPercent2dMsr(image, makeImage(size, mask))->Values, percentages(labels, mask));
            expectNear(volumePercent3dMsr(image, makeImage(size, anyMask))->Values, percentages(labels, anyMask));
        }
    }
}

} // namespace

TEST(Percent, OfLabels)
{
    comparePercentages<unsigned char>();
    comparePercentages<unsigned short>();
    comparePercentages<unsigned int>();
}

TEST(Percent, OfBinaryImages)
{
    for (const core::eInstructionSet::domain set : allSets) {
        if (!core::isAvailable(set) || set == core::eInstructionSet::eIS_AVX) {
            continue;
        }
        const ForcedSet forced{set};
        const ImageGeometry size{1003, 600};
        std::vector<unsigned char> bytes(size.nbPixels());
        std::vector<unsigned char> mask(size.nbPixels());
        std::size_t quarter = 0;
        std::size_t both = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = i % 4 == 1;
            mask[i] = i % 3 == 0 ? static_cast<unsigned char>(1 + i % 255) : 0;
            quarter += bytes[i];
            both += bytes[i] != 0 && mask[i] != 0;
        }
        const auto n = static_cast<double>(bytes.size());
        const auto shares = [&](std::size_t set_) {
            return std::vector<double>{100 * (n - static_cast<double>(set_)) / n, 100 * static_cast<double>(set_) / n};
        };
        const auto image = makeBinary(size, bytes);
        expectNear(areaPercent2dMsr(image)->Values, shares(quarter));
        expectNear(volumePercent3dMsr(image)->Values, shares(quarter));
        // What lies outside the mask counts as not set, and all pixels are the denominator.
        expectNear(areaPercent2dMsr(image, makeImage(size, mask))->Values, shares(both));
    }
}

TEST(Percent, OneListPerPlanOrVolume)
{
    const ImageGeometry size{2, 2, 2, 1, 2};
    const auto image = makeImage<unsigned short>(size, {0, 3, 3, 0, /**/ 1, 1, 1, 1, /**/ 2, 0, 0, 0, /**/ 0, 0, 0, 5});
    const auto plans = multiSlice_areaPercent2dMsr(image);
    EXPECT_EQ(plans->getStorage({0, 0, 0})->Values, (std::vector<double>{50, 0, 0, 50}));
    EXPECT_EQ(plans->getStorage({1, 0, 0})->Values, (std::vector<double>{0, 100}));
    EXPECT_EQ(plans->getStorage({1, 0, 1})->Values, (std::vector<double>{75, 0, 0, 0, 0, 25}));
    const auto volumes = multiSlice_volumePercent3dMsr(image);
    EXPECT_EQ(volumes->getStorage({0, 0, 0})->Values, (std::vector<double>{25, 50, 0, 25}));
    EXPECT_EQ(volumes->getStorage({0, 0, 1})->Values, (std::vector<double>{75, 0, 12.5, 0, 0, 12.5}));
}

TEST(Percent, WhatIsRefused)
{
    const auto labels = makeImage<unsigned int>({4, 1}, {1, 2, 2000000000u, 3});
    EXPECT_EQ(
        messageOf([&] { areaPercent2dMsr(labels); }),
        "label 2000000000 needs 61036 MiB for the counts of all labels below it, and the memory limit is 2048 MiB: "
        "number the labels from 0");
    const auto some = makeImage<unsigned int>({4, 1}, {1, 2, 40000, 3});
    core::settings::setMemoryLimit(1 << 20);
    EXPECT_NE(messageOf([&] { areaPercent2dMsr(some); }).find("label 40000 needs 2 MiB"), std::string::npos);
    core::settings::setMemoryLimit(0);
    EXPECT_EQ(areaPercent2dMsr(some)->Values.size(), 40001u);
    EXPECT_EQ(messageOf([&] {
                  areaPercent2dMsr(makeImage<unsigned int>({1, 1}, {0x7fffffff}));
              }),
              "label 2147483647 is beyond 2147483646, the highest that can be counted: number the labels from 0");
    // Whichever strip holds it.
    core::settings::setMemoryLimit(std::size_t{40} << 20);
    for (const std::size_t row : {std::size_t{0}, std::size_t{62}}) {
        std::vector<unsigned int> high(70000 * 63, 1);
        high[row * 70000] = 600000;
        EXPECT_NE(messageOf([&] {
                      areaPercent2dMsr(makeImage({70000, 63}, high));
                  }).find("needs 51 MiB"),
                  std::string::npos);
    }
    // One plan fits, but not the results of ten.
    core::settings::setMemoryLimit(std::size_t{4} << 20);
    std::vector<unsigned int> tenPlans(20, 70000);
    const auto stack = makeImage({2, 1, 10}, tenPlans);
    EXPECT_EQ(areaPercent2dMsr(stack)->Values.size(), 70001u);
    EXPECT_NE(messageOf([&] { multiSlice_areaPercent2dMsr(stack); }).find("results of all plans need more than the"),
              std::string::npos);
    core::settings::setMemoryLimit(0);
    EXPECT_EQ(
        messageOf([&] {
            areaPercent2dMsr(makeImage<short>({1, 1}, {1}));
        }),
        "AreaPercent2dMsrLvl1: InBinLabImg does not take a int16 image: convert it to one of uint8, uint16, uint32, "
        "binary");
    EXPECT_NE(messageOf([&] {
                  areaPercent2dMsr(labels, makeImage<unsigned char>({2, 2}, {1, 1, 1, 1}));
              }).find("both need the same size"),
              std::string::npos);
}

TEST(Locate, FirstOnesInRasterOrder)
{
    for (const ImageGeometry& size :
         {ImageGeometry{1, 1}, {63, 3}, {64, 2}, {65, 3}, {129, 40}, {1024, 1300}, {70, 60, 3, 1, 2}}) {
        for (const unsigned every : {1u, 2u, 100u, 5000u}) {
            SCOPED_TRACE(toString(size) + " " + std::to_string(every));
            std::mt19937 generator{every};
            std::vector<unsigned char> bytes(size.nbPixels(), 0);
            for (unsigned char& byte : bytes) {
                byte = generator() % every == 0 ? static_cast<unsigned char>(1 + generator() % 255) : 0;
            }
            std::vector<Coords2d> pixels; // of the last plan
            std::vector<Coords3d> voxels; // of the last volume
            const std::size_t plane = size.x * size.y;
            for (std::size_t i = bytes.size() - plane * size.z; i < bytes.size(); ++i) {
                const auto x = static_cast<double>(i % size.x);
                const auto y = static_cast<double>(i / size.x % size.y);
                const std::size_t z = i / plane % size.z;
                if (bytes[i] != 0) {
                    voxels.emplace_back(x, y, static_cast<double>(z));
                    if (z == size.z - 1) {
                        pixels.emplace_back(x, y);
                    }
                }
            }
            const auto image = makeBinary(size, bytes);
            const auto last = static_cast<unsigned>(size.t - 1);
            const auto lastPlane = static_cast<unsigned>(size.z - 1);
            for (const unsigned threads : {1u, 3u}) {
                const Threads number{threads};
                EXPECT_EQ(multiSlice_locatePixels2d(image)->getStorage({lastPlane, 0, last})->Coordinates, pixels);
                EXPECT_EQ(multiSlice_locateVoxels3d(image)->getStorage({0, 0, last})->Coordinates, voxels);
                for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, pixels.size() / 2, pixels.size() + 1}) {
                    auto first = pixels;
                    first.erase(first.begin() + static_cast<std::ptrdiff_t>(std::min(limit, pixels.size())),
                                first.end());
                    const auto found = multiSlice_locatePixels2d(image, static_cast<unsigned>(limit));
                    EXPECT_EQ(found->getStorage({lastPlane, 0, last})->Coordinates, first) << limit;
                }
            }
        }
    }
}

TEST(Locate, WhatIsRefused)
{
    EXPECT_EQ(messageOf([] {
                  locatePixels2d(makeImage<unsigned char>({2, 1}, {0, 1}));
              }),
              "LocatePixels2dLvl1: InBinImg does not take a uint8 image: make it binary, 1 where a pixel is set and 0 "
              "elsewhere");
    EXPECT_EQ(messageOf([] { locateVoxels3d(nullptr); }), "LocateVoxels3dLvl1: InBinImg3d is not set");
    // The one list counts, however many threads make it.
    const auto full = makeBinary({1500, 1500, 2}, std::vector<unsigned char>(1500 * 1500 * 2, 1));
    for (const unsigned threads : {1u, 2u, 5u}) {
        const Threads number{threads};
        core::settings::setMemoryLimit(std::size_t{34} << 20);
        EXPECT_NE(messageOf([&] {
                      locatePixels2d(full);
                  }).find("2250000 positions need 35 MiB, and the memory limit is 34 MiB"),
                  std::string::npos);
        core::settings::setMemoryLimit(std::size_t{35} << 20);
        EXPECT_EQ(locatePixels2d(full)->Coordinates.size(), 2250000u);
        EXPECT_NE(messageOf([&] { multiSlice_locatePixels2d(full); }).find("results of all plans need more than the"),
                  std::string::npos);
        core::settings::setMemoryLimit(std::size_t{16} << 20);
        EXPECT_EQ(locatePixels2d(full, 1000000)->Coordinates.size(), 1000000u);
        core::settings::setMemoryLimit(0);
    }
}

// Without a limit of its own a call means every pixel, but counts them in 32 bits: 2^32 of them are none.
TEST(Locate, TheDefaultLimitWraps)
{
    const std::vector<unsigned char> row(65536, 1);
    image::ImageStrides strides; // every row is the same memory
    const auto image = BaseImage::wrap(static_cast<const void*>(row.data()), eImageBufferType::eIBT_Binary,
                                       {65536, 65536}, strides, nullptr);
    EXPECT_TRUE(locatePixels2d(image)->Coordinates.empty());
    EXPECT_EQ(locatePixels2d(image, 3)->Coordinates, (std::vector<Coords2d>{{0, 0}, {1, 0}, {2, 0}}));
}

TEST(Locate, ListsGoThroughArchives)
{
    const auto processor = makePtr<LocateVoxels3dLvl1>();
    ASSERT_TRUE(processor->init(eProcessorRulePolicy::eRP_CheckRules));
    processor->set<InBinImg3d>(makeBinary({2, 1, 2}, {0, 1, 1, 0}));
    processor->set<InNbFeatures>(7);
    executeSyncRun(processor);
    data::OutputArchive archive;
    ASSERT_TRUE(archive.write("it", processor.get()));
    data::InputArchive back{archive.str()};
    Ptr<LocateVoxels3dLvl1> read;
    ASSERT_TRUE(back.read("it", read));
    EXPECT_EQ(read->getStorage<InNbFeatures>(), 7u);
    EXPECT_EQ(read->getStorage<OutPIVoxels3d>()->getStorage({0, 0, 0})->Coordinates,
              (std::vector<Coords3d>{{1, 0, 0}, {0, 0, 1}}));

    std::string damaged = archive.str();
    const std::size_t at = damaged.find("Coordinates");
    damaged.erase(damaged.find(',', at), damaged.find(',', damaged.find(',', at) + 1) - damaged.find(',', at));
    data::InputArchive broken{damaged};
    const core::ProcessingResult result = broken.read("it", read);
    EXPECT_FALSE(result);
    EXPECT_NE(result.getMessage().find("\"Coordinates\" has 5 numbers: a multiple of 3 is needed"), std::string::npos)
        << result.getMessage();
}

TEST(Density, SamplesArePixels)
{
    const ImageGeometry size{40, 30, 2};
    std::vector<unsigned short> values(size.nbPixels());
    std::iota(values.begin(), values.end(), static_cast<unsigned short>(0));
    const auto image = makeImage(size, values);
    core::random::setSeed(1);
    const auto plan = kernelDensityEstimator2d(image);
    core::random::setSeed(1);
    EXPECT_EQ(kernelDensityEstimator2d(image)->Samples, plan->Samples);
    core::random::setSeed(2);
    EXPECT_NE(kernelDensityEstimator2d(image)->Samples, plan->Samples);

    // Uniform: the chi-square statistic of 12 equal groups, 11 degrees of freedom, is below 31.3 but once in 1000.
    const auto many = kernelDensityEstimator2d(image, 60000, makePtr<KDEBandwidthPolicy>());
    std::map<int, double> counts;
    for (const double x : many->Samples) {
        ASSERT_TRUE(x >= 0 && x < 1200 && x == std::floor(x));
        ++counts[static_cast<int>(x) / 100];
    }
    double chiSquare = 0;
    for (const auto& [group, count] : counts) {
        chiSquare += (count - 5000) * (count - 5000) / 5000;
    }
    EXPECT_EQ(counts.size(), 12u);
    EXPECT_LT(chiSquare, 31.3);

    const auto plans = multiSlice_kernelDensityEstimator2d(image);
    EXPECT_EQ(plans->getStorage({1, 0, 0})->Samples.size(), 1000u);
    EXPECT_GE(
        *std::min_element(plans->getStorage({1, 0, 0})->Samples.begin(), plans->getStorage({1, 0, 0})->Samples.end()),
        1200);
    const auto volume = kernelDensityEstimator3d(image)->Samples;
    EXPECT_TRUE(std::any_of(volume.begin(), volume.end(), [](double x) { return x >= 1200; }));
    EXPECT_TRUE(std::any_of(volume.begin(), volume.end(), [](double x) { return x < 1200; }));
    EXPECT_EQ(kernelDensityEstimator2d(makeImage<float>({1, 1}, {2.5f}))->Samples, std::vector<double>(1000, 2.5));
    EXPECT_TRUE(kernelDensityEstimator2d(image, 0, makePtr<KDEBandwidthPolicy>())->Samples.empty());
    EXPECT_NE(messageOf([&] {
                  kernelDensityEstimator2d(image, 4294967295u, makePtr<KDEBandwidthPolicy>());
              }).find("4294967295 samples need 131072 MiB, and the memory limit is 2048 MiB"),
              std::string::npos);
}

// Worked out by hand from the sample deviation s and the quartiles.
TEST(Density, Bandwidths)
{
    using attr::eKDEBandwidth;
    struct Case
    {
        std::vector<double> values;
        eKDEBandwidth rule;
        double bandwidth;
    };
    const std::vector<double> ten{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const Case cases[] = {
        // s = 3.0276503540974917, quartiles 3.25 and 7.75, 10^(-1/5) = 0.6309573444801932
        {ten, eKDEBandwidth::eKB_Silverman, 0.9 * 3.0276503540974917 * 0.6309573444801932},
        {ten, eKDEBandwidth::eKB_Scott, 3.0276503540974917 * 0.6309573444801932},
        // s = 28.460498941515414, quartiles 2 and 5, 5^(-1/5) = 0.7247796636776955
        {{1, 2, 4, 5, 67}, eKDEBandwidth::eKB_Silverman, 0.9 * 3 / 1.34 * 0.7247796636776955},
        // Quartiles that are equal: the deviation alone, here sqrt(20).
        {{0, 0, 0, 0, 10}, eKDEBandwidth::eKB_Silverman, 0.9 * 4.47213595499958 * 0.7247796636776955},
        {{0.1, 0.1, 0.1}, eKDEBandwidth::eKB_Silverman, 0},
        {{7}, eKDEBandwidth::eKB_Scott, 0},
        {{}, eKDEBandwidth::eKB_Silverman, 0},
        {{}, eKDEBandwidth::eKB_Fixed, 0.25},
        {ten, eKDEBandwidth::eKB_Fixed, 0.25},
    };
    for (const Case& c : cases) {
        KDEBandwidthPolicy policy;
        policy.Rule = c.rule;
        policy.Bandwidth = 0.25;
        EXPECT_NEAR(computeBandwidth(policy, c.values), c.bandwidth, 1e-14 * std::abs(c.bandwidth));
    }
}

} // namespace orlix::test
