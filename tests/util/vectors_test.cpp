// Vector algebra and geometric tests: worked values, the documented quirks,
// and invariants on fixed-seed random input.
#include "vectors.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

namespace {

using geomtest::Pt;
using geomtest::Uniform;

const double kPi = 3.14159265358979323846;

void ExpectXYZ(const XYZ &got, double x, double y, double z, double tol = 0.0)
{
    EXPECT_NEAR(got.x, x, tol);
    EXPECT_NEAR(got.y, y, tol);
    EXPECT_NEAR(got.z, z, tol);
}

XYZ RandomPoint(Uniform &u, double range = 10.0)
{
    return Pt(u(-range, range), u(-range, range), u(-range, range));
}

TEST(Vectors, AlgebraWorkedValues)
{
    const XYZ a = Pt(1, 2, 3), b = Pt(4, 6, 8);
    // VectorSub is the second minus the first: the vector from p1 to p2.
    ExpectXYZ(VectorSub(a, b), 3, 4, 5);
    ExpectXYZ(VectorAdd(a, b), 5, 8, 11);
    ExpectXYZ(VectorMul(a, 2.385), 2.385, 4.77, 7.155, 1e-15);
    ExpectXYZ(VectorInvert(a), -1, -2, -3);
    ExpectXYZ(MidPoint(a, b), 2.5, 4, 5.5);
    ExpectXYZ(MakeVector(2.385, -1, 0.5), 2.385, -1, 0.5);
    EXPECT_EQ(DotProduct(a, b), 4 + 12 + 24);
    ExpectXYZ(CrossProduct(Pt(1, 0, 0), Pt(0, 1, 0)), 0, 0, 1);
    ExpectXYZ(CrossProduct(a, b), 2 * 8 - 3 * 6, 3 * 4 - 1 * 8, 1 * 6 - 2 * 4);
    EXPECT_EQ(Modulus(Pt(3, 4, 12)), 13);
    EXPECT_EQ(VectorLength(Pt(1, 1, 1), Pt(4, 5, 13)), 13);
}

TEST(Vectors, EqualityToleranceIsOneMillionth)
{
    const XYZ p = Pt(1, 2, 3);
    EXPECT_EQ(VectorEqual(p, Pt(1 + 0.9e-6, 2 - 0.9e-6, 3)), TRUE);
    EXPECT_EQ(VectorEqual(p, Pt(1, 2, 3 + 1.1e-6)), FALSE);
    EXPECT_EQ(VectorEqual(p, Pt(1 - 1.1e-6, 2, 3)), FALSE);
}

TEST(Vectors, NormaliseAndLengthSetting)
{
    XYZ p = Pt(3, 0, 4);
    Normalise(&p);
    ExpectXYZ(p, 0.6, 0, 0.8, 1e-15);

    XYZ zero = Pt(0, 0, 0);
    Normalise(&zero);
    ExpectXYZ(zero, 0, 0, 0);
    XYZ nan = Pt(std::nan(""), 1, 1);
    Normalise(&nan);
    ExpectXYZ(nan, 0, 0, 0);

    XYZ q = Pt(0, -2, 0);
    SetVectorLength(&q, 2.385);
    ExpectXYZ(q, 0, -2.385, 0, 1e-15);

    ExpectXYZ(CalcNormal(Pt(0, 0, 0), Pt(2, 0, 0), Pt(0, 3, 0)), 0, 0, 1, 1e-15);
    // Collinear points: no normal.
    ExpectXYZ(CalcNormal(Pt(0, 0, 0), Pt(1, 1, 1), Pt(2, 2, 2)), 0, 0, 0);
}

TEST(Vectors, CentroidAndSwap)
{
    const XYZ pts[3] = {Pt(0, 0, 0), Pt(3, 0, 1), Pt(0, 6, 2)};
    ExpectXYZ(Centroid(pts, 3), 1, 2, 1, 1e-15);
    // n below 1: each component is 0 / n.
    const XYZ none = Centroid(pts, 0);
    EXPECT_TRUE(std::isnan(none.x) && std::isnan(none.y) && std::isnan(none.z));
    const XYZ neg = Centroid(nullptr, -2);
    EXPECT_EQ(neg.x, 0.0);
    EXPECT_TRUE(std::signbit(neg.x));

    XYZ a = Pt(1, 2, 3), b = Pt(4, 5, 6);
    SwapXYZ(&a, &b);
    ExpectXYZ(a, 4, 5, 6);
    ExpectXYZ(b, 1, 2, 3);
}

TEST(Vectors, VectorAngleClampsRoundedCosines)
{
    // (1,1,1): 3 / (sqrt 3)^2 rounds to 1.0000000000000002, acos of which is
    // NaN; the clamp gives exactly 0.
    EXPECT_EQ(VectorAngle(Pt(1, 1, 1), Pt(1, 1, 1)), 0.0);
    EXPECT_EQ(VectorAngle(Pt(-1, -1, -1), Pt(1, 1, 1)), kPi);
    // (1,0,1): the cosine rounds just below 1 and the angle is not exactly 0.
    EXPECT_GT(VectorAngle(Pt(1, 0, 1), Pt(1, 0, 1)), 0.0);
    EXPECT_LT(VectorAngle(Pt(1, 0, 1), Pt(1, 0, 1)), 1e-7);
    EXPECT_EQ(VectorAngle(Pt(0, 0, 0), Pt(1, 2, 3)), 0.0);
    // |p1| |p2| at or below 1e-5 counts as zero.
    EXPECT_EQ(VectorAngle(Pt(1e-3, 0, 0), Pt(0, 1e-3, 0)), 0.0);
    EXPECT_NEAR(VectorAngle(Pt(2, 0, 0), Pt(0, 0, 3)), kPi / 2, 1e-15);
    EXPECT_NEAR(VectorAngle(Pt(1, 0, 0), Pt(1, 1, 0)), kPi / 4, 1e-15);
}

TEST(Vectors, Angle2DIsSignedAndWrapped)
{
    EXPECT_NEAR(Angle2D(1, 0, 0, 1), kPi / 2, 1e-15);
    EXPECT_NEAR(Angle2D(0, 1, 1, 0), -kPi / 2, 1e-15);
    // Just above the -x axis to just below it: a small positive turn, not
    // almost -2 pi.
    EXPECT_NEAR(Angle2D(-1, 0.001, -1, -0.001), 0.002, 1e-9);
    EXPECT_NEAR(Angle2D(-1, -0.001, -1, 0.001), -0.002, 1e-9);
}

TEST(Vectors, FowlerAngleOctants)
{
    struct Case {
        double dx, dy, expected;
    } cases[] = {
        {1, 0, 0},   {1, 1, 1},   {0, 1, 2},     {-1, 1, 3},   {-1, 0, 4},
        {-1, -1, 5}, {0, -1, 6},  {1, -1, 7},    {0, 0, 0},    {2, 1, 0.5},
        {1, 2, 1.5}, {-1, 2, 2.5}, {-2, 1, 3.5}, {-2, -1, 4.5}, {-1, -2, 5.5},
        {1, -2, 6.5}, {2, -1, 7.5},
    };
    for (const Case &c : cases)
        EXPECT_EQ(FowlerAngle(c.dy, c.dx), c.expected) << "dx " << c.dx << " dy " << c.dy;

    // Monotone with the true angle once round the circle.
    double previous = -1;
    for (int k = 0; k < 3600; k++) {
        const double a = 2 * kPi * k / 3600;
        const double f = FowlerAngle(std::sin(a), std::cos(a));
        EXPECT_GT(f, previous) << "step " << k;
        EXPECT_LT(f, 8.0);
        previous = f;
    }
}

TEST(Vectors, RotationsFollowTheLibrarySense)
{
    // A positive angle turns clockwise seen from the positive axis.
    ExpectXYZ(RotateZ(Pt(1, 0, 5), kPi / 2), 0, -1, 5, 1e-15);
    ExpectXYZ(RotateX(Pt(5, 0, 1), kPi / 2), 5, 1, 0, 1e-15);
    ExpectXYZ(RotateX(Pt(5, 1, 0), kPi / 2), 5, 0, -1, 1e-15);
    ExpectXYZ(RotateY(Pt(1, 5, 0), kPi / 2), 0, 5, 1, 1e-15);
    ExpectXYZ(RotateY(Pt(0, 5, 1), kPi / 2), -1, 5, 0, 1e-15);
    ExpectXYZ(Vector2DRotate(Pt(1, 0, 7), kPi / 2), 0, -1, 7, 1e-15);
    // The arbitrary-axis rotation agrees with the three axis rotations.
    const XYZ p = Pt(2.385, -1.25, 0.75);
    const double t = 0.7;
    ExpectXYZ(ArbitraryRotate(p, t, Pt(3, 0, 0)), RotateX(p, t).x, RotateX(p, t).y, RotateX(p, t).z, 1e-14);
    ExpectXYZ(ArbitraryRotate(p, t, Pt(0, 0.5, 0)), RotateY(p, t).x, RotateY(p, t).y, RotateY(p, t).z, 1e-14);
    ExpectXYZ(ArbitraryRotate(p, t, Pt(0, 0, 1)), RotateZ(p, t).x, RotateZ(p, t).y, RotateZ(p, t).z, 1e-14);
    ExpectXYZ(ArbitraryRotate(p, t, Pt(0, 0, 0)), p.x, p.y, p.z);
    ExpectXYZ(ArbitraryRotate2(p, t, Pt(1, 1, 1), Pt(1, 1, 1)), p.x, p.y, p.z);
}

TEST(Vectors, RotationsPreserveLengthOnRandomInput)
{
    Uniform u(20240607);
    for (int k = 0; k < 1000; k++) {
        const XYZ p = RandomPoint(u);
        const double t = u(-10, 10);
        const double len = Modulus(p);
        EXPECT_NEAR(Modulus(RotateX(p, t)), len, 1e-12);
        EXPECT_NEAR(Modulus(RotateY(p, t)), len, 1e-12);
        EXPECT_NEAR(Modulus(RotateZ(p, t)), len, 1e-12);
        EXPECT_NEAR(std::hypot(Vector2DRotate(p, t).x, Vector2DRotate(p, t).y),
                    std::hypot(p.x, p.y), 1e-12);
        const XYZ axis = RandomPoint(u);
        const XYZ r = ArbitraryRotate(p, t, axis);
        EXPECT_NEAR(Modulus(r), len, 1e-12);
        // The component along the axis does not change, and turning back
        // restores the point.
        EXPECT_NEAR(DotProduct(r, axis), DotProduct(p, axis), 1e-10);
        const XYZ back = ArbitraryRotate(r, -t, axis);
        EXPECT_TRUE(VectorEqual(back, p));

        // About a line through two points: the points stay put and the
        // distance to the line is kept.
        const XYZ a = RandomPoint(u), b = RandomPoint(u);
        XYZ foot;
        double mu;
        const double dist = PointLine3D(p, a, b, &foot, &mu);
        const XYZ q = ArbitraryRotate2(p, t, a, b);
        EXPECT_NEAR(PointLine3D(q, a, b, &foot, &mu), dist, 1e-10);
        EXPECT_TRUE(VectorEqual(ArbitraryRotate2(a, t, a, b), a));
        EXPECT_TRUE(VectorEqual(ArbitraryRotate2(b, t, a, b), b));
    }
}

TEST(Vectors, CrossProductIsOrthogonalOnRandomInput)
{
    Uniform u(77);
    for (int k = 0; k < 1000; k++) {
        const XYZ a = RandomPoint(u), b = RandomPoint(u);
        const XYZ c = CrossProduct(a, b);
        const double scale = Modulus(a) * Modulus(b);
        EXPECT_NEAR(DotProduct(c, a) / (scale * Modulus(a)), 0, 1e-14);
        EXPECT_NEAR(DotProduct(c, b) / (scale * Modulus(b)), 0, 1e-14);
        // Lagrange's identity |a x b|^2 = |a|^2 |b|^2 - (a . b)^2.
        const double ab = DotProduct(a, b);
        EXPECT_NEAR(DotProduct(c, c), scale * scale - ab * ab, 1e-10 * scale * scale);

        const XYZ perp = VectorPerp(a);
        EXPECT_NEAR(DotProduct(perp, a) / Modulus(a), 0, 1e-14);
        EXPECT_NEAR(Modulus(perp), 1, 1e-14);
    }
    ExpectXYZ(VectorPerp(Pt(0, 0, 0)), 0, 0, 0);
    ExpectXYZ(VectorPerp(Pt(0, 0, 2)), 0, 1, 0);
}

TEST(Vectors, PolarCoordinates)
{
    double r, theta, phi;
    XYZ2Polar(Pt(0, 0, 0), &r, &theta, &phi);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(theta, 0);
    EXPECT_EQ(phi, 90);

    XYZ2Polar(Pt(2, 0, 0), &r, &theta, &phi);
    EXPECT_EQ(r, 2);
    EXPECT_EQ(theta, 0);
    EXPECT_EQ(phi, 90);

    // On the z axis the distance to the axis is below 1e-6: phi's asin part
    // is 0. pi/2 times the written factor 57.2957795 is 89.99999997945...
    XYZ2Polar(Pt(0, 0, 2), &r, &theta, &phi);
    EXPECT_EQ(r, 2);
    EXPECT_NEAR(theta, 89.99999997945034, 1e-12);
    EXPECT_EQ(phi, 90);

    XYZ2Polar(Pt(0, 3, 0), &r, &theta, &phi);
    EXPECT_NEAR(phi, 90 + 89.99999997945034, 1e-12);

    // The sign of x is not used: a point and its mirror image in x agree.
    double r2, theta2, phi2;
    XYZ2Polar(Pt(1.5, -0.5, 0.25), &r, &theta, &phi);
    XYZ2Polar(Pt(-1.5, -0.5, 0.25), &r2, &theta2, &phi2);
    EXPECT_EQ(r, r2);
    EXPECT_EQ(theta, theta2);
    EXPECT_EQ(phi, phi2);

    double x, y, z;
    polar2xyz(2, 0, 90, &x, &y, &z);
    EXPECT_NEAR(x, 2, 1e-15);
    EXPECT_NEAR(y, 0, 1e-15);
    EXPECT_NEAR(z, 0, 1e-15);
    // 90 degrees is 1.570796325 with the written factor, not quite pi/2.
    polar2xyz(1, 90, 90, &x, &y, &z);
    EXPECT_EQ(z, std::sin(90 * 0.0174532925));

    // Round trip for x >= 0, to the precision of the nine-digit factors.
    Uniform u(5);
    for (int k = 0; k < 500; k++) {
        const XYZ p = Pt(u(0.01, 5), u(-5, 5), u(-5, 5));
        XYZ2Polar(p, &r, &theta, &phi);
        polar2xyz(r, theta, phi, &x, &y, &z);
        EXPECT_NEAR(x, p.x, 1e-7 * r);
        EXPECT_NEAR(y, p.y, 1e-7 * r);
        EXPECT_NEAR(z, p.z, 1e-7 * r);
    }
}

TEST(Vectors, LineIntersectCases)
{
    double x = -1, y = -1;
    EXPECT_EQ(LineIntersect(0, 0, 1, 1, 0, 1, 1, 0, &x, &y), TRUE);
    EXPECT_DOUBLE_EQ(x, 0.5);
    EXPECT_DOUBLE_EQ(y, 0.5);

    x = y = -1;
    EXPECT_EQ(LineIntersect(0, 0, 1, 0, 0, 1, 1, 1, &x, &y), FALSE);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);

    // Coincident lines: TRUE with the first segment's midpoint.
    EXPECT_EQ(LineIntersect(0, 0, 2, 2, 5, 5, 7, 7, &x, &y), TRUE);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 1);

    // Lines that cross outside one of the segments.
    x = y = -1;
    EXPECT_EQ(LineIntersect(0, 0, 1, 0, 2, -1, 2, 1, &x, &y), FALSE);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);

    // Touching at an end point counts.
    EXPECT_EQ(LineIntersect(0, 0, 1, 0, 1, -1, 1, 1, &x, &y), TRUE);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 0);
}

TEST(Vectors, LineIntersectAgreesWithPointLineDistances)
{
    Uniform u(31337);
    int hits = 0;
    for (int k = 0; k < 2000; k++) {
        const XYZ a = Pt(u(), u()), b = Pt(u(), u()), c = Pt(u(), u()), d = Pt(u(), u());
        double x, y;
        const int met = LineIntersect(a.x, a.y, b.x, b.y, c.x, c.y, d.x, d.y, &x, &y);
        // Segments cross exactly when each one's ends lie on opposite sides
        // of the other's line.
        const bool straddle = WhichSide(c, a, b) * WhichSide(d, a, b) < 0 &&
                              WhichSide(a, c, d) * WhichSide(b, c, d) < 0;
        EXPECT_EQ(met == TRUE, straddle) << "case " << k;
        if (met) {
            hits++;
            XYZ foot;
            double mu;
            EXPECT_NEAR(PointLine2D(Pt(x, y), a, b, &foot, &mu), 0, 1e-9);
            EXPECT_GE(mu, -1e-9);
            EXPECT_LE(mu, 1 + 1e-9);
            EXPECT_NEAR(PointLine2D(Pt(x, y), c, d, &foot, &mu), 0, 1e-9);
            EXPECT_GE(mu, -1e-9);
            EXPECT_LE(mu, 1 + 1e-9);
        }
    }
    EXPECT_GT(hits, 200); // the sample holds plenty of crossings
}

TEST(Vectors, PointLineDistances)
{
    XYZ c;
    double u;
    EXPECT_EQ(PointLine2D(Pt(1, 1, 9), Pt(0, 0, 0), Pt(2, 0, 0), &c, &u), 1);
    EXPECT_EQ(u, 0.5);
    ExpectXYZ(c, 1, 0, 0);
    // Not limited to the segment.
    EXPECT_EQ(PointLine2D(Pt(3, 2), Pt(0, 0), Pt(2, 0), &c, &u), 2);
    EXPECT_EQ(u, 1.5);
    // A line shorter than sqrt(1e-5) counts as its first point.
    EXPECT_EQ(PointLine2D(Pt(3, 4), Pt(0, 0, 1), Pt(0.003, 0, 2), &c, &u), 5);
    EXPECT_EQ(u, 0);
    ExpectXYZ(c, 0, 0, 1);

    EXPECT_NEAR(PointLine3D(Pt(1, 2, 2), Pt(0, 0, 0), Pt(4, 0, 0), &c, &u), std::sqrt(8.0), 1e-15);
    EXPECT_EQ(u, 0.25);
    ExpectXYZ(c, 1, 0, 0);
    EXPECT_EQ(PointLine3D(Pt(0, 0, 7), Pt(0, 0, 0), Pt(0, 0.001, 0), &c, &u), 7);
    EXPECT_EQ(u, 0);
}

TEST(Vectors, SidesOrientationAndConvexity)
{
    EXPECT_EQ(WhichSide(Pt(0, 1), Pt(0, 0), Pt(1, 0)), -1);
    EXPECT_EQ(WhichSide(Pt(0, -1), Pt(0, 0), Pt(1, 0)), 1);
    EXPECT_EQ(WhichSide(Pt(5, 0), Pt(0, 0), Pt(1, 0)), 0);

    const XYZ cw[4] = {Pt(0, 0), Pt(0, 1), Pt(1, 1), Pt(1, 0)};
    const XYZ ccw[4] = {Pt(0, 0), Pt(1, 0), Pt(1, 1), Pt(0, 1)};
    const XYZ line[3] = {Pt(0, 0), Pt(1, 1), Pt(2, 2)};
    const XYZ arrow[4] = {Pt(0, 0), Pt(2, 1), Pt(0, 2), Pt(1, 1)};
    EXPECT_EQ(ClockWise(cw, 4), 1);
    EXPECT_EQ(ClockWise(ccw, 4), -1);
    EXPECT_EQ(ClockWise(line, 3), 0);
    EXPECT_EQ(ClockWise(cw, 2), 0);

    EXPECT_EQ(ConvexPolygon(cw, 4), 1);
    EXPECT_EQ(ConvexPolygon(ccw, 4), 1);
    EXPECT_EQ(ConvexPolygon(arrow, 4), -1);
    EXPECT_EQ(ConvexPolygon(line, 3), 0);
    EXPECT_EQ(ConvexPolygon(cw, 2), 0);
}

TEST(Vectors, ConvexPolygonOnRandomHulls)
{
    Uniform u(4242);
    for (int k = 0; k < 200; k++) {
        std::vector<XYZ> pts(3 + k % 40);
        for (XYZ &p : pts)
            p = Pt(u(-1, 1), u(-1, 1));
        std::vector<XYZ> hull = geomtest::ConvexHull(pts);
        const int n = static_cast<int>(hull.size());
        ASSERT_GE(n, 3);
        EXPECT_EQ(ConvexPolygon(hull.data(), n), 1) << "hull " << k;
        EXPECT_EQ(ClockWise(hull.data(), n), -1);
        std::vector<XYZ> rev(hull.rbegin(), hull.rend());
        EXPECT_EQ(ConvexPolygon(rev.data(), n), 1);
        EXPECT_EQ(ClockWise(rev.data(), n), 1);
        if (n >= 4) {
            // Push one corner through the chord of its neighbours: its turn
            // reverses while the corner opposite keeps its own.
            const int i = k % n;
            const XYZ prev = hull[(i + n - 1) % n], next = hull[(i + 1) % n];
            const XYZ mid = MidPoint(prev, next);
            hull[i] = VectorAdd(mid, VectorMul(VectorSub(hull[i], mid), 0.5));
            EXPECT_EQ(ConvexPolygon(hull.data(), n), -1) << "dented hull " << k;
        }
    }
}

TEST(Vectors, PointInPolygonHalfOpenEdges)
{
    const XYZ square[4] = {Pt(0, 0), Pt(1, 0), Pt(1, 1), Pt(0, 1)};
    struct Case {
        double x, y;
        int inside;
    } cases[] = {
        {0.5, 0.5, TRUE}, {0, 0.5, TRUE},  {0.5, 0, TRUE},  {1, 0.5, FALSE},
        {0.5, 1, FALSE},  {1.5, 0.5, FALSE}, {-0.1, 0.5, FALSE}, {0.5, -0.1, FALSE},
    };
    for (const Case &c : cases)
        EXPECT_EQ(PointInPolygon(square, 4, Pt(c.x, c.y)), c.inside) << c.x << ", " << c.y;
    EXPECT_EQ(PointInPolygon(square, 2, Pt(0.5, 0.5)), FALSE);

    // An L shape: the union of [0,2) x [0,1) and [0,1) x [1,2).
    const XYZ ell[6] = {Pt(0, 0), Pt(2, 0), Pt(2, 1), Pt(1, 1), Pt(1, 2), Pt(0, 2)};
    Uniform u(99);
    for (int k = 0; k < 2000; k++) {
        const XYZ p = Pt(u(-0.5, 2.5), u(-0.5, 2.5));
        const bool expected = (p.x >= 0 && p.x < 2 && p.y >= 0 && p.y < 1) ||
                              (p.x >= 0 && p.x < 1 && p.y >= 1 && p.y < 2);
        EXPECT_EQ(PointInPolygon(ell, 6, p) == TRUE, expected) << p.x << ", " << p.y;
    }
}

TEST(Vectors, PointInBoxIsStrict)
{
    const XYZ lo = Pt(0, 0, 0), hi = Pt(1, 2, 3);
    EXPECT_EQ(PointInBox(Pt(0.5, 1, 1.5), lo, hi), TRUE);
    EXPECT_EQ(PointInBox(Pt(0, 1, 1.5), lo, hi), FALSE);
    EXPECT_EQ(PointInBox(Pt(0.5, 2, 1.5), lo, hi), FALSE);
    EXPECT_EQ(PointInBox(Pt(0.5, 1, 3), lo, hi), FALSE);
    EXPECT_EQ(PointInBox(Pt(0.5, 1, 4), lo, hi), FALSE);
}

TEST(Vectors, LineAndSegmentMeetPlane)
{
    const XYZ n = Pt(0, 0, 1);
    const double d = -1; // the plane z = 1
    double mu = -1;
    XYZ p = Pt(9, 9, 9);
    EXPECT_EQ(LinePlane(Pt(0, 0, 0), Pt(2, 4, 2), n, d, &mu, &p), TRUE);
    EXPECT_EQ(mu, 0.5);
    ExpectXYZ(p, 1, 2, 1);
    // The line reaches the plane beyond the segment.
    EXPECT_EQ(LinePlane(Pt(0, 0, 0), Pt(0, 0, 0.5), n, d, &mu, &p), TRUE);
    EXPECT_EQ(mu, 2);
    EXPECT_EQ(LineSegmentPlane(Pt(0, 0, 0), Pt(0, 0, 0.5), n, d, &p), FALSE);
    EXPECT_EQ(LineSegmentPlane(Pt(0, 0, 0), Pt(0, 0, 4), n, d, &p), TRUE);
    ExpectXYZ(p, 0, 0, 1);
    // Parallel to the plane: untouched outputs.
    mu = -1;
    EXPECT_EQ(LinePlane(Pt(0, 0, 0), Pt(1, 0, 0), n, d, &mu, &p), FALSE);
    EXPECT_EQ(mu, -1);
    EXPECT_EQ(LineSegmentPlane(Pt(0, 0, 0), Pt(1, 0, 0.000001), n, d, &p), FALSE);
}

TEST(Vectors, RaySphereRoots)
{
    double mu1 = -1, mu2 = -1;
    const XYZ centre = Pt(0, 0, 0);
    EXPECT_EQ(RaySphere(Pt(-2, 0, 0), Pt(2, 0, 0), centre, 1, &mu1, &mu2), TRUE);
    EXPECT_EQ(mu1, 0.25);
    EXPECT_EQ(mu2, 0.75);
    // A miss leaves the outputs alone; a degenerate line sets them to 0.
    mu1 = mu2 = -1;
    EXPECT_EQ(RaySphere(Pt(-2, 2, 0), Pt(2, 2, 0), centre, 1, &mu1, &mu2), FALSE);
    EXPECT_EQ(mu1, -1);
    EXPECT_EQ(RaySphere(Pt(1, 1, 1), Pt(1, 1, 1.001), centre, 1, &mu1, &mu2), FALSE);
    EXPECT_EQ(mu1, 0);
    EXPECT_EQ(mu2, 0);

    Uniform u(8);
    for (int k = 0; k < 500; k++) {
        const XYZ c = RandomPoint(u, 2), p1 = RandomPoint(u, 2), p2 = RandomPoint(u, 2);
        const double r = u(0.5, 3);
        if (RaySphere(p1, p2, c, r, &mu1, &mu2) == FALSE)
            continue;
        EXPECT_LE(mu1, mu2);
        const XYZ dir = VectorSub(p1, p2);
        EXPECT_NEAR(VectorLength(VectorAdd(p1, VectorMul(dir, mu1)), c), r, 1e-9);
        EXPECT_NEAR(VectorLength(VectorAdd(p1, VectorMul(dir, mu2)), c), r, 1e-9);
    }
}

TEST(Vectors, PlaneThroughThreePoints)
{
    Facet f;
    f.p[0] = Pt(1, 0, 0);
    f.p[1] = Pt(0, 1, 0);
    f.p[2] = Pt(0, 0, 1);
    double a, b, c, d;
    PlaneParam(f, &a, &b, &c, &d);
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 1);
    EXPECT_EQ(c, 1);
    EXPECT_EQ(d, -1);
    EXPECT_EQ(PlanePoint(0.25, 0.25, f.p[0], f.p[1], f.p[2]), 0.5);
    // A vertical plane has no height: 0.
    EXPECT_EQ(PlanePoint(0.3, 0.3, Pt(0, 0, 0), Pt(1, 0, 0), Pt(0, 0, 1)), 0);

    Uniform u(12);
    for (int k = 0; k < 500; k++) {
        for (XYZ &p : f.p)
            p = RandomPoint(u);
        PlaneParam(f, &a, &b, &c, &d);
        const XYZ n = CrossProduct(VectorSub(f.p[0], f.p[1]), VectorSub(f.p[0], f.p[2]));
        EXPECT_NEAR(a, n.x, 1e-9);
        EXPECT_NEAR(b, n.y, 1e-9);
        EXPECT_NEAR(c, n.z, 1e-9);
        for (const XYZ &p : f.p) {
            EXPECT_NEAR(a * p.x + b * p.y + c * p.z + d, 0, 1e-8);
            if (std::fabs(c) > 1e-3) {
                EXPECT_NEAR(PlanePoint(p.x, p.y, f.p[0], f.p[1], f.p[2]), p.z, 1e-8);
            }
        }
    }
}

TEST(Vectors, LineLineIntersectShortestSegment)
{
    XYZ pa, pb;
    double mua, mub;
    EXPECT_EQ(LineLineIntersect(Pt(0, 0, 0), Pt(1, 0, 0), Pt(2, 0, 1), Pt(2, 1, 1), &pa, &pb, &mua, &mub), TRUE);
    ExpectXYZ(pa, 2, 0, 0);
    ExpectXYZ(pb, 2, 0, 1);
    EXPECT_EQ(mua, 2);
    EXPECT_EQ(mub, 0);

    // A direction below 1e-5 in every component, and parallel lines.
    mua = -7;
    EXPECT_EQ(LineLineIntersect(Pt(0, 0, 0), Pt(1e-6, 0, 0), Pt(2, 0, 1), Pt(2, 1, 1), &pa, &pb, &mua, &mub), FALSE);
    EXPECT_EQ(LineLineIntersect(Pt(0, 0, 0), Pt(1, 0, 0), Pt(2, 0, 1), Pt(2, 9e-6, 1), &pa, &pb, &mua, &mub), FALSE);
    EXPECT_EQ(LineLineIntersect(Pt(0, 0, 0), Pt(1, 1, 0), Pt(0, 0, 1), Pt(2, 2, 1), &pa, &pb, &mua, &mub), FALSE);
    EXPECT_EQ(mua, -7);

    Uniform u(2);
    for (int k = 0; k < 500; k++) {
        const XYZ p1 = RandomPoint(u), p2 = RandomPoint(u), p3 = RandomPoint(u), p4 = RandomPoint(u);
        ASSERT_EQ(LineLineIntersect(p1, p2, p3, p4, &pa, &pb, &mua, &mub), TRUE);
        const XYZ gap = VectorSub(pa, pb);
        EXPECT_NEAR(DotProduct(gap, VectorSub(p1, p2)), 0, 1e-8);
        EXPECT_NEAR(DotProduct(gap, VectorSub(p3, p4)), 0, 1e-8);
        EXPECT_TRUE(VectorEqual(pa, VectorAdd(p1, VectorMul(VectorSub(p1, p2), mua))));
        EXPECT_TRUE(VectorEqual(pb, VectorAdd(p3, VectorMul(VectorSub(p3, p4), mub))));
    }
}

double TriangleArea(const XYZ &a, const XYZ &b, const XYZ &c)
{
    return Modulus(CrossProduct(VectorSub(a, b), VectorSub(a, c))) / 2;
}

double PolygonArea(const XYZ *p, int n)
{
    double area = 0;
    for (int i = 1; i + 1 < n; i++)
        area += TriangleArea(p[0], p[i], p[i + 1]);
    return area;
}

TEST(Vectors, ClipFacetKeepsThePositiveSide)
{
    // The plane x = 0.5 against the triangle (0,0), (1,0), (0,1).
    XYZ p[4] = {Pt(0, 0), Pt(1, 0), Pt(0, 1)};
    ASSERT_EQ(ClipFacet(p, Pt(-1, 0, 0), 0.5), 4); // keeps x <= 0.5
    ExpectXYZ(p[0], 0, 0, 0);
    ExpectXYZ(p[1], 0.5, 0, 0);
    ExpectXYZ(p[2], 0.5, 0.5, 0);
    ExpectXYZ(p[3], 0, 1, 0);
    XYZ q[4] = {Pt(0, 0), Pt(1, 0), Pt(0, 1)};
    ASSERT_EQ(ClipFacet(q, Pt(1, 0, 0), -0.5), 3); // keeps x >= 0.5
    ExpectXYZ(q[0], 0.5, 0, 0);
    ExpectXYZ(q[1], 1, 0, 0);
    ExpectXYZ(q[2], 0.5, 0.5, 0);
    XYZ r[4] = {Pt(0, 0), Pt(1, 0), Pt(0, 1)};
    EXPECT_EQ(ClipFacet(r, Pt(1, 0, 0), -2), 0);
    EXPECT_EQ(ClipFacet(r, Pt(1, 0, 0), 2), 3);

    // The two sides of a random plane share the facet's area between them.
    Uniform u(606);
    for (int k = 0; k < 500; k++) {
        const XYZ t[3] = {RandomPoint(u), RandomPoint(u), RandomPoint(u)};
        const XYZ n = RandomPoint(u);
        const double d = u(-20, 20);
        XYZ plus[4] = {t[0], t[1], t[2]}, minus[4] = {t[0], t[1], t[2]};
        const int np = ClipFacet(plus, n, d);
        const int nm = ClipFacet(minus, VectorInvert(n), -d);
        EXPECT_TRUE(np == 0 || np == 3 || np == 4);
        EXPECT_NEAR(PolygonArea(plus, np) + PolygonArea(minus, nm), TriangleArea(t[0], t[1], t[2]), 1e-9);
        for (int i = 0; i < np; i++)
            EXPECT_GE(DotProduct(n, plus[i]) + d, -1e-9);
    }
}

TEST(Vectors, ContourFacetCutsTwoEdges)
{
    Facet f;
    f.p[0] = Pt(0, 0, 0);
    f.p[1] = Pt(2, 0, 0);
    f.p[2] = Pt(0, 2, 2);
    XYZ a = Pt(9, 9, 9), b = a;
    EXPECT_EQ(ContourFacet(f, Pt(0, 0, 1), -1, &a, &b), TRUE); // z = 1
    ExpectXYZ(a, 1, 1, 1);
    ExpectXYZ(b, 0, 1, 1);
    a = Pt(9, 9, 9);
    EXPECT_EQ(ContourFacet(f, Pt(0, 0, 1), -3, &a, &b), FALSE);
    ExpectXYZ(a, 9, 9, 9);

    Uniform u(7);
    int cuts = 0;
    for (int k = 0; k < 500; k++) {
        for (XYZ &p : f.p)
            p = RandomPoint(u);
        const XYZ n = RandomPoint(u);
        const double d = u(-20, 20);
        if (ContourFacet(f, n, d, &a, &b) == FALSE)
            continue;
        cuts++;
        const double scale = Modulus(n);
        EXPECT_NEAR((DotProduct(n, a) + d) / scale, 0, 1e-9);
        EXPECT_NEAR((DotProduct(n, b) + d) / scale, 0, 1e-9);
        // Both ends lie on the facet's boundary.
        for (const XYZ &e : {a, b}) {
            double best = 1e9;
            for (int i = 0; i < 3; i++) {
                XYZ foot;
                double mu;
                const double dist = PointLine3D(e, f.p[i], f.p[(i + 1) % 3], &foot, &mu);
                if (mu >= -1e-12 && mu <= 1 + 1e-12 && dist < best)
                    best = dist;
            }
            EXPECT_LT(best, 1e-9);
        }
    }
    EXPECT_GT(cuts, 50);
}

} // namespace
