#include <support/TestImages.hpp>

#include <framework/image/Strip.hpp>

#include <gtest/gtest.h>

namespace orlix::test
{

using image::eImageBufferType;
using image::ePlanKind;
using image::ImageException;
using image::ImageStrides;

TEST(BaseImage, OwnBuffersAreZeroAlignedAndOrderedXYZCT)
{
    const auto image = BaseImage::create(eImageBufferType::eIBT_UInt16, {3, 4, 5, 2, 2});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image->getRow(0)) % 64, 0u);
    EXPECT_EQ(image->getRow(1) - image->getRow(0), 6);
    EXPECT_EQ(image->getRow(0, 1) - image->getRow(0), 24);
    EXPECT_EQ(image->getRow(0, 0, 1) - image->getRow(0), 120);
    EXPECT_EQ(image->getRow(0, 0, 0, 1) - image->getRow(0), 240);
    EXPECT_EQ(image->getRow(3, 4, 1, 1)[5], std::byte{0});
}

TEST(BaseImage, WhatCannotBeIsRefused)
{
    std::vector<unsigned short> buffer(100);
    auto* const bytes = reinterpret_cast<std::byte*>(buffer.data());
    using enum eImageBufferType;
    const ImageGeometry huge{std::size_t{1} << 31, std::size_t{1} << 31, 4};
    EXPECT_THROW(BaseImage::create(eIBT_UInt8, huge), ImageException);
    EXPECT_THROW(BaseImage::create(eIBT_UInt8, {std::size_t{1} << 32, 1}), ImageException);
    EXPECT_THROW(BaseImage::create(eIBT_UInt8, {0, std::size_t{1} << 40}), ImageException);
    EXPECT_THROW(BaseImage::wrap(static_cast<void*>(nullptr), eIBT_UInt8, {1, 1}, nullptr), ImageException);
    EXPECT_THROW(BaseImage::wrap(bytes + 1, eIBT_UInt16, {2, 2}, nullptr), ImageException);
    EXPECT_THROW(BaseImage::wrap(bytes, eIBT_UInt16, {2, 2}, ImageStrides{5}, nullptr), ImageException);
    EXPECT_NO_THROW(BaseImage::wrap(bytes, eIBT_UInt16, {2, 1}, ImageStrides{5}, nullptr)); // there is one row
    EXPECT_NO_THROW(BaseImage::wrap(static_cast<void*>(nullptr), eIBT_UInt8, {0, 1}, nullptr));
}

TEST(BaseImage, SubImagesShareThePixelsAndKeepTheirOwner)
{
    auto owner = makePtr<std::vector<unsigned char>>(24);
    for (std::size_t i = 0; i < 24; ++i) {
        (*owner)[i] = static_cast<unsigned char>(i);
    }
    Ptr<const BaseImage> plan;
    {
        const auto image =
            BaseImage::wrap(static_cast<const void*>(owner->data()), eImageBufferType::eIBT_UInt8, {2, 2, 3, 2}, owner);
        plan = image->getSubImage({2, 1, 0}, ePlanKind::ePK_Plan2d);
        EXPECT_EQ(image->getSubImage({0, 1, 0}, ePlanKind::ePK_Volume3d)->getGeometry(), (ImageGeometry{2, 2, 3}));
        EXPECT_THROW((void)image->getSubImage({3, 0, 0}, ePlanKind::ePK_Plan2d), ImageException);
        EXPECT_THROW((void)image->getSubImage({1, 0, 0}, ePlanKind::ePK_Volume3d), ImageException);
    }
    EXPECT_EQ(owner.use_count(), 2);
    const auto standard = std::make_shared<std::vector<unsigned short>>(4);
    {
        const Ptr<BaseImage> image = BaseImage::wrap(standard->data(), eImageBufferType::eIBT_UInt16, {2, 2}, standard);
        const unsigned short* const pixels = standard->data();
        const Ptr<const BaseImage> constant = BaseImage::wrap(pixels, eImageBufferType::eIBT_UInt16, {2, 2}, standard);
        EXPECT_EQ(standard.use_count(), 3);
        EXPECT_EQ(constant->getRow(0), image->getRow(0));
    }
    EXPECT_EQ(standard.use_count(), 1);
    EXPECT_EQ(plan->getGeometry(), (ImageGeometry{2, 2}));
    EXPECT_EQ(plan->getRow(1)[1], std::byte{23});
}

// Every pixel of a strip is met once, in raster order, for any memory layout and any run that the layout allows.
TEST(StripParser, MeetsEveryPixelInOrder)
{
    const ImageGeometry shape{3, 4, 5};
    std::vector<unsigned short> values(shape.nbPixels());
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<unsigned short>(i);
    }
    for (const int layout : {0, 1, 2, 4, 5, 6, 7}) {
        const auto image = makeStrided(shape, values, (layout & 1) != 0, (layout & 2) != 0, (layout & 4) != 0);
        const image::StripParser parser{image::ZStrip3d{image, 1, 3}.getBox()};
        const std::size_t longest = layout == 0 ? 36 : layout == 4 ? 12 : 3;
        EXPECT_EQ(parser.longestRun(), longest) << layout;
        for (const std::size_t length : {std::size_t{3}, longest}) {
            std::vector<unsigned short> met;
            for (std::size_t i = 0; i < parser.nbPixels() / length; ++i) {
                const auto* const run = parser.run<unsigned short>(i, length);
                met.insert(met.end(), run, run + length);
            }
            EXPECT_EQ(met, (std::vector<unsigned short>{values.begin() + 12, values.begin() + 48})) << layout;
        }
    }
}

} // namespace orlix::test
