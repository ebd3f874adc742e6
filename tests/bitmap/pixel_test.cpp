// Bitmap record and pixel operations.
#include <gtest/gtest.h>

#include <set>
#include <utility>
#include <vector>

#include "bitmap.h"

namespace {

const BitmapPixel kInk{9, 8, 7, 6};
const BitmapPixel kPaper{0, 0, 0, 0};

struct Image {
    int w, h;
    std::vector<BitmapPixel> px;
    Image(int width, int height) : w(width), h(height), px(Bitmap_PixelCount(width, height), kPaper) {}
    std::set<std::pair<int, int>> Inked() const
    {
        std::set<std::pair<int, int>> s;
        for (int y = 0; y < h; y++)
            for (int x = 0; x < w; x++)
                if (Same_BitmapPixel(px[x + y * w], kInk))
                    s.insert({x, y});
        return s;
    }
};

void ExpectPixel(BitmapPixel p, int r, int g, int b, int a)
{
    EXPECT_EQ(p.r, r);
    EXPECT_EQ(p.g, g);
    EXPECT_EQ(p.b, b);
    EXPECT_EQ(p.a, a);
}

} // namespace

TEST(Pixel, RecordIsFourBytesRedFirst)
{
    BitmapPixel p{1, 2, 3, 4};
    const unsigned char *bytes = reinterpret_cast<const unsigned char *>(&p);
    EXPECT_EQ(sizeof p, 4u);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[3], 4);
}

TEST(Pixel, CreateEraseAndIndexLayout)
{
    BitmapPixel *bm = Create_Bitmap(3, 2);
    ASSERT_NE(bm, nullptr);
    Erase_Bitmap(bm, 3, 2, BitmapPixel{10, 20, 30, 40});
    ExpectPixel(Get_Pixel(bm, 3, 2, 2, 1), 10, 20, 30, 40);
    // Pixel (x, y) is element x + y * width.
    EXPECT_EQ(Draw_Pixel(bm, 3, 2, 1, 1, kInk), 1);
    EXPECT_TRUE(Same_BitmapPixel(bm[1 + 1 * 3], kInk));
    Destroy_Bitmap(bm);
    Destroy_Bitmap(nullptr);
}

TEST(Pixel, CreateRefusesSizesThatCannotBeAllocated)
{
    // 32767 x 32767 x 4 bytes does not fit in an int but is a valid request;
    // only sizes beyond the address space must give null.
    EXPECT_EQ(Bitmap_PixelCount(32767, 32767), size_t(32767) * 32767);
    EXPECT_EQ(Bitmap_PixelCount(-3, -5), 0u);
    EXPECT_EQ(Bitmap_PixelCount(0, 5), 0u);
    BitmapPixel *empty = Create_Bitmap(0, 7);
    EXPECT_NE(empty, nullptr);
    Destroy_Bitmap(empty);
}

TEST(Pixel, BoundsOfDrawAndGet)
{
    Image im(4, 3);
    const int cases[][3] = {{-1, 0, 0}, {4, 0, 0}, {0, -1, 0}, {0, 3, 0}, {3, 2, 1}, {0, 0, 1}};
    for (const auto &c : cases) {
        EXPECT_EQ(Draw_Pixel(im.px.data(), 4, 3, c[0], c[1], kInk), c[2]) << c[0] << "," << c[1];
        if (!c[2])
            ExpectPixel(Get_Pixel(im.px.data(), 4, 3, c[0], c[1]), 0, 0, 0, 255);
    }
    EXPECT_EQ(im.Inked().size(), 2u);
}

TEST(Pixel, SameComparesAlphaToo)
{
    EXPECT_TRUE(Same_BitmapPixel({1, 2, 3, 4}, {1, 2, 3, 4}));
    EXPECT_FALSE(Same_BitmapPixel({1, 2, 3, 4}, {1, 2, 3, 5}));
    EXPECT_FALSE(Same_BitmapPixel({0, 2, 3, 4}, {1, 2, 3, 4}));
}

TEST(Pixel, FlipRowsColumnsAndOthers)
{
    // A 3 x 3 image numbered 0..8 in memory order.
    auto make = [] {
        std::vector<BitmapPixel> v(9);
        for (int i = 0; i < 9; i++)
            v[i] = BitmapPixel{static_cast<unsigned char>(i), 0, 0, 255};
        return v;
    };
    auto order = [](const std::vector<BitmapPixel> &v) {
        std::vector<int> o;
        for (const auto &p : v)
            o.push_back(p.r);
        return o;
    };
    auto v = make();
    Flip_Bitmap(v.data(), 3, 3, 0);
    EXPECT_EQ(order(v), (std::vector<int>{6, 7, 8, 3, 4, 5, 0, 1, 2}));
    v = make();
    Flip_Bitmap(v.data(), 3, 3, 1);
    EXPECT_EQ(order(v), (std::vector<int>{2, 1, 0, 5, 4, 3, 8, 7, 6}));
    v = make();
    Flip_Bitmap(v.data(), 3, 3, 2);
    EXPECT_EQ(order(v), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    // A single row flipped top to bottom, a single column left to right: unchanged.
    v = make();
    Flip_Bitmap(v.data(), 9, 1, 0);
    Flip_Bitmap(v.data(), 1, 9, 1);
    EXPECT_EQ(order(v), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Pixel, LineSamplesEveryHalfPixelAndTruncates)
{
    struct Case {
        int x1, y1, x2, y2;
        std::set<std::pair<int, int>> expected;
    };
    // Worked out by hand from the half-pixel sampling rule.
    const Case cases[] = {
        {2, 2, 2, 2, {{2, 2}}},
        {0, 0, 3, 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}}},
        {3, 0, 0, 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}}},
        // Length sqrt(20) is not whole: the samples stop short of (4, 2).
        {0, 0, 4, 2, {{0, 0}, {1, 0}, {2, 1}, {3, 1}}},
        // Length 5: t runs to 10, mu to 5, and the far end is reached.
        {0, 0, 3, 4, {{0, 0}, {0, 1}, {1, 1}, {1, 2}, {2, 2}, {2, 3}, {3, 4}}},
        // Runs off the image on both sides: only inside pixels are set.
        {-2, 1, 7, 1, {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}}},
    };
    for (const auto &c : cases) {
        Image im(5, 5);
        Draw_Line(im.px.data(), 5, 5, c.x1, c.y1, c.x2, c.y2, kInk);
        EXPECT_EQ(im.Inked(), c.expected) << c.x1 << "," << c.y1 << " to " << c.x2 << "," << c.y2;
    }
}

TEST(Pixel, ScaleClampsEveryChannelIncludingAlpha)
{
    ExpectPixel(Scale_Pixel({200, 100, 0, 255}, 2.0), 255, 200, 0, 255);
    ExpectPixel(Scale_Pixel({200, 100, 0, 255}, -1.0), 0, 0, 0, 0);
    ExpectPixel(Scale_Pixel({200, 101, 3, 255}, 0.5), 100, 50, 1, 127);
}

TEST(Pixel, YuvToRgbTruncatesThenClamps)
{
    ExpectPixel(YUV_to_Bitmap(128, 128, 128), 128, 128, 128, 0);
    // G = 255 - 0.698001 * 127 = 166.35 -> 166; R and B clamp.
    ExpectPixel(YUV_to_Bitmap(255, 128, 255), 255, 166, 255, 0);
    // B = 10 + 1.732446 * -128 is negative -> 0; G = 10 + 43.2 = 53.
    ExpectPixel(YUV_to_Bitmap(10, 0, 128), 10, 53, 0, 0);
}
