// Interpolators and curves: hand-worked values, identities tying the forms together, sampling.
#include "curves.h"

#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

using namespace geomtest;

// Control points with no symmetry, so a swapped or dropped term shows.
static const XYZ kCtrl[7] = {Pt(1, -2, 0.5), Pt(2.385, 3, -1), Pt(4, 0.25, 2), Pt(-3, 1, 6),
                             Pt(0, 1, 7),    Pt(5, -4, 2),     Pt(-1, 6, 2)};

// f(0) + ... + f(n).
template <class F> static double Sum(int n, F f) { double s = 0; for (int k = 0; k <= n; k++) s += f(k); return s; }
// The B-spline of kCtrl[0..n] at v.
static XYZ At(const std::vector<int> &u, int n, int t, double v) { XYZ p; SplinePoint(u.data(), n, t, v, kCtrl, &p); return p; }

TEST(Curves, ScalarFunctionsMatchHandWorkedValues)
{
    // Hermite gives y1 at mu 0 and y2 at mu 1, whatever the neighbours, tension and bias.
    const double y0 = -0.75, y1 = 2.385, y2 = -1.25, y3 = 4.5;
    for (double mu : {0.0, 1.0})
        for (double tension : {-1.0, 0.3, 1.0})
            for (double bias : {-1.0, 0.0, 0.6})
                EXPECT_DOUBLE_EQ(HermiteInterpolate(y0, y1, y2, y3, mu, tension, bias), mu == 0 ? y1 : y2);
    // By hand: cosine m is 1/4 at mu 1/3; cubic on 1 2 4 8 has a = 5, -6, 3, 2;
    // Hermite on 1 2 4 8 at mu 1/2 weighs y1, m0, m1, y2 by 1/2, 1/8, -1/8, 1/2
    // with (m0, m1) = (1.5, 3), tension 1 (0, 0), -1 (3, 6), bias 1 (1, 2), -1 (2, 4);
    // Bernstein C(3,1)/8, C(4,2) (1/4)^2 (3/4)^2 = 54/256, C(20,10)/2^20, exact at the ends.
    const double cases[][3] = {
        {LinearInterpolate(y1, y2, 0.25), 0.75 * 2.385 - 0.25 * 1.25, 1e-15}, {CosineInterpolate(2, 6, 1.0 / 3), 3, 1e-15},
        {CosineInterpolate(y1, y2, 1), y2, 1e-15}, {CubicInterpolate(y0, y1, y2, y3, 1), y2, 1e-15},
        {CubicInterpolate(1, 2, 4, 8, 0.5), 2.625, 0}, {CubicInterpolate(1, 2, 4, 8, 0.25), 2.453125, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, 0, 0), 2.8125, 0}, {HermiteInterpolate(1, 2, 4, 8, 0.5, 1, 0), 3, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, -1, 0), 2.625, 0}, {HermiteInterpolate(1, 2, 4, 8, 0.5, 0, 1), 2.875, 0},
        {HermiteInterpolate(1, 2, 4, 8, 0.5, 0, -1), 2.75, 0}, {BezierBlend(1, 0.5, 3), 0.375, 1e-16},
        {BezierBlend(2, 0.25, 4), 0.2109375, 1e-16}, {BezierBlend(10, 0.5, 20), 184756.0 / 1048576, 1e-15},
        {BezierBlend(0, 0, 5), 1, 0}, {BezierBlend(5, 1, 5), 1, 0}, {BezierBlend(2, 1, 5), 0, 0}};
    for (const auto &c : cases)
        EXPECT_NEAR(c[0], c[1], c[2]) << "row " << &c - cases;
}

TEST(Curves, BezierFormsAgreeAndRunFromFirstToLastPoint)
{
    const XYZ a = kCtrl[0], b = kCtrl[1], c = kCtrl[2], d = kCtrl[3];
    // Midpoints by hand, (a + 2b + c) / 4 and (a + 3b + 3c + d) / 8.
    ExpectXYZ(Bezier3(a, b, c, 0.5), Pt(2.4425, 1.0625, 0.125), 1e-15);
    ExpectXYZ(Bezier4(a, b, c, d, 0.5), Pt(2.144375, 1.09375, 1.1875), 1e-15);
    ExpectXYZ(Bezier(nullptr, -1, 0.5), Pt(0, 0, 0));
    for (int n = 0; n <= 6; n++) // mu exactly 1 gives p[n], not 0 / 0
        ExpectXYZ(Bezier(kCtrl, n, 0), kCtrl[0]), ExpectXYZ(Bezier(kCtrl, n, 1), kCtrl[n]);
    for (double mu = 0; mu <= 1.0; mu += 0.0625) {
        ExpectXYZ(CubicBezier(a, b, c, d, mu), Bezier4(a, b, c, d, mu), 1e-14);
        ExpectXYZ(Bezier(kCtrl, 3, mu), Bezier4(a, b, c, d, mu), 1e-14);
        ExpectXYZ(Bezier(kCtrl, 2, mu), Bezier3(a, b, c, mu), 1e-14);
    }
    for (int n : {1, 4, 20}) // the Bernstein weights sum to 1
        for (double mu : {0.1, 0.8125, 0.99})
            EXPECT_NEAR(Sum(n, [&](int k) { return BezierBlend(k, mu, n); }), 1, 1e-14) << n << " " << mu;
}

TEST(Curves, BSplineKnotsBasisAndSampling)
{
    // Knots written out by hand as n, t, knots..., then a guard entry that stays untouched.
    const std::vector<int> knots[] = {
        {4, 3, 0, 0, 0, 1, 2, 3, 3, 3, -7}, {5, 4, 0, 0, 0, 0, 1, 2, 3, 3, 3, 3, -7}, {3, 1, 0, 1, 2, 3, 4, -7}};
    for (const auto &w : knots) {
        std::vector<int> u(w.size() - 2, -7);
        SplineKnots(u.data(), w[0], w[1]);
        EXPECT_EQ(u, std::vector<int>(w.begin() + 2, w.end()));
    }
    // Clamped quadratic basis on 0 0 0 1 2 3 3 3 by hand: (1 - v)^2, 2v - 3v^2/2, v^2/2 on [0, 1).
    int u[8];
    SplineKnots(u, 4, 3);
    const double basis[][6] = {{0.5, 0.25, 0.625, 0.125, 0, 0}, {1.5, 0, 0.125, 0.75, 0.125, 0},
                               {2.5, 0, 0, 0.125, 0.625, 0.25}, {0, 1, 0, 0, 0, 0}};
    for (const auto &w : basis)
        for (int k = 0; k <= 4; k++)
            EXPECT_NEAR(SplineBlend(k, 3, u, w[0]), w[k + 1], 1e-16) << w[0] << " " << k;
    EXPECT_EQ(SplineBlend(0, 0, u, 0.5), 0);
    // Every order: the basis sums to 1, SplineCurve samples SplinePoint evenly and ends on control[n]
    // where SplinePoint gives the origin; full order is Bezier (de Boor, A Practical Guide to Splines).
    const XYZ nine = Pt(9, 9, 9);
    for (int n = 1; n <= 6; n++)
        for (int t = 1; t <= n + 1; t++) {
            std::vector<int> k(n + t + 1);
            SplineKnots(k.data(), n, t);
            const double end = k.back();
            std::vector<XYZ> out(14, nine);
            ASSERT_EQ(SplineCurve(k.data(), n, t, 13, kCtrl, out.data()), TRUE);
            for (int i = 0; i < 12; i++) {
                ExpectXYZ(out[i], At(k, n, t, i * end / 12));
                EXPECT_NEAR(Sum(n, [&](int j) { return SplineBlend(j, t, k.data(), i * end / 12); }), 1, 1e-14);
                if (t == n + 1)
                    ExpectXYZ(out[i], Bezier(kCtrl, n, i / 12.0), 1e-13);
            }
            ExpectXYZ(out[0], kCtrl[0], 1e-15), ExpectXYZ(out[12], kCtrl[n]), ExpectXYZ(out[13], nine);
            ExpectXYZ(At(k, n, t, end), Pt(0, 0, 0));
        }
    XYZ one = nine, untouched = nine; // res 1 gives the start; bad n, t, res are refused
    EXPECT_EQ(SplineCurve(u, 4, 3, 1, kCtrl, &one), TRUE);
    ExpectXYZ(one, kCtrl[0]);
    for (const auto &c : {std::vector<int>{4, 0, 5}, {4, 6, 5}, {-1, 1, 5}, {4, 3, 0}}) // n, t, res
        EXPECT_EQ(SplineCurve(u, c[0], c[1], c[2], kCtrl, &untouched), FALSE);
    ExpectXYZ(untouched, nine);
}

TEST(Curves, PolygonCurvePassesThroughEveryVertexSmoothly)
{
    // Tent by hand at s 0.5: y runs -1 (reflected) 0 1 0, so m0 1, m1 0 and y = 1/8 + 1/2;
    // x and z, evenly spaced, stay linear in s.
    const XYZ tent[3] = {Pt(0, 0, 0), Pt(1, 1, 2), Pt(2, 0, 4)}, nine = Pt(9, 9, 9);
    const XYZ want[6] = {tent[0], Pt(0.5, 0.625, 1), tent[1], Pt(1.5, 0.625, 3), tent[2], nine};
    XYZ out[6] = {nine, nine, nine, nine, nine, nine};
    ASSERT_EQ(PolygonCurve(tent, 2, 5, out), TRUE);
    for (int j = 0; j < 6; j++)
        ExpectXYZ(out[j], want[j], 1e-15);
    // Vertex i is exactly sample 1000 i, and both one-sided slopes there match the
    // Catmull-Rom tangent (p[i+1] - p[i-1]) / 2: no corners.
    std::vector<XYZ> fine(6001);
    ASSERT_EQ(PolygonCurve(kCtrl, 6, 6001, fine.data()), TRUE);
    auto slope = [](XYZ a, XYZ b, double h) { return Pt((b.x - a.x) / h, (b.y - a.y) / h, (b.z - a.z) / h); };
    for (int i = 0; i <= 6; i++) {
        ExpectXYZ(fine[1000 * i], kCtrl[i]);
        for (int side = -1; i > 0 && i < 6 && side <= 1; side += 2)
            ExpectXYZ(slope(fine[1000 * i], fine[1000 * i + side], side * 1e-3), slope(kCtrl[i - 1], kCtrl[i + 1], 2), 0.02);
    }
    XYZ same[3], one = nine, untouched = nine; // n 0 repeats p[0], res 1 is p[0], bad n or res refused
    ASSERT_TRUE(PolygonCurve(tent, 0, 3, same) == TRUE && PolygonCurve(tent, 2, 1, &one) == TRUE);
    for (const XYZ &q : {same[0], same[1], same[2], one})
        ExpectXYZ(q, tent[0]);
    EXPECT_TRUE(PolygonCurve(tent, -1, 3, &untouched) == FALSE && PolygonCurve(tent, 2, 0, &untouched) == FALSE);
    ExpectXYZ(untouched, nine);
}
