// Bicubic and Gaussian resampling.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "bitmap.h"

TEST(BiCubicKernel, KnownValues)
{
    // The cubic B-spline: 2/3 at 0, 1/6 at 1; at 0.5 (2.5^3 - 4 * 1.5^3 +
    // 6 * 0.5^3) / 6 = 2.875 / 6; 0 from -2 down.
    EXPECT_DOUBLE_EQ(BiCubicR(0), 2.0 / 3);
    EXPECT_DOUBLE_EQ(BiCubicR(-1), 1.0 / 6);
    EXPECT_DOUBLE_EQ(BiCubicR(0.5), 2.875 / 6);
    EXPECT_EQ(BiCubicR(2), 0);
    EXPECT_EQ(BiCubicR(-7.3), 0);
    // The formula has no P(x-2)^3 term, so beyond +2 it is not the spline:
    // R(3) = (125 - 256 + 162 - 32) / 6. The sampler only asks for x <= 2.
    EXPECT_DOUBLE_EQ(BiCubicR(3), -1.0 / 6);
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> d(0, 1);
    for (int i = 0; i < 1000; i++) {
        const double dx = d(gen);
        EXPECT_NEAR(BiCubicR(-1 - dx) + BiCubicR(-dx) + BiCubicR(1 - dx) + BiCubicR(2 - dx), 1.0, 1e-14);
        EXPECT_NEAR(BiCubicR(dx), BiCubicR(-dx), 1e-13);
    }
}

TEST(BiCubicScale, BlurAtScaleOneEdgesAndUniformity)
{
    // A lone 255 in black: 1/6, 2/3, 1/6 along each axis leave the centre
    // 4/9 (113.3), its neighbours 1/9 (28.3) and the diagonals 1/36 (7.08).
    std::vector<BitmapPixel> src(49, BitmapPixel{0, 0, 0, 0}), dst(49);
    src[24] = {255, 255, 255, 255};
    BiCubicScale(src.data(), 7, 7, dst.data(), 7, 7);
    EXPECT_EQ(dst[24].r, 113);
    EXPECT_EQ(dst[23].g, 28);
    EXPECT_EQ(dst[31].b, 28);
    EXPECT_EQ(dst[32].a, 7) << "alpha is resampled too";
    EXPECT_EQ(dst[26].r, 0);
    // A 4 x 1 ramp halved: x = 2i with no half-pixel shift, edges repeated:
    // 2/3 * 0 + 1/6 * 0 + 1/6 * 60 = 10, and 1/6 * 60 + 2/3 * 120 + 1/6 * 180 = 120
    // (truncation may take 9.999... to 9).
    std::vector<BitmapPixel> ramp{{0, 0, 0, 0}, {60, 0, 0, 0}, {120, 0, 0, 0}, {180, 0, 0, 0}}, half(2);
    BiCubicScale(ramp.data(), 4, 1, half.data(), 2, 1);
    EXPECT_NEAR(half[0].r, 10, 1);
    EXPECT_NEAR(half[1].r, 120, 1);
    // A uniform image stays uniform but for truncation: never higher, at most one lower.
    for (int level : {1, 128, 255}) {
        const auto v = static_cast<unsigned char>(level);
        std::vector<BitmapPixel> flat(45, BitmapPixel{v, v, v, 255}), out(13 * 11);
        BiCubicScale(flat.data(), 9, 5, out.data(), 13, 11);
        for (const auto &q : out)
            EXPECT_TRUE(q.r == level || q.r == level - 1) << level;
    }
    BitmapPixel guard{1, 2, 3, 4};
    BiCubicScale(src.data(), 7, 7, &guard, 0, 5);
    GaussianScale(src.data(), 7, 7, &guard, 5, -1, 1.0);
    EXPECT_TRUE(Same_BitmapPixel(guard, {1, 2, 3, 4})) << "empty destinations are not written";
}

TEST(GaussianScale, NearestSampleAndUnnormalisedSums)
{
    std::mt19937 gen(5);
    std::vector<BitmapPixel> src(7 * 5), dst(10 * 10);
    for (auto &p : src)
        p = {static_cast<unsigned char>(gen()), static_cast<unsigned char>(gen()), 0, 0};
    GaussianScale(src.data(), 7, 5, dst.data(), 3, 4, 0.0);
    for (int j = 0; j < 4; j++)
        for (int i = 0; i < 3; i++)
            EXPECT_TRUE(Same_BitmapPixel(dst[i + 3 * j], src[(i * 7) / 3 + ((j * 5) / 4) * 7]));
    // Sigma 1 sums the unit normal density on a 9 x 9 grid to nearly 1.
    std::vector<BitmapPixel> grey(100, BitmapPixel{200, 200, 200, 200}), white(100, BitmapPixel{255, 255, 255, 255});
    GaussianScale(grey.data(), 10, 10, dst.data(), 10, 10, 1.0);
    EXPECT_NEAR(dst[55].r, 200, 2);
    EXPECT_NE(dst[55].r, 200);
    // Sigma 0.3 samples 3 x 3 points weighing about 1.2: 255 wraps past 255.
    GaussianScale(white.data(), 10, 10, dst.data(), 10, 10, 0.3);
    EXPECT_LT(dst[55].r, 100);
    // An empty sampling range (negative or infinite sigma) leaves zeros.
    for (double sigma : {-1.0, static_cast<double>(INFINITY)}) {
        GaussianScale(white.data(), 10, 10, dst.data(), 10, 10, sigma);
        EXPECT_TRUE(Same_BitmapPixel(dst[55], {0, 0, 0, 0}));
    }
}
