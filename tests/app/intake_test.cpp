// Loading TGA files into the program's image.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "headless.h"
#include "intake.h"
#include "settings.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

// A 3 x 2 uncompressed 24-bit file.
Bytes SmallTga()
{
    return Bytes{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 24, 0,
                 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
}

class LoadTgaTest : public ::testing::Test {
protected:
    void SetUp() override { SetDefaultOptions(); }
    testutil::TempDir dir;
};

} // namespace

TEST_F(LoadTgaTest, ReadsFileSetsSizesAndName)
{
    const std::string path = dir.file("small.tga");
    testutil::WriteBytes(path, SmallTga());
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 1);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err, "Reading file \"" + path + "\"\n   Image dimensions: 3 x 2 x 24\n");
    EXPECT_EQ(options.width, 3);
    EXPECT_EQ(options.height, 2);
    EXPECT_EQ(options.depth, 24);
    EXPECT_EQ(std::string(options.imagename), path);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image[5].r, 18);
    EXPECT_EQ(image[5].b, 16);
}

TEST_F(LoadTgaTest, QuietModePrintsOnlyErrors)
{
    options.quiet = 1;
    const std::string path = dir.file("small.tga");
    testutil::WriteBytes(path, SmallTga());
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(dir.file("missing.tga").c_str()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Failed to open file \"" + dir.file("missing.tga") + "\"\n");
}

TEST_F(LoadTgaTest, ReaderFailureKeepsHeaderSizesAndName)
{
    strcpy(options.imagename, "before");
    Bytes bad = SmallTga();
    bad.resize(bad.size() - 4);
    const std::string path = dir.file("short.tga");
    testutil::WriteBytes(path, bad);
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Reading file \"" + path + "\"\n   Image dimensions: 3 x 2 x 24\n   Image read failed\n");
    EXPECT_EQ(options.width, 3);
    EXPECT_STREQ(options.imagename, "before");
}

TEST_F(LoadTgaTest, UnallocatableSizeTakesTheFailedToCreatePath)
{
    // 32767 x 32767 pixels: the size is computed without overflow. Whether
    // the allocation succeeds or not, nothing may crash and a truncated file
    // must fail.
    Bytes huge{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0x7F, 0xFF, 0x7F, 24, 0, 1, 2, 3};
    const std::string path = dir.file("huge.tga");
    testutil::WriteBytes(path, huge);
    options.quiet = 1;
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 0);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(err == "   Failed to create image\n" || err == "   Image read failed\n") << err;
}

TEST_F(LoadTgaTest, BlankImageIsWhite400By300)
{
    options.depth = 17;
    MakeTestImage();
    EXPECT_EQ(options.width, 400);
    EXPECT_EQ(options.height, 300);
    EXPECT_EQ(options.depth, 17);
    EXPECT_STREQ(options.imagename, "No Image");
    for (int i = 0; i < 400 * 300; i += 997) {
        EXPECT_EQ(image[i].r, 255);
        EXPECT_EQ(image[i].a, 255);
    }
}

namespace {

// A one-row image of the given pixels, thresholded in quiet mode.
std::vector<unsigned char> Threshold(const std::vector<BitmapPixel> &pixels, int invert)
{
    SetDefaultOptions();
    options.quiet = 1;
    options.invert = invert;
    Destroy_Bitmap(image);
    options.width = static_cast<int>(pixels.size());
    options.height = 1;
    image = Create_Bitmap(options.width, 1);
    std::copy(pixels.begin(), pixels.end(), image);
    testing::internal::CaptureStderr();
    UpdateImages();
    testing::internal::GetCapturedStderr();
    return std::vector<unsigned char>(bwimage, bwimage + pixels.size());
}

} // namespace

TEST(UpdateImages, BlackIsASumOfSquaresBelow128Squared)
{
    // 73^2 * 3 = 15987 is black, 74^2 * 3 = 16428 white; 127^2 = 16129
    // black, 128^2 = 16384 white; alpha plays no part.
    const std::vector<BitmapPixel> px{{73, 73, 73, 255}, {74, 74, 74, 255}, {128, 128, 128, 255},
                                      {127, 0, 0, 255},  {128, 0, 0, 255},  {0, 127, 0, 0},
                                      {0, 0, 128, 0},    {0, 0, 0, 0},      {255, 255, 255, 0}};
    EXPECT_EQ(Threshold(px, 0), (std::vector<unsigned char>{0, 255, 255, 0, 255, 0, 255, 0, 255}));
    EXPECT_EQ(Threshold(px, 1), (std::vector<unsigned char>{255, 0, 0, 255, 0, 255, 0, 255, 0}));
}

TEST(UpdateImages, WarnsWhenThereIsNoBlack)
{
    SetDefaultOptions();
    options.quiet = 1;
    MakeTestImage();
    testing::internal::CaptureStderr();
    UpdateImages();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning, image contains no black\n");
    image[7].r = image[7].g = image[7].b = 0;
    testing::internal::CaptureStderr();
    UpdateImages();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    // An image without pixels has no black either, and nothing breaks.
    options.width = 0;
    testing::internal::CaptureStderr();
    UpdateImages();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning, image contains no black\n");
}

TEST(UpdateImages, DefaultRegionFollowsTheImageGivenRegionStays)
{
    SetDefaultOptions();
    options.quiet = 1;
    MakeTestImage();
    options.left = 7;
    options.right = 9;
    testing::internal::CaptureStderr();
    UpdateImages();
    testing::internal::GetCapturedStderr();
    // Reset, then clamped to the image by the counter's start.
    EXPECT_EQ(options.left, 0);
    EXPECT_EQ(options.right, 400);
    EXPECT_EQ(options.top, 300);
    options.useregion = 1;
    options.left = 7;
    options.right = 9;
    testing::internal::CaptureStderr();
    UpdateImages();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(options.left, 7);
    EXPECT_EQ(options.right, 9);
}

TEST(ScreenSize, PowerOfTwoReductionWidthFirst)
{
    struct Case {
        int w, h, sw, sh, ow, oh, scale;
    };
    const Case cases[] = {
        {2000, 1000, 1280, 1024, 500, 250, 4}, // width limit 960: halved twice
        {800, 600, 1280, 1024, 800, 600, 1},   // fits: scale 1
        {960, 768, 1280, 1024, 960, 768, 1},   // exactly at both limits
        {801, 100, 1000, 1000, 400, 50, 2},    // odd sizes lose their last pixel
        {100, 2000, 1280, 1024, 25, 500, 4},   // height limit 768
        {0, 0, 1280, 1024, 0, 0, 1},
    };
    for (const auto &c : cases) {
        int ow, oh, s;
        ChooseScreenSize(c.w, c.h, c.sw, c.sh, &ow, &oh, &s);
        EXPECT_EQ(ow, c.ow) << c.w << "x" << c.h;
        EXPECT_EQ(oh, c.oh) << c.w << "x" << c.h;
        EXPECT_EQ(s, c.scale) << c.w << "x" << c.h;
    }
}

TEST(UpdateImages, InteractiveModeBuildsTheScreenImage)
{
    SetDefaultOptions();
    Destroy_Bitmap(image);
    options.width = 2000;
    options.height = 1000;
    image = Create_Bitmap(2000, 1000);
    Erase_Bitmap(image, 2000, 1000, BitmapPixel{10, 20, 30, 255});
    options.invert = 1;
    headless::screenwidth = 1280;
    headless::screenheight = 1024;
    testing::internal::CaptureStderr();
    UpdateImages();
    // Every pixel is dark, so the inverted black/white image has no black.
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning, image contains no black\n"
              "Creating screen version\n"
              "   Full screen size: 1280 x 1024\n"
              "   Display size:     500 x 250\n"
              "   Scale factor:     4\n");
    EXPECT_EQ(options.screenwidth, 500);
    EXPECT_EQ(options.scale, 4);
    EXPECT_EQ(options.invert, 0) << "cleared once the screen image is built";
    // Resampled (a uniform image stays within one level), inverted, alpha 0.
    const BitmapPixel p = viewimage[123 + 45 * 500];
    EXPECT_NEAR(p.r, 245, 1);
    EXPECT_NEAR(p.g, 235, 1);
    EXPECT_NEAR(p.b, 225, 1);
    EXPECT_EQ(p.a, 0);
    // -bw inverted the black/white image but not image itself.
    EXPECT_EQ(bwimage[0], 255);
    EXPECT_EQ(image[0].r, 10);
}

TEST(InvertImage, ComplementsColourNotAlpha)
{
    SetDefaultOptions();
    Destroy_Bitmap(image);
    options.width = 2;
    options.height = 1;
    image = Create_Bitmap(2, 1);
    image[0] = {0, 100, 255, 7};
    image[1] = {1, 2, 3, 255};
    InvertImage();
    EXPECT_EQ(image[0].r, 255);
    EXPECT_EQ(image[0].g, 155);
    EXPECT_EQ(image[0].b, 0);
    EXPECT_EQ(image[0].a, 7);
    EXPECT_EQ(image[1].b, 252);
}
