#include <support/Masks.hpp>
#include <support/Messages.hpp>
#include <support/ReferenceStats.hpp>
#include <support/TestImages.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3d.hpp>

#include <gtest/gtest.h>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

void expectStats(const StatsResult& result, const std::vector<short>& selected)
{
    const ReferenceStats expected = referenceStats(selected);
    EXPECT_EQ(result.NbPixels, selected.size());
    EXPECT_EQ(result.Min, expected.min);
    EXPECT_EQ(result.Max, expected.max);
    EXPECT_EQ(result.Sum, static_cast<double>(expected.sum));
    if (selected.empty()) {
        EXPECT_TRUE(std::isnan(result.Mean) && std::isnan(result.StdDev));
    } else {
        EXPECT_NEAR(result.StdDev, std::sqrt(static_cast<double>(expected.variance())), 1e-6);
    }
}

} // namespace

// One result per image, plan and volume, however image and mask lie in memory; one plan has an empty mask.
TEST(StatsMaskMeasure, CoversImagePlansAndVolumes)
{
    const ImageGeometry shape{33, 17, 3, 2, 2};
    const std::size_t plan = shape.x * shape.y;
    const auto values = randomValues<short>(shape.nbPixels(), 3);
    auto mask = makeMask(MaskPattern::Half, shape.nbPixels());
    std::fill_n(mask.begin() + static_cast<std::ptrdiff_t>(plan), plan, std::uint8_t{0});
    const auto part = [&](std::size_t first, std::size_t size) {
        const auto cut = [&](const auto& all) {
            return std::vector(all.begin() + static_cast<std::ptrdiff_t>(first),
                               all.begin() + static_cast<std::ptrdiff_t>(first + size));
        };
        return select(cut(values), cut(mask));
    };
    for (const bool imageHasGaps : {false, true}) {
        for (const bool maskHasGaps : {false, true}) {
            SCOPED_TRACE(testing::Message() << imageHasGaps << maskHasGaps);
            const auto image = makeStrided(shape, values, imageHasGaps, false, imageHasGaps);
            const auto maskImage = makeStrided(shape, mask, maskHasGaps, maskHasGaps, false);
            expectStats(*statsMaskMsr2d(image, maskImage), part(0, plan));
            const auto plans = multiSlice_statsMaskMsr2d(image, maskImage);
            ASSERT_EQ(plans->size(), 12u);
            for (std::size_t i = 0; i < plans->size(); ++i) {
                expectStats(*plans->getElement(i), part(i * plan, plan));
            }
            const auto volumes = multiSlice_statsMaskMsr3d(image, maskImage);
            ASSERT_EQ(volumes->size(), 4u);
            for (std::size_t i = 0; i < volumes->size(); ++i) {
                expectStats(*volumes->getElement(i), part(i * plan * 3, plan * 3));
            }
            expectStats(*statsMaskMsr(image, maskImage), select(values, mask)); // the plan of nothing adds nothing
        }
    }
}

TEST(StatsMaskMeasure, AMaskMayBeAnyTypeOfOneByte)
{
    const auto image = makeImage<unsigned short>({3, 1}, {1, 20, 300});
    const auto numbers = makeImage<signed char>({3, 1}, {0, -1, 1});
    EXPECT_EQ(statsMaskMsr(image, numbers)->Sum, 320);
    const auto binary = BaseImage::create(image::eImageBufferType::eIBT_Binary, {3, 1});
    *binary->getRow(0) = std::byte{1};
    EXPECT_EQ(statsMaskMsr(image, binary)->Sum, 1);
}

// Image and mask have one size, and the mask one byte per pixel.
TEST(StatsMaskMeasure, RefusesWhatDoesNotMatch)
{
    const Ptr<const BaseImage> image = makeImage<short>({4, 3, 2}, std::vector<short>(24));
    const Ptr<const BaseImage> flat = makeImage<unsigned char>({4, 3}, std::vector<unsigned char>(12));
    EXPECT_EQ(messageOf([&] { statsMaskMsr(image, flat); }),
              "StatsMaskMsrLvl1: InMaskImg has 4 x 3 pixels, but InImg has 4 x 3, 2 planes: both need the same size");
    EXPECT_NE(messageOf([&] { multiSlice_statsMaskMsr2d(image, flat); }).find("same size"), std::string::npos);
    EXPECT_NE(messageOf([&] { statsMaskMsr3d(image, flat); }).find("InImg3d has"), std::string::npos);
    EXPECT_EQ(messageOf([&] { statsMaskMsr(image, image); }),
              "StatsMaskMsrLvl1: InMaskImg does not take a int16 image: convert it to one of uint8, int8, binary");
    EXPECT_EQ(messageOf([&] { statsMaskMsr2d(image, nullptr); }), "StatsMaskMsr2dLvl1: InMaskImg is not set");
    // As many pixels in rows of another length: a strip finds it, too.
    const auto strip = makePtr<StatsMaskMsr3dLvl3>();
    (void)strip->init(eProcessorRulePolicy::eRP_CheckRules);
    strip->set<InZStrip3d>({image, 0, 2});
    strip->set<InMaskZStrip3d>({makeImage<unsigned char>({3, 4, 2}, std::vector<unsigned char>(24)), 0, 2});
    EXPECT_FALSE(strip->run(eSynchroType::eST_Synchronous));
}

} // namespace orlix::test
