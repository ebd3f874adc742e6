// The log-log points, the single-precision line fit and the estimate.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "estimate.h"
#include "regress.h"
#include "settings.h"

namespace {

std::vector<RESULT> storage;

// Puts the given (size, count) records into the results array.
void SetResults(const std::vector<std::pair<int, int>> &records)
{
    storage.clear();
    for (auto [size, count] : records)
        storage.push_back(RESULT{size, count, 0});
    results = storage.data();
    nresults = static_cast<int>(storage.size());
}

} // namespace

TEST(LinRegressf, HandWorkedFit)
{
    // (0,1), (1,3), (2,2): Sxx = 2, Sxy = 1, Syy = 2, so b = 0.5,
    // a = 2 - 0.5 * 1 = 1.5 and r = 1 / sqrt(4) = 0.5.
    const float x[] = {0, 1, 2}, y[] = {1, 3, 2};
    float a, b, r;
    ASSERT_EQ(LinRegressf(x, y, 3, &a, &b, &r), 1);
    EXPECT_EQ(a, 1.5f);
    EXPECT_EQ(b, 0.5f);
    EXPECT_EQ(r, 0.5f);
    const double dx[] = {0, 1, 2}, dy[] = {1, 3, 2};
    double da, db, dr;
    ASSERT_EQ(LinRegress(dx, dy, 3, &da, &db, &dr), 1);
    EXPECT_EQ(da, 1.5);
    EXPECT_EQ(db, 0.5);
    EXPECT_EQ(dr, 0.5);
}

TEST(LinRegressf, FailuresClearTheOutputs)
{
    const float x[] = {2, 2, 2}, y[] = {1, 5, 9};
    float a = 7, b = 7, r = 7;
    EXPECT_EQ(LinRegressf(x, y, 1, &a, &b, &r), 0);
    EXPECT_EQ(a + b + r, 0.0f);
    a = b = r = 7;
    EXPECT_EQ(LinRegressf(x, y, 3, &a, &b, &r), 0) << "all x equal";
    EXPECT_EQ(a + b + r, 0.0f);
    double da = 7, db = 7, dr = 7;
    const double dx[] = {2, 2}, dy[] = {1, 5};
    EXPECT_EQ(LinRegress(dx, dy, 2, &da, &db, &dr), 0);
    EXPECT_EQ(da + db + dr, 0.0);
}

TEST(LinRegressf, FlatZeroPointsHaveCorrelationOne)
{
    const float x[] = {-4.6f, -4.2f, -3.8f}, y[] = {0, 0, 0};
    float a, b, r;
    ASSERT_EQ(LinRegressf(x, y, 3, &a, &b, &r), 1);
    EXPECT_EQ(b, 0.0f);
    EXPECT_EQ(r, 1.0f);
}

TEST(LinRegressf, InterceptUsesTheSlopeRoundedToFloat)
{
    // (0,0), (1,1), (3,1): b = 2/7. With b rounded to float first,
    // a = 2/3 - float(2/7) * 4/3 = 0.2857142687..., which rounds to a
    // different float than the exact 2/7 would.
    const float x[] = {0, 1, 3}, y[] = {0, 1, 1};
    float a, b, r;
    ASSERT_EQ(LinRegressf(x, y, 3, &a, &b, &r), 1);
    EXPECT_EQ(b, static_cast<float>(2.0 / 7));
    EXPECT_EQ(a, static_cast<float>(2.0 / 3 - static_cast<double>(static_cast<float>(2.0 / 7)) * 4 / 3));
    EXPECT_NE(a, static_cast<float>(2.0 / 7));
}

TEST(LinRegress, ExactLineWithHighEntropyValues)
{
    std::vector<double> x, y;
    for (int i = 0; i < 17; i++) {
        x.push_back(-3.7 + 0.61 * i);
        y.push_back(2.385 - 1.25 * x.back());
    }
    double a, b, r;
    ASSERT_EQ(LinRegress(x.data(), y.data(), 17, &a, &b, &r), 1);
    EXPECT_NEAR(a, 2.385, 1e-12);
    EXPECT_NEAR(b, -1.25, 1e-12);
    EXPECT_NEAR(r, -1.0, 1e-12);
}

TEST(CalcSlope, SentinelsForTooLittleData)
{
    SetResults({{100, 5}, {66, 9}, {44, 20}});
    EXPECT_EQ(CalcSlope(), -1.0) << "fewer than 4 records";
    SetResults({{100, 5}, {66, 9}, {100, 4}, {66, 12}});
    EXPECT_EQ(CalcSlope(), 0.0) << "only 2 distinct sizes";
}

TEST(CalcSlope, RepeatedSizesKeepTheirSmallestCount)
{
    // Three passes over 100, 66, 44, 29: 12 records, 4 points.
    SetResults({{100, 9}, {66, 20}, {44, 41}, {29, 90},
                {100, 8}, {66, 22}, {44, 40}, {29, 95},
                {100, 10}, {66, 21}, {44, 43}, {29, 88}});
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    ASSERT_EQ(X.size(), 4u);
    const int sizes[] = {100, 66, 44, 29}, smallest[] = {8, 20, 40, 88};
    std::vector<double> dx, dy;
    for (int i = 0; i < 4; i++) {
        EXPECT_FLOAT_EQ(X[i], static_cast<float>(std::log(1.0 / sizes[i])));
        EXPECT_FLOAT_EQ(Y[i], std::log(static_cast<float>(smallest[i])));
        dx.push_back(std::log(1.0 / sizes[i]));
        dy.push_back(std::log(smallest[i]));
    }
    double a, b, r;
    LinRegress(dx.data(), dy.data(), 4, &a, &b, &r);
    EXPECT_NEAR(CalcSlope(), b, 1e-5);
    EXPECT_GT(b, 1.5);
}

TEST(CalcSlope, ZeroCountsGiveZeroLogarithms)
{
    // A zero count in a repeat pass lowers its point to 0; a size first
    // seen with a zero count starts at 0.
    SetResults({{100, 5}, {66, 9}, {44, 0}, {100, 0}});
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    ASSERT_EQ(Y.size(), 3u);
    EXPECT_EQ(Y[0], 0.0f);
    EXPECT_FLOAT_EQ(Y[1], std::log(9.0f));
    EXPECT_EQ(Y[2], 0.0f);
}

TEST(CalcSlope, NearbyLargeSizesShareAPoint)
{
    // ln(1/20000) and ln(1/20001) differ by 5e-5: one point, as the
    // results table (which matches sizes exactly) would not have it.
    SetResults({{20001, 3}, {20000, 2}, {100, 50}, {50, 200}});
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    EXPECT_EQ(X.size(), 3u);
    EXPECT_FLOAT_EQ(Y[0], std::log(2.0f));
}

TEST(CalcSlope, ExactPowerLawGivesItsExponent)
{
    // N(s) = (1024 / s)^2 for s = 512, 256, ... 4: a filled square.
    std::vector<std::pair<int, int>> recs;
    for (int s = 512; s >= 4; s /= 2)
        recs.push_back({s, (1024 / s) * (1024 / s)});
    SetResults(recs);
    EXPECT_NEAR(CalcSlope(), 2.0, 1e-5);
}
