// Image intake: loading TGA files, the blank image, the black/white rule,
// the "no black" warning and the region reset.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "intake.h"
#include "settings.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

std::string StderrOf(const std::function<void()> &f)
{
    testing::internal::CaptureStderr();
    f();
    return testing::internal::GetCapturedStderr();
}

// Makes image from the given pixels (one row) and thresholds it quietly.
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
    StderrOf([] { UpdateImages(); });
    return std::vector<unsigned char>(bwimage, bwimage + pixels.size());
}

} // namespace

TEST(LoadTGA, ResultsMessagesAndSizes)
{
    testutil::TempDir dir;
    // 3 x 2, 24 bits: the pixel bytes 1 .. 18.
    Bytes good{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 24, 0};
    for (unsigned char i = 1; i <= 18; i++)
        good.push_back(i);
    const Bytes cut(good.begin(), good.end() - 4);
    // 32767 x 32767: sized without overflow; allocated or not, a short file fails.
    const Bytes huge{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0x7F, 0xFF, 0x7F, 24, 0, 1, 2, 3};
    testutil::WriteBytes(dir.file("good.tga"), good);
    testutil::WriteBytes(dir.file("cut.tga"), cut);
    testutil::WriteBytes(dir.file("huge.tga"), huge);
    struct Case {
        std::string file;
        int quiet, result;
        std::string err;
    };
    const std::string head = "   Image dimensions: 3 x 2 x 24\n";
    const Case cases[] = {
        {"good.tga", 0, 1, "Reading file \"" + dir.file("good.tga") + "\"\n" + head},
        {"good.tga", 1, 1, ""},
        {"missing.tga", 1, 0, "Failed to open file \"" + dir.file("missing.tga") + "\"\n"},
        {"cut.tga", 0, 0, "Reading file \"" + dir.file("cut.tga") + "\"\n" + head + "   Image read failed\n"},
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        options.quiet = c.quiet;
        int result = -1;
        EXPECT_EQ(StderrOf([&] { result = LoadTGA(dir.file(c.file).c_str()); }), c.err);
        EXPECT_EQ(result, c.result) << c.file;
        EXPECT_EQ(options.imagename, c.result ? dir.file(c.file) : std::string("no image")) << c.file;
        if (c.file != "missing.tga") {
            EXPECT_EQ(options.width * 100 + options.height * 10 + options.depth / 8, 323) << "header sizes kept";
        }
        if (c.result) {
            EXPECT_EQ(image[5].r * 10000 + image[5].b, 180016) << "the last pixel's bytes 16, 17, 18";
        }
    }
    options.quiet = 1;
    const std::string err = StderrOf([&] { EXPECT_EQ(LoadTGA(dir.file("huge.tga").c_str()), 0); });
    EXPECT_TRUE(err == "   Failed to create image\n" || err == "   Image read failed\n") << err;

    options.depth = 17;
    MakeTestImage();
    EXPECT_EQ(options.width * 1000 + options.height, 400300);
    EXPECT_EQ(options.depth, 17);
    EXPECT_STREQ(options.imagename, "No Image");
    EXPECT_TRUE(std::all_of(image, image + 400 * 300, [](BitmapPixel p) { return Same_BitmapPixel(p, {255, 255, 255, 255}); }));
}

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

TEST(UpdateImages, NoBlackWarningAndRegionReset)
{
    SetDefaultOptions();
    options.quiet = 1;
    MakeTestImage();
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "Warning, image contains no black\n");
    image[7] = {0, 0, 0, 255};
    options.left = 7;
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "");
    // Reset to 0 .. 100000, then clamped to the image by the counter's start.
    EXPECT_EQ(options.left + options.right + options.top + options.bottom, 700);
    options.useregion = 1;
    options.left = 7;
    options.right = 9;
    StderrOf([] { UpdateImages(); });
    EXPECT_EQ(options.left * 100 + options.right, 709) << "a given region stays";
    options.width = 0;
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "Warning, image contains no black\n") << "no pixels at all";
}
