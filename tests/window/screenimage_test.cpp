// The screen image: the power-of-two reduction, the resampled copy and a
// pending -bw inversion, built as the window builds it.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "frontend.h"
#include "intake.h"
#include "screenimage.h"
#include "settings.h"

namespace {

std::string StderrOf(const std::function<void()> &f)
{
    testing::internal::CaptureStderr();
    f();
    return testing::internal::GetCapturedStderr();
}

// The window's service on a 1280 x 1024 screen.
const Frontend screen = {[] { BuildScreenImage(1280, 1024); }, [] {}, [](const char *) -> const char * { return nullptr; }};

} // namespace

TEST(ScreenSize, PowerOfTwoReductionWidthFirst)
{
    const int cases[][7] = {
        // image, screen, screen image, scale
        {2000, 1000, 1280, 1024, 500, 250, 4}, // width limit 960: halved twice
        {960, 768, 1280, 1024, 960, 768, 1},   // exactly at both limits
        {801, 100, 1000, 1000, 400, 50, 2},    // odd sizes lose their last pixel
        {100, 2000, 1280, 1024, 25, 500, 4},   // height limit 768
        {0, 0, 1280, 1024, 0, 0, 1},
    };
    for (const auto &c : cases) {
        int w, h, s;
        ChooseScreenSize(c[0], c[1], c[2], c[3], &w, &h, &s);
        EXPECT_EQ((std::vector<int>{w, h, s}), (std::vector<int>{c[4], c[5], c[6]})) << c[0] << "x" << c[1];
    }
}

TEST(UpdateImages, InteractiveScreenImageAndInversion)
{
    SetDefaultOptions();
    RegisterFrontend(&screen);
    Destroy_Bitmap(image);
    options.width = 2000;
    options.height = 1000;
    image = Create_Bitmap(2000, 1000);
    Erase_Bitmap(image, 2000, 1000, BitmapPixel{10, 20, 30, 255});
    options.invert = 1;
    // Every pixel is dark, so the inverted black/white image has no black.
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "Warning, image contains no black\n"
                                                 "Creating screen version\n"
                                                 "   Full screen size: 1280 x 1024\n"
                                                 "   Display size:     500 x 250\n"
                                                 "   Scale factor:     4\n");
    EXPECT_EQ(options.screenwidth * 10 + options.scale, 5004);
    EXPECT_EQ(options.invert, 0) << "cleared once the screen image is built";
    // Resampled (uniform within one level), inverted, alpha 0; image itself
    // keeps its colours.
    const BitmapPixel p = viewimage[123 + 45 * 500];
    EXPECT_NEAR(p.r, 245, 1);
    EXPECT_NEAR(p.b, 225, 1);
    EXPECT_EQ(p.a, 0);
    EXPECT_EQ(bwimage[0], 255);
    EXPECT_EQ(image[0].r, 10);
    // The invert command complements colour, never alpha.
    image[0] = {0, 100, 255, 7};
    InvertImage();
    EXPECT_TRUE(Same_BitmapPixel(image[0], {255, 155, 0, 7}));
    EXPECT_TRUE(Same_BitmapPixel(image[1999999], {245, 235, 225, 255}));
}
