// Interpolators and curves: values worked out by hand, the identities that
// tie the Bezier forms and the B-splines together, and the sampling of whole
// curves.
#include "curves.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

using namespace geomtest;

// Control points with no symmetry, so a swapped or dropped term shows.
static const XYZ kCtrl[7] = {Pt(1, -2, 0.5), Pt(2.385, 3, -1), Pt(4, 0.25, 2), Pt(-3, 1, 6),
                             Pt(0, 1, 7),    Pt(5, -4, 2),     Pt(-1, 6, 2)};

TEST(Curves, ScalarInterpolatorsHitEndpointsAndHandWorkedValues)
{
    // Every interpolator gives y1 at mu 0 and y2 at mu 1, whatever the
    // neighbours, tension and bias.
    const double y0 = -0.75, y1 = 2.385, y2 = -1.25, y3 = 4.5;
    for (double mu : {0.0, 1.0}) {
        const double want = mu == 0 ? y1 : y2;
        EXPECT_DOUBLE_EQ(LinearInterpolate(y1, y2, mu), want);
        EXPECT_NEAR(CosineInterpolate(y1, y2, mu), want, 1e-15);
        EXPECT_DOUBLE_EQ(CubicInterpolate(y0, y1, y2, y3, mu), want);
        for (double tension : {-1.0, 0.0, 0.3, 1.0})
            for (double bias : {-1.0, 0.0, 0.6})
                EXPECT_DOUBLE_EQ(HermiteInterpolate(y0, y1, y2, y3, mu, tension, bias), want);
    }
    // Worked by hand. Cosine: m = (1 - cos(mu pi)) / 2 is 1/4 at mu 1/3 and
    // 3/4 at 2/3; at mu 1/2 it rounds to 0.49999999999999994 because cos(pi/2)
    // is 6.1e-17, not 0. Cubic on 1, 2, 4, 8: a0 = 5, a1 = -6, a2 = 3, a3 = 2.
    // Hermite on 1, 2, 4, 8 at mu 1/2 (weights 1/2, 1/8, -1/8, 1/2 for y1, m0,
    // m1, y2): tangents (m0, m1) are (1.5, 3) for tension 0, bias 0; (0, 0)
    // for tension 1; (3, 6) for tension -1; (1, 2) for bias 1 and (2, 4) for
    // bias -1.
    const double cases[][3] = {
        {LinearInterpolate(y1, y2, 0.25), 0.75 * 2.385 - 0.25 * 1.25, 1e-15},
        {CosineInterpolate(0, 1, 0.5), 0.5, 1e-16},
        {CosineInterpolate(2, 6, 1.0 / 3), 3, 1e-15},
        {CosineInterpolate(2, 6, 2.0 / 3), 5, 1e-15},
        {CosineInterpolate(0, 1, 1e-3), M_PI * M_PI * 1e-6 / 4, 1e-11}, // flat start: (pi mu)^2 / 4, not mu
        {CubicInterpolate(1, 2, 4, 8, 0.5), 2.625, 0},
        {CubicInterpolate(1, 2, 4, 8, 0.25), 2.453125, 0},
        {HermiteInterpolate(0, 0, 1, 1, 0.5, 0, 0), 0.5, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, 0, 0), 2.8125, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, 1, 0), 3, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, -1, 0), 2.625, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, 0, 1), 2.875, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, 0, -1), 2.75, 0}};
    for (const auto &c : cases)
        EXPECT_NEAR(c[0], c[1], c[2]) << "row " << &c - cases;
}

TEST(Curves, BezierFormsAgreeAndRunFromFirstToLastPoint)
{
    const XYZ a = kCtrl[0], b = kCtrl[1], c = kCtrl[2], d = kCtrl[3];
    // Midpoints by hand, (a + 2b + c) / 4 and (a + 3b + 3c + d) / 8, then the
    // ends; Bezier at mu exactly 1 gives the last point, not the 0 / 0 of its
    // incremental power.
    const XYZ cases[][2] = {{Bezier3(a, b, c, 0.5), Pt(2.4425, 1.0625, 0.125)},
                            {Bezier4(a, b, c, d, 0.5), Pt(2.144375, 1.09375, 1.1875)},
                            {Bezier3(a, b, c, 0), a},
                            {Bezier3(a, b, c, 1), c},
                            {Bezier4(a, b, c, d, 0), a},
                            {Bezier4(a, b, c, d, 1), d},
                            {CubicBezier(a, b, c, d, 0), a},
                            {CubicBezier(a, b, c, d, 1), d},
                            {Bezier(kCtrl, 0, 0.37), a},
                            {Bezier(nullptr, -1, 0.5), Pt(0, 0, 0)}};
    for (const auto &e : cases)
        ExpectXYZ(e[0], e[1], 1e-15);
    for (int n = 0; n <= 6; n++)
        ExpectXYZ(Bezier(kCtrl, n, 0), kCtrl[0]), ExpectXYZ(Bezier(kCtrl, n, 1), kCtrl[n]);
    for (double mu = 0; mu <= 1.0; mu += 0.0625) {
        ExpectXYZ(CubicBezier(a, b, c, d, mu), Bezier4(a, b, c, d, mu), 1e-14);
        ExpectXYZ(Bezier(kCtrl, 3, mu), Bezier4(a, b, c, d, mu), 1e-14);
        ExpectXYZ(Bezier(kCtrl, 2, mu), Bezier3(a, b, c, mu), 1e-14);
    }
}

TEST(Curves, BezierBlendIsTheBernsteinWeight)
{
    // By hand: C(3,1)/8, C(4,2) (1/4)^2 (3/4)^2 = 54/256, and C(20,10)/2^20
    // = 184756/2^20 for the binomial coefficient of a larger n.
    EXPECT_NEAR(BezierBlend(1, 0.5, 3), 0.375, 1e-16);
    EXPECT_NEAR(BezierBlend(2, 0.25, 4), 0.2109375, 1e-16);
    EXPECT_NEAR(BezierBlend(10, 0.5, 20), 184756.0 / 1048576, 1e-15);
    EXPECT_EQ(BezierBlend(0, 0, 5), 1);
    EXPECT_EQ(BezierBlend(5, 1, 5), 1);
    EXPECT_EQ(BezierBlend(2, 1, 5), 0);
    // The Bernstein weights of every degree sum to 1.
    for (int n : {1, 4, 6, 20})
        for (double mu : {0.1, 0.5, 0.8125, 0.99}) {
            double sum = 0;
            for (int k = 0; k <= n; k++)
                sum += BezierBlend(k, mu, n);
            EXPECT_NEAR(sum, 1, 1e-14) << n << " " << mu;
        }
}

TEST(Curves, SplineKnotsAreOpenUniform)
{
    // Written out by hand: t zeros, 1 to n - t + 1, then n - t + 2 t times;
    // a guard entry past the end stays untouched.
    const std::vector<int> want[] = {{4, 3, 0, 0, 0, 1, 2, 3, 3, 3},
                                     {5, 4, 0, 0, 0, 0, 1, 2, 3, 3, 3, 3},
                                     {3, 1, 0, 1, 2, 3, 4}}; // n, t, then the knots
    for (const auto &w : want) {
        std::vector<int> u(w.size() - 1, -7);
        SplineKnots(u.data(), w[0], w[1]);
        EXPECT_EQ(std::vector<int>(u.begin(), u.end() - 1), std::vector<int>(w.begin() + 2, w.end()));
        EXPECT_EQ(u.back(), -7);
    }
}

TEST(Curves, SplineBlendMatchesQuadraticBasisAndSumsToOne)
{
    // The clamped quadratic basis on 0 0 0 1 2 3 3 3 by hand: on [0, 1)
    // N0 = (1 - v)^2, N1 = 2v - 3v^2/2, N2 = v^2/2; at 1.5 the middle uniform
    // B-spline is 3/4 with 1/8 either side; 2.5 mirrors 0.5.
    int u[8];
    SplineKnots(u, 4, 3);
    const double want[][6] = {{0.5, 0.25, 0.625, 0.125, 0, 0},
                              {1.5, 0, 0.125, 0.75, 0.125, 0},
                              {2.5, 0, 0, 0.125, 0.625, 0.25},
                              {0, 1, 0, 0, 0, 0}};
    for (const auto &w : want)
        for (int k = 0; k <= 4; k++)
            EXPECT_NEAR(SplineBlend(k, 3, u, w[0]), w[k + 1], 1e-16) << w[0] << " " << k;
    EXPECT_EQ(SplineBlend(0, 0, u, 0.5), 0);
    // Partition of unity over the knot range for every order; every basis
    // function is 0 at the last knot (half-open intervals), so SplinePoint
    // gives the origin there.
    for (int t = 1; t <= 7; t++) {
        std::vector<int> k(6 + t + 1);
        SplineKnots(k.data(), 6, t);
        const double end = k.back();
        for (double v = 0; v < end; v += end / 37) {
            double sum = 0;
            for (int i = 0; i <= 6; i++)
                sum += SplineBlend(i, t, k.data(), v);
            EXPECT_NEAR(sum, 1, 1e-14) << "t " << t << " v " << v;
        }
        XYZ out = Pt(9, 9, 9);
        SplinePoint(k.data(), 6, t, end, kCtrl, &out);
        ExpectXYZ(out, Pt(0, 0, 0));
    }
}

TEST(Curves, SplinePointOfFullOrderIsTheBezierCurve)
{
    // With t = n + 1 the knots are n + 1 zeros then n + 1 ones and the basis
    // functions are the Bernstein polynomials (de Boor, A Practical Guide to
    // Splines), so the B-spline is the Bezier curve of the same points.
    for (int n = 1; n <= 6; n++) {
        std::vector<int> u(2 * n + 2);
        SplineKnots(u.data(), n, n + 1);
        for (double v = 0; v < 1; v += 0.0625) {
            XYZ out;
            SplinePoint(u.data(), n, n + 1, v, kCtrl, &out);
            ExpectXYZ(out, Bezier(kCtrl, n, v), 1e-13);
        }
    }
}

TEST(Curves, SplineCurveSamplesEvenlyAndEndsOnTheControlPoints)
{
    for (int t = 1; t <= 6; t++) {
        std::vector<int> u(5 + t + 1);
        SplineKnots(u.data(), 5, t);
        const int res = 13;
        std::vector<XYZ> out(res + 1, Pt(9, 9, 9));
        ASSERT_EQ(SplineCurve(u.data(), 5, t, res, kCtrl, out.data()), TRUE);
        // Sample i at v = i (n - t + 2) / (res - 1), the last on control[n].
        for (int i = 0; i < res - 1; i++) {
            XYZ want;
            SplinePoint(u.data(), 5, t, i * (5.0 - t + 2) / (res - 1), kCtrl, &want);
            ExpectXYZ(out[i], want);
        }
        ExpectXYZ(out[0], kCtrl[0], 1e-15), ExpectXYZ(out[res - 1], kCtrl[5]),
            ExpectXYZ(out[res], Pt(9, 9, 9));
    }
    int u[8];
    SplineKnots(u, 4, 3);
    XYZ one = Pt(9, 9, 9), untouched = one;
    EXPECT_EQ(SplineCurve(u, 4, 3, 1, kCtrl, &one), TRUE); // one sample: the start
    ExpectXYZ(one, kCtrl[0]);
    // Order 0 or above n + 1, no points, no samples: FALSE, nothing written.
    const int bad[][3] = {{4, 0, 5}, {4, 6, 5}, {-1, 1, 5}, {4, 3, 0}}; // n, t, res
    for (const auto &c : bad)
        EXPECT_EQ(SplineCurve(u, c[0], c[1], c[2], kCtrl, &untouched), FALSE);
    ExpectXYZ(untouched, Pt(9, 9, 9));
}

TEST(Curves, PolygonCurvePassesThroughEveryVertexSmoothly)
{
    // A tent (0,0) (1,1) (2,0), z = 2 s, sampled at s = 0, 0.5, ..., 2. By
    // hand for s 0.5: the reflected vertex is (-1, -1, -2); y runs -1, 0, 1, 0
    // so m0 = 1, m1 = 0 and y = 1/8 + 1/2 = 0.625; x and z, evenly spaced
    // along s, stay linear in s (the reflected end vertices see to that).
    const XYZ tent[3] = {Pt(0, 0, 0), Pt(1, 1, 2), Pt(2, 0, 4)};
    const XYZ want[6] = {tent[0], Pt(0.5, 0.625, 1), tent[1], Pt(1.5, 0.625, 3), tent[2], Pt(9, 9, 9)};
    XYZ out[6];
    out[5] = want[5];
    ASSERT_EQ(PolygonCurve(tent, 2, 5, out), TRUE);
    for (int j = 0; j < 6; j++)
        ExpectXYZ(out[j], want[j], 1e-15);

    // n = 6 dividing res - 1: vertex i is exactly sample 1000 i. The one-sided
    // difference quotients at each interior vertex agree with the Catmull-Rom
    // tangent (p[i+1] - p[i-1]) / 2: the curve has no corners.
    std::vector<XYZ> fine(6001);
    ASSERT_EQ(PolygonCurve(kCtrl, 6, 6001, fine.data()), TRUE);
    auto slope = [](const XYZ &from, const XYZ &to, double ds) {
        return Pt((to.x - from.x) / ds, (to.y - from.y) / ds, (to.z - from.z) / ds);
    };
    for (int i = 0; i <= 6; i++)
        ExpectXYZ(fine[1000 * i], kCtrl[i]);
    for (int i = 1; i < 6; i++) {
        const XYZ tangent = slope(kCtrl[i - 1], kCtrl[i + 1], 2);
        ExpectXYZ(slope(fine[1000 * i - 1], fine[1000 * i], 1e-3), tangent, 0.02);
        ExpectXYZ(slope(fine[1000 * i], fine[1000 * i + 1], 1e-3), tangent, 0.02);
    }

    // One vertex, one sample, and refused arguments.
    XYZ same[3], one = Pt(9, 9, 9);
    ASSERT_EQ(PolygonCurve(tent, 0, 3, same), TRUE);
    for (const XYZ &q : same)
        ExpectXYZ(q, tent[0]);
    ASSERT_EQ(PolygonCurve(tent, 2, 1, &one), TRUE);
    ExpectXYZ(one, tent[0]);
    one = Pt(9, 9, 9);
    EXPECT_EQ(PolygonCurve(tent, -1, 3, &one), FALSE);
    EXPECT_EQ(PolygonCurve(tent, 2, 0, &one), FALSE);
    ExpectXYZ(one, Pt(9, 9, 9));
}
