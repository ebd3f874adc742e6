// Bicubic and Gaussian resampling.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "bitmap.h"

namespace {

std::vector<BitmapPixel> Uniform(int w, int h, BitmapPixel p)
{
    return std::vector<BitmapPixel>(static_cast<size_t>(w) * h, p);
}

} // namespace

TEST(BiCubicKernel, KnownValuesAndSymmetry)
{
    // The cubic B-spline: 2/3 at 0, 1/6 at 1, 0 from 2 on; at 0.5,
    // (2.5^3 - 4 * 1.5^3 + 6 * 0.5^3) / 6 = 2.875 / 6.
    EXPECT_DOUBLE_EQ(BiCubicR(0), 2.0 / 3);
    EXPECT_DOUBLE_EQ(BiCubicR(1), 1.0 / 6);
    EXPECT_DOUBLE_EQ(BiCubicR(-1), 1.0 / 6);
    EXPECT_DOUBLE_EQ(BiCubicR(0.5), 2.875 / 6);
    EXPECT_EQ(BiCubicR(2), 0);
    EXPECT_EQ(BiCubicR(-2), 0);
    EXPECT_EQ(BiCubicR(-7.3), 0);
    // The formula has no P(x-2)^3 term, so beyond +2 it is not the spline:
    // R(3) = (125 - 256 + 162 - 32) / 6. The sampler only asks for
    // -2 < x <= 2, where it is.
    EXPECT_DOUBLE_EQ(BiCubicR(3), -1.0 / 6);
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> d(0, 1);
    for (int i = 0; i < 1000; i++) {
        const double dx = d(gen);
        EXPECT_NEAR(BiCubicR(dx), BiCubicR(-dx), 1e-13); // cancellation in the cubes
        const double sum = BiCubicR(-1 - dx) + BiCubicR(-dx) + BiCubicR(1 - dx) + BiCubicR(2 - dx);
        EXPECT_NEAR(sum, 1.0, 1e-14) << "weights of one sample position sum to 1";
        EXPECT_GE(BiCubicR(dx), 0);
    }
}

TEST(BiCubicScale, ScaleOneBlursAnImpulse)
{
    // A single 255 pixel in black: weights 1/6, 2/3, 1/6 along each axis, so
    // the centre keeps 4/9 (113.3), its four neighbours 1/9 (28.3) and the
    // diagonals 1/36 (7.08), truncated.
    const int w = 7, h = 7;
    auto src = Uniform(w, h, {0, 0, 0, 0});
    src[3 + 3 * w] = {255, 255, 255, 255};
    std::vector<BitmapPixel> dst(src.size());
    BiCubicScale(src.data(), w, h, dst.data(), w, h);
    EXPECT_EQ(dst[3 + 3 * w].r, 113);
    EXPECT_EQ(dst[2 + 3 * w].g, 28);
    EXPECT_EQ(dst[3 + 4 * w].b, 28);
    EXPECT_EQ(dst[4 + 4 * w].a, 7);
    EXPECT_EQ(dst[5 + 3 * w].r, 0);
    EXPECT_EQ(dst[0].r, 0);
}

TEST(BiCubicScale, UniformStaysUniformToWithinTruncation)
{
    // The weights sum to 1 only to rounding, and the sums are truncated: a
    // level may come out one lower, never higher, never further off.
    for (int level : {1, 17, 128, 200, 255}) {
        const BitmapPixel p{static_cast<unsigned char>(level), static_cast<unsigned char>(level),
                            static_cast<unsigned char>(level), 255};
        auto src = Uniform(9, 5, p);
        for (auto [nw, nh] : {std::pair{9, 5}, {4, 3}, {13, 11}, {1, 1}}) {
            std::vector<BitmapPixel> dst(static_cast<size_t>(nw) * nh);
            BiCubicScale(src.data(), 9, 5, dst.data(), nw, nh);
            for (const auto &q : dst) {
                EXPECT_LE(q.r, level);
                EXPECT_GE(q.r, level - 1);
            }
        }
    }
}

TEST(BiCubicScale, EdgesRepeatAndPositionsMapCornerToCorner)
{
    // A 4 x 1 ramp halved: destination i samples source 2i with no
    // half-pixel shift; taps beyond the ends repeat the edge pixels.
    std::vector<BitmapPixel> src{{0, 0, 0, 0}, {60, 0, 0, 0}, {120, 0, 0, 0}, {180, 0, 0, 0}};
    std::vector<BitmapPixel> dst(2);
    BiCubicScale(src.data(), 4, 1, dst.data(), 2, 1);
    // x = 0: 1/6 * 0 (edge repeated) + 2/3 * 0 + 1/6 * 60 = 10.
    EXPECT_NEAR(dst[0].r, 10, 1); // truncation may take 9.999... to 9
    // x = 2: 1/6 * 60 + 2/3 * 120 + 1/6 * 180 = 120.
    EXPECT_NEAR(dst[1].r, 120, 1);
}

TEST(BiCubicScale, EmptyDestinationWritesNothing)
{
    auto src = Uniform(3, 3, {9, 9, 9, 9});
    BitmapPixel guard{1, 2, 3, 4};
    BiCubicScale(src.data(), 3, 3, &guard, 0, 5);
    BiCubicScale(src.data(), 3, 3, &guard, 5, -1);
    GaussianScale(src.data(), 3, 3, &guard, 0, 1, 1.0);
    EXPECT_TRUE(Same_BitmapPixel(guard, {1, 2, 3, 4}));
}

TEST(GaussianScale, ZeroSigmaIsNearestSample)
{
    std::mt19937 gen(5);
    std::vector<BitmapPixel> src(7 * 5);
    for (auto &p : src)
        p = {static_cast<unsigned char>(gen()), static_cast<unsigned char>(gen()),
             static_cast<unsigned char>(gen()), static_cast<unsigned char>(gen())};
    std::vector<BitmapPixel> dst(3 * 4);
    GaussianScale(src.data(), 7, 5, dst.data(), 3, 4, 0.0);
    for (int j = 0; j < 4; j++)
        for (int i = 0; i < 3; i++)
            EXPECT_TRUE(Same_BitmapPixel(dst[i + 3 * j], src[(i * 7) / 3 + ((j * 5) / 4) * 7]));
}

TEST(GaussianScale, UnnormalisedSumsStayUnnormalised)
{
    // Sigma 1 samples a 9 x 9 grid of the unit normal density: the weights
    // sum to nearly 1, so 200 comes out close to, but not exactly, 200.
    auto src = Uniform(10, 10, {200, 200, 200, 200});
    std::vector<BitmapPixel> dst(10 * 10);
    GaussianScale(src.data(), 10, 10, dst.data(), 10, 10, 1.0);
    EXPECT_NEAR(dst[55].r, 200, 2);
    EXPECT_NE(dst[55].r, 200);
    // A narrow sigma (0.3) samples only 3 x 3 points whose weights sum to
    // about 1.2: 255 grows past 255 and keeps its low eight bits.
    auto white = Uniform(10, 10, {255, 255, 255, 255});
    GaussianScale(white.data(), 10, 10, dst.data(), 10, 10, 0.3);
    EXPECT_LT(dst[55].r, 100) << "the sum wraps rather than clamping";
    // A sigma with an empty sampling range leaves every channel at 0.
    GaussianScale(white.data(), 10, 10, dst.data(), 10, 10, -1.0);
    EXPECT_TRUE(Same_BitmapPixel(dst[55], {0, 0, 0, 0}));
    GaussianScale(white.data(), 10, 10, dst.data(), 10, 10, INFINITY);
    EXPECT_TRUE(Same_BitmapPixel(dst[55], {0, 0, 0, 0}));
}
