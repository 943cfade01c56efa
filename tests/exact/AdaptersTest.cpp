#include <support/TestImages.hpp>

#include <ORLIX/Measures/Describe.hpp>

#include <gtest/gtest.h>

#ifdef ORLIX_TEST_OPENCV
#include <ORLIX/Measures/OpenCv.hpp>
#endif
#ifdef ORLIX_TEST_ITK
#include <ORLIX/Measures/Itk.hpp>
#endif

namespace orlix::test
{

using measures::describe;
using measures::Per;

TEST(View, LooksAtStridedPixels)
{
    // Every second row of a plane of 3 x 4.
    const int pixels[] = {1, 2, 3, -9, -9, -9, 4, 5, 6, -9, -9, -9};
    EXPECT_EQ(describe(view(pixels, {3, 2}, {.y = 24}))->Sum, 21);
    const bool bits[] = {true, false, true, true};
    EXPECT_EQ(describe(view(bits, {2, 2}))->Sum, 3);
    EXPECT_EQ(describe(view(pixels + 6, {3, 1}))->Max, 6);
}

#ifdef ORLIX_TEST_OPENCV
TEST(View, TakesOpenCvMatrices)
{
    ImageView kept;
    {
        const cv::Mat all = (cv::Mat_<float>(3, 4) << 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
        kept = view(all(cv::Rect{1, 1, 2, 2}));
    }
    EXPECT_EQ(describe(kept)->Sum, 6 + 7 + 10 + 11);
    const cv::Mat colours{2, 3, CV_16SC3, cv::Scalar{-1, 5, 300}};
    const auto channels = describe(view(colours), {.per = Per::Plan});
    ASSERT_EQ(channels.size(), 3u);
    EXPECT_EQ(channels[0].Mean, -1);
    EXPECT_EQ(channels[2].Mean, 300);
    const int sides[] = {2, 3, 4};
    const cv::Mat volume{3, sides, CV_8U, cv::Scalar{7}};
    EXPECT_EQ(view(volume)->getGeometry(), (ImageGeometry{4, 3, 2}));
    EXPECT_EQ(describe(view(volume))->Sum, 24 * 7);
    EXPECT_THROW((void)view(cv::Mat(2, 2, CV_64F)), image::ImageException);
    EXPECT_EQ(describe(view(cv::Mat()))->NbPixels, 0u);
}
#endif

#ifdef ORLIX_TEST_ITK
TEST(View, TakesItkImages)
{
    using Image = itk::Image<unsigned short, 3>;
    const auto image = Image::New();
    image->SetRegions(Image::SizeType{{4, 3, 2}});
    image->Allocate();
    image->FillBuffer(9);
    image->SetPixel({{3, 2, 1}}, 500);
    const auto found = describe(view(image));
    EXPECT_EQ(found->NbPixels, 24u);
    EXPECT_EQ(found->MaxPosition, (std::vector<std::uint64_t>{3, 2, 1}));
}
#endif

} // namespace orlix::test
