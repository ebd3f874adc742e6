// Bitmap record and pixel operations.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bitmap.h"

namespace {

std::string Str(BitmapPixel p)
{
    return std::to_string(p.r) + "," + std::to_string(p.g) + "," + std::to_string(p.b) + "," + std::to_string(p.a);
}

const BitmapPixel kInk{9, 8, 7, 6};

} // namespace

TEST(Pixel, LayoutBoundsAndSizes)
{
    BitmapPixel p{1, 2, 3, 4};
    EXPECT_EQ(sizeof p, 4u);
    EXPECT_EQ(reinterpret_cast<unsigned char *>(&p)[0], 1) << "red first in memory";
    std::vector<BitmapPixel> im(4 * 3);
    Erase_Bitmap(im.data(), 4, 3, {10, 20, 30, 40});
    EXPECT_EQ(Str(Get_Pixel(im.data(), 4, 3, 3, 2)), "10,20,30,40");
    // Inside when 0 <= x < width and 0 <= y < height; outside reads opaque black.
    const int cases[][3] = {{-1, 0, 0}, {4, 0, 0}, {0, -1, 0}, {0, 3, 0}, {3, 2, 1}, {1, 1, 1}};
    for (const auto &c : cases) {
        EXPECT_EQ(Draw_Pixel(im.data(), 4, 3, c[0], c[1], kInk), c[2]) << c[0] << "," << c[1];
        EXPECT_EQ(Str(Get_Pixel(im.data(), 4, 3, c[0], c[1])), c[2] ? "9,8,7,6" : "0,0,0,255");
    }
    EXPECT_TRUE(Same_BitmapPixel(im[1 + 1 * 4], kInk)) << "pixel (x, y) is element x + y * width";
    EXPECT_FALSE(Same_BitmapPixel({1, 2, 3, 4}, {1, 2, 3, 5})) << "alpha counts";
    // 32767 x 32767 x 4 bytes overflows an int; sides below 1 give no pixels.
    EXPECT_EQ(Bitmap_PixelCount(32767, 32767), size_t(32767) * 32767);
    EXPECT_EQ(Bitmap_PixelCount(-3, -5), 0u);
    BitmapPixel *empty = Create_Bitmap(0, 7);
    EXPECT_NE(empty, nullptr);
    Destroy_Bitmap(empty);
    Destroy_Bitmap(nullptr);
}

TEST(Pixel, FlipsRowsOrColumnsOnly)
{
    auto flipped = [](int w, int h, int dir) {
        std::vector<BitmapPixel> v(static_cast<size_t>(w) * h);
        for (size_t i = 0; i < v.size(); i++)
            v[i].r = static_cast<unsigned char>(i);
        Flip_Bitmap(v.data(), w, h, dir);
        std::string s;
        for (const auto &p : v)
            s += std::to_string(p.r);
        return s;
    };
    EXPECT_EQ(flipped(3, 3, 0), "678345012");
    EXPECT_EQ(flipped(3, 3, 1), "210543876");
    EXPECT_EQ(flipped(3, 3, 2), "012345678");
    EXPECT_EQ(flipped(9, 1, 0), "012345678");
    EXPECT_EQ(flipped(1, 9, 1), "012345678");
}

TEST(Pixel, LineSamplesEveryHalfPixelAndTruncates)
{
    using Set = std::set<std::pair<int, int>>;
    struct Case {
        int x1, y1, x2, y2;
        Set expected;
    };
    // Worked out by hand from the half-pixel sampling rule.
    const Case cases[] = {
        {2, 2, 2, 2, {{2, 2}}},
        {0, 0, 3, 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}}},
        {3, 0, 0, 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}}},
        // Length sqrt(20) is not whole: the samples stop short of (4, 2).
        {0, 0, 4, 2, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}},
        {0, 0, 3, 4, {{0, 0}, {0, 1}, {1, 1}, {1, 2}, {2, 2}, {2, 3}, {3, 4}}},
        // Off the image on both sides: only inside pixels are set.
        {-2, 1, 7, 1, {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}}},
    };
    for (const auto &c : cases) {
        std::vector<BitmapPixel> im(25, BitmapPixel{0, 0, 0, 0});
        Draw_Line(im.data(), 5, 5, c.x1, c.y1, c.x2, c.y2, kInk);
        Set got;
        for (int i = 0; i < 25; i++)
            if (Same_BitmapPixel(im[i], kInk))
                got.insert({i % 5, i / 5});
        EXPECT_EQ(got, c.expected) << c.x1 << "," << c.y1 << " to " << c.x2 << "," << c.y2;
    }
}

TEST(Pixel, ScaleAndYuvTruncateThenClamp)
{
    EXPECT_EQ(Str(Scale_Pixel({200, 100, 0, 255}, 2.0)), "255,200,0,255");
    EXPECT_EQ(Str(Scale_Pixel({200, 100, 0, 255}, -1.0)), "0,0,0,0");
    EXPECT_EQ(Str(Scale_Pixel({200, 101, 3, 255}, 0.5)), "100,50,1,127") << "alpha is scaled too";
    EXPECT_EQ(Str(YUV_to_Bitmap(128, 128, 128)), "128,128,128,0");
    // G = 255 - 0.698001 * 127 = 166.35; R and B clamp at 255.
    EXPECT_EQ(Str(YUV_to_Bitmap(255, 128, 255)), "255,166,255,0");
    // B = 10 - 1.732446 * 128 < 0; G = 10 + 0.337633 * 128 = 53.2.
    EXPECT_EQ(Str(YUV_to_Bitmap(10, 0, 128)), "10,53,0,0");
}
