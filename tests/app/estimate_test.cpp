// The log-log points, the line fits (single and double precision) and the
// dimension estimate.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "estimate.h"
#include "regress.h"
#include "counting_fixture.h"
#include "settings.h"

TEST(LineFit, HandWorkedFitsAndFailuresInBothPrecisions)
{
    struct Case {
        std::vector<float> x, y;
        int ok;
        double a, b, r;
    };
    const Case cases[] = {
        // (0,1), (1,3), (2,2): Sxx = 2, Sxy = 1, Syy = 2: b = 0.5, a = 1.5, r = 0.5.
        {{0, 1, 2}, {1, 3, 2}, 1, 1.5, 0.5, 0.5},
        // Flat points at zero: slope 0 and correlation 1.
        {{-4.5f, -4, -3.5f}, {0, 0, 0}, 1, 0, 0, 1},
        // Too few points, or all x equal: failure with the outputs cleared.
        {{2}, {1}, 0, 0, 0, 0},
        {{2, 2, 2}, {1, 5, 9}, 0, 0, 0, 0},
    };
    for (const auto &c : cases) {
        const int n = static_cast<int>(c.x.size());
        float a = 7, b = 7, r = 7;
        EXPECT_EQ(LinRegressf(c.x.data(), c.y.data(), n, &a, &b, &r), c.ok);
        EXPECT_EQ(std::vector<double>({a, b, r}), std::vector<double>({c.a, c.b, c.r}));
        const std::vector<double> dx(c.x.begin(), c.x.end()), dy(c.y.begin(), c.y.end());
        double da = 7, db = 7, dr = 7;
        EXPECT_EQ(LinRegress(dx.data(), dy.data(), n, &da, &db, &dr), c.ok);
        EXPECT_EQ(std::vector<double>({da, db, dr}), std::vector<double>({c.a, c.b, c.r}));
    }
    // (0,0), (1,1), (3,1): b = 2/7. The intercept 2/3 - b * 4/3 uses b
    // already rounded to float, which lands on another float than 2/7.
    const float x[] = {0, 1, 3}, y[] = {0, 1, 1};
    float a, b, r;
    LinRegressf(x, y, 3, &a, &b, &r);
    EXPECT_EQ(b, static_cast<float>(2.0 / 7));
    EXPECT_EQ(a, static_cast<float>(2.0 / 3 - static_cast<double>(static_cast<float>(2.0 / 7)) * 4 / 3));
    EXPECT_NE(a, static_cast<float>(2.0 / 7));
    // An exact line with high-entropy values, in double precision.
    std::vector<double> dx, dy;
    for (int i = 0; i < 17; i++)
        dx.push_back(-3.7 + 0.61 * i), dy.push_back(2.385 - 1.25 * dx.back());
    double da, db, dr;
    ASSERT_EQ(LinRegress(dx.data(), dy.data(), 17, &da, &db, &dr), 1);
    EXPECT_NEAR(da, 2.385, 1e-12);
    EXPECT_NEAR(db, -1.25, 1e-12);
    EXPECT_NEAR(dr, -1.0, 1e-12);
}

TEST(CalcSlope, SentinelsAndAnExactPowerLaw)
{
    counting::SetResults({{100, 5}, {66, 9}, {44, 20}});
    EXPECT_EQ(CalcSlope(), -1.0) << "fewer than 4 records";
    counting::SetResults({{100, 5}, {66, 9}, {100, 4}, {66, 12}});
    EXPECT_EQ(CalcSlope(), 0.0) << "only 2 distinct sizes";
    // A filled 1024 square: N(s) = (1024 / s)^2.
    std::vector<std::pair<int, int>> recs;
    for (int s = 512; s >= 4; s /= 2)
        recs.push_back({s, (1024 / s) * (1024 / s)});
    counting::SetResults(recs);
    EXPECT_NEAR(CalcSlope(), 2.0, 1e-5);
}

TEST(LogLogPoints, RepeatedSizesKeepTheirSmallestCount)
{
    // Three passes over 100, 66, 44, 29: 12 records, 4 points.
    counting::SetResults({{100, 9}, {66, 20}, {44, 41}, {29, 90}, {100, 8}, {66, 22},
                {44, 40}, {29, 95}, {100, 10}, {66, 21}, {44, 43}, {29, 88}});
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    ASSERT_EQ(X.size(), 4u);
    const int sizes[] = {100, 66, 44, 29}, smallest[] = {8, 20, 40, 88};
    std::vector<double> dx, dy;
    for (int i = 0; i < 4; i++) {
        EXPECT_FLOAT_EQ(X[i], static_cast<float>(std::log(1.0 / sizes[i])));
        EXPECT_FLOAT_EQ(Y[i], std::log(static_cast<float>(smallest[i])));
        dx.push_back(std::log(1.0 / sizes[i])), dy.push_back(std::log(smallest[i]));
    }
    double a, b, r;
    LinRegress(dx.data(), dy.data(), 4, &a, &b, &r);
    EXPECT_NEAR(CalcSlope(), b, 1e-5);
    // Zero counts: a repeat lowers its point to 0; a new size starts at 0.
    counting::SetResults({{100, 5}, {66, 9}, {44, 0}, {100, 0}});
    BuildLogLogPoints(&X, &Y);
    EXPECT_EQ(Y, (std::vector<float>{0, std::log(9.0f), 0}));
    // ln(1/20000) and ln(1/20001) differ by 5e-5: one point.
    counting::SetResults({{20001, 3}, {20000, 2}, {100, 50}, {50, 200}});
    BuildLogLogPoints(&X, &Y);
    EXPECT_EQ(X.size(), 3u);
    EXPECT_FLOAT_EQ(Y[0], std::log(2.0f));
}
