// Colour maps, ramps, comparisons and colour-space conversions: hand-worked
// values in tables, cross-checked where noted against Python's colorsys.
#include "colour.h"

#include <climits>
#include <cmath>
#include <iomanip>
#include <string>
#include <vector>

#include <gtest/gtest.h>

static Colour C(double r, double g, double b) { return Colour{r, g, b}; }

// Expects every component of got within tol of want's (tol 0: exactly).
static void ExpectColour(const Colour &got, const Colour &want, double tol, const char *what = "") {
    EXPECT_TRUE(std::fabs(got.r - want.r) <= tol && std::fabs(got.g - want.g) <= tol && std::fabs(got.b - want.b) <= tol)
        << what << std::setprecision(17) << " got " << got.r << " " << got.g << " " << got.b << ", want " << want.r << " "
        << want.g << " " << want.b;
}

TEST(Colour, EveryMapAtZeroEachBreakpointAndOne) {
    // Colours at the breakpoints, copied by hand from the map designs as
    // 8-bit values (t, r, g, b; 255 is full). The range -1.5 to 2.5 makes t
    // pass through (v - vmin) / (vmax - vmin).
    const std::vector<std::vector<double>> maps[26] = {{},
        {{0, 0, 0, 255}, {0.25, 0, 255, 255}, {0.5, 0, 255, 0}, {0.75, 255, 255, 0}, {1, 255, 0, 0}},
        {{0, 0, 0, 255}, {1, 255, 0, 0}}, {{0, 0, 0, 0}, {1, 255, 255, 255}},
        {{0, 255, 0, 0}, {1.0 / 6, 255, 255, 0}, {2.0 / 6, 0, 255, 0}, {3.0 / 6, 0, 255, 255}, {4.0 / 6, 0, 0, 255}, {5.0 / 6, 255, 0, 255}, {1, 255, 0, 0}},
        {{0, 0, 0, 255}, {1, 255, 0, 255}}, {{0, 0, 255, 0}, {1, 255, 0, 255}},
        {{0, 0, 0, 255}, {0.25, 0, 255, 0}, {0.5, 255, 0, 0}, {0.75, 0, 255, 0}, {1, 0, 0, 255}},
        {{0, 0, 0, 0}, {0.5, 255, 255, 255}, {1, 0, 0, 0}},
        {{0, 255, 0, 0}, {1.0 / 3, 0, 0, 255}, {2.0 / 3, 0, 255, 255}, {1, 255, 0, 255}},
        {{0, 0, 0, 255}, {0.2, 0, 255, 255}, {0.4, 0, 255, 0}, {0.6, 255, 255, 0}, {0.8, 255, 0, 0}, {1, 255, 255, 255}},
        {{0, 200, 60, 0}, {1, 250, 160, 110}}, {{0, 55, 55, 45}, {0.4, 235, 90, 30}, {1, 250, 160, 110}},
        {{0, 0, 255, 0}, {0.3, 255, 150, 0}, {1, 255, 250, 240}}, {{0, 255, 255, 0}, {1, 255, 0, 0}},
        {{0, 0, 0, 255}, {0.25, 0, 255, 255}, {0.5, 0, 255, 0}, {0.75, 255, 255, 0}, {1, 255, 255, 255}},
        {{0, 0, 0, 255}, {0.5, 0, 255, 0}, {1, 255, 0, 0}}, {{0, 255, 255, 0}, {0.5, 255, 0, 255}, {1, 0, 255, 255}},
        {{0, 0, 0, 255}, {1, 0, 255, 255}}, {{0, 0, 0, 255}, {1, 255, 255, 255}},
        {{0, 0, 160, 0}, {0.3, 180, 220, 0}, {1, 250, 220, 170}}, {{0, 255, 255, 200}, {1, 150, 150, 255}},
        {{0, 255, 255, 0}, {1, 0, 0, 255}}, {{0, 255, 0, 0}, {0.5, 255, 255, 255}, {1, 0, 0, 255}},
        {{0, 0, 0, 255}, {0.5, 255, 255, 0}, {1, 255, 0, 0}},
        {{0, 0, 0, 255}, {1.0 / 3, 0, 255, 255}, {2.0 / 3, 255, 0, 255}, {1, 255, 0, 0}}};
    auto at = [](double t, int type) { return GetColour(-1.5 + 4 * t, -1.5, 2.5, type); };
    for (int type = 1; type <= 25; type++) {
        const auto &m = maps[type];
        ASSERT_TRUE(m.front()[0] == 0 && m.back()[0] == 1) << "table row " << type;
        for (size_t i = 0; i < m.size(); i++) {
            const std::string what = "type " + std::to_string(type) + " t " + std::to_string(m[i][0]);
            ExpectColour(at(m[i][0], type), C(m[i][1] / 255, m[i][2] / 255, m[i][3] / 255), 1e-12, what.c_str());
            // Linear between breakpoints: the midpoint is the mean colour.
            if (i + 1 < m.size())
                ExpectColour(at((m[i][0] + m[i + 1][0]) / 2, type),
                             C((m[i][1] + m[i + 1][1]) / 510, (m[i][2] + m[i + 1][2]) / 510, (m[i][3] + m[i + 1][3]) / 510), 1e-12, what.c_str());
        }
    }
    // Type 0 and every type outside 1 to 25 give white.
    for (int type : {0, 26, -1, INT_MIN, INT_MAX})
        for (double t : {0.0, 0.3, 1.0}) ExpectColour(at(t, type), C(1, 1, 1), 0);
}

TEST(Colour, GetColourOrdersClampsAndWidensTheRange) {
    ExpectColour(GetColour(0.25, 0, 1, 1), C(0, 1, 1), 0);
    // Equal bounds widen to 2 to 4, so v = 3 is t = 0.5; a range of 5e-7 is
    // widened too (t = 1 / 2.0000005 for v = vmin).
    ExpectColour(GetColour(3, 3, 3, 2), C(0.5, 0, 0.5), 0);
    ExpectColour(GetColour(0, 0, 5e-7, 3), C(1 / 2.0000005, 1 / 2.0000005, 1 / 2.0000005), 1e-15);
    for (double v : {-7.0, 0.0, 0.3, 0.8, 1.0, 42.0})
        ExpectColour(GetColour(v, 1, 0, 10), GetColour(v, 0, 1, 10), 0, "reversed bounds");
    ExpectColour(GetColour(-7, 0, 1, 10), C(0, 0, 1), 0);
    ExpectColour(GetColour(42, 0, 1, 10), C(1, 1, 1), 0);
}

TEST(Colour, RampCharactersAndComponentOperations) {
    const Colour c1 = C(0.2, 0.4, 0.6), c2 = C(1, 0, 0.5);
    ExpectColour(RampColour2(-0.01, c1, c2), c1, 0);
    ExpectColour(RampColour2(1.01, c1, c2), c2, 0);
    ExpectColour(RampColour2(0.25, c1, c2), C(0.4, 0.3, 0.575), 1e-15);
    // 15 levels over 10 to 40 are 2 wide: level k spans 10 + 2k to 12 + 2k.
    // The top of the range joins the last level; reversed bounds run the ramp
    // from vmin; an empty range and NaN give the blank.
    const char ramp[] = " .,:;-|I*oO%#@M";
    for (int k = 0; k < 15; k++) {
        EXPECT_EQ(AsciiColour(10 + 2 * k + 0.01, 10, 40), ramp[k]) << k;
        EXPECT_EQ(AsciiColour(12 + 2 * k - 0.01, 10, 40), ramp[k]) << k;
        EXPECT_EQ(AsciiColour(40 - 2 * k - 0.01, 40, 10), ramp[k]) << k;
    }
    const int ascii[][2] = {{AsciiColour(40, 10, 40), 'M'}, {AsciiColour(1e9, 10, 40), 'M'}, {AsciiColour(-1e9, 10, 40), ' '},
                            {AsciiColour(10, 40, 10), 'M'}, {AsciiColour(3, 3, 3), ' '}, {AsciiColour(std::nan(""), 0, 1), ' '}};
    for (const auto &a : ascii) EXPECT_EQ(a[0], a[1]) << "row " << &a - ascii;
    // sqrt(0.04 + 0.16 + 0.36) / sqrt(3) = sqrt(0.56 / 3) by hand.
    EXPECT_NEAR(AbsColour(c1), 0.43204937989385733, 1e-15);
    EXPECT_EQ(AbsColour(C(1, 1, 1)), 1);
    EXPECT_NEAR(AbsColour(C(0, 0, 1)), 1 / std::sqrt(3.0), 1e-16);
    // A difference of exactly 1e-6 (0 against 1e-6) is still equal; the next
    // double above is not, on any component and in either direction.
    const double over = std::nextafter(1e-6, 1.0);
    EXPECT_TRUE(EqualColour(C(0, 0, 0), C(1e-6, -1e-6, 1e-6)));
    for (int k = 0; k < 6; k++) {
        double d[3] = {0, 0, 0};
        d[k % 3] = k < 3 ? over : -over;
        EXPECT_FALSE(EqualColour(C(0, 0, 0), C(d[0], d[1], d[2]))) << k;
    }
    ExpectColour(InvertColour(c1), C(0.8, 0.6, 0.4), 1e-15);
    ExpectColour(ClipColour(C(-0.5, 0.25, 7)), C(0, 0.25, 1), 0);
    const ColourA a = ClipRGBA(ColourA{2, -1, 0.75, -3}), b = ClipRGBA(ColourA{0.5, 0.125, 9, 4});
    EXPECT_TRUE(a.r == 1 && a.g == 0 && a.b == 0.75 && a.a == 0 && b.r == 0.5 && b.g == 0.125 && b.b == 1 && b.a == 1);
}

TEST(Colour, HslAndHsvWorkedValues) {
    // RGB, then HSL and HSV worked by hand and matching Python's colorsys
    // (hue x 360): primaries and the secondaries with two equal maxima, a
    // dark, a light and a negative-hue colour, greys, black and white.
    const double rows[][9] = {
        {1, 0, 0, 0, 1, 0.5, 0, 1, 1}, {1, 1, 0, 60, 1, 0.5, 60, 1, 1}, {0, 1, 0, 120, 1, 0.5, 120, 1, 1},
        {0, 1, 1, 180, 1, 0.5, 180, 1, 1}, {0, 0, 1, 240, 1, 0.5, 240, 1, 1}, {1, 0, 1, 300, 1, 0.5, 300, 1, 1},
        {0.2, 0.4, 0.6, 210, 0.5, 0.4, 210, 2.0 / 3, 0.6}, {0.9, 0.7, 0.5, 30, 2.0 / 3, 0.7, 30, 4.0 / 9, 0.9},
        {0.8, 0.2, 0.5, 330, 0.6, 0.5, 330, 0.75, 0.8}, {0.3, 0.3, 0.3, 0, 0, 0.3, 0, 0, 0.3},
        {0, 0, 0, 0, 0, 0, 0, 0, 0}, {1, 1, 1, 0, 0, 1, 0, 0, 1}};
    for (const auto &w : rows) {
        ExpectColour(RGB2HSL(w[0], w[1], w[2]), C(w[3], w[4], w[5]), 1e-13, "RGB2HSL");
        ExpectColour(RGB2HSV(w[0], w[1], w[2]), C(w[6], w[7], w[8]), 1e-13, "RGB2HSV");
        ExpectColour(HSL2RGB(w[3], w[4], w[5]), C(w[0], w[1], w[2]), 1e-13, "HSL2RGB");
        ExpectColour(HSV2RGB(w[6], w[7], w[8]), C(w[0], w[1], w[2]), 1e-13, "HSV2RGB");
    }
    // Hues are taken modulo whole turns, 360 itself staying red; far-out hues
    // (here 10^6 turns and 1e300) end without looping forever.
    ExpectColour(HSV2RGB(-120, 1, 1), C(0, 0, 1), 0);
    ExpectColour(HSL2RGB(360, 1, 0.5), C(1, 0, 0), 0);
    ExpectColour(HSL2RGB(720 + 210, 0.5, 0.4), C(0.2, 0.4, 0.6), 1e-15);
    ExpectColour(HSV2RGB(-360 * 3 + 30, 4.0 / 9, 0.9), C(0.9, 0.7, 0.5), 1e-15);
    ExpectColour(HSV2RGB(360e6 + 30, 4.0 / 9, 0.9), C(0.9, 0.7, 0.5), 1e-15);
    EXPECT_TRUE(std::isfinite(HSV2RGB(1e300, 1, 1).g));
    const Colour inf = HSL2RGB(INFINITY, 0.5, 0.5);
    EXPECT_TRUE(std::isnan(inf.r) && std::isnan(inf.b));
}

TEST(Colour, HslAndHsvRoundTripOnAGrid) {
    // Every colour of an 11 x 11 x 11 grid comes back from HSL and from HSV,
    // and hue and saturation stay in their ranges.
    for (int i = 0; i <= 10; i++)
        for (int j = 0; j <= 10; j++)
            for (int k = 0; k <= 10; k++) {
                const double r = i / 10.0, g = j / 10.0, b = k / 10.0;
                const Colour hsl = RGB2HSL(r, g, b), hsv = RGB2HSV(r, g, b);
                ExpectColour(HSL2RGB(hsl.r, hsl.g, hsl.b), C(r, g, b), 1e-14, "HSL");
                ExpectColour(HSV2RGB(hsv.r, hsv.g, hsv.b), C(r, g, b), 1e-14, "HSV");
                EXPECT_TRUE(hsl.r >= 0 && hsl.r < 360 && hsl.g >= 0 && hsl.g <= 1 + 1e-15 && hsv.g >= 0 && hsv.g <= 1);
            }
}

TEST(Colour, YccWorkedValuesAndClamping) {
    // Worked by hand with the library's coefficients. White does not come
    // back exactly: Cb and Cr of white are 1e-4, and g = 1 - 1.0601e-4.
    const double rows[][6] = {{1, 0, 0, 0.2989, -0.1687, 0.5}, {0, 1, 0, 0.5866, -0.3312, -0.4183},
                              {0, 0, 1, 0.1145, 0.5, -0.0816}, {0.2, 0.4, 0.6, 0.36312, 0.13378, -0.11628},
                              {1, 1, 1, 1, 1e-4, 1e-4}};
    for (const auto &w : rows) ExpectColour(RGB2YCC(w[0], w[1], w[2]), C(w[3], w[4], w[5]), 1e-15, "RGB2YCC");
    ExpectColour(YCC2RGB(0.5, 0.1, -0.1), C(0.35978, 0.53689, 0.6771), 1e-15);
    ExpectColour(YCC2RGB(1, 1e-4, 1e-4), C(1, 0.99989399, 1), 1e-15);
    ExpectColour(YCC2RGB(0.5, 0.4, -0.4), C(0, 0.64756, 1), 1e-15);
    ExpectColour(YCC2RGB(-0.2, 0, 0), C(0, 0, 0), 0);
}
