// Vector algebra and geometric tests: the worked values and documented quirks
// in tables, and invariants on fixed-seed random input.
#include "vectors.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

using namespace geomtest;

static XYZ Polar(const XYZ &v) { XYZ out; XYZ2Polar(v, &out.x, &out.y, &out.z); return out; }

static XYZ Cartesian(double r, double theta, double phi) { XYZ out; polar2xyz(r, theta, phi, &out.x, &out.y, &out.z); return out; }

TEST(Vectors, WorkedValuesAndQuirks) {
    const XYZ a = Pt(1, 2, 3), b = Pt(4, 6, 8), o = Pt(0, 0, 0), p = Pt(2.385, -1.25, 0.75), tri[3] = {o, Pt(3, 0, 1), Pt(0, 6, 2)};
    const XYZ square[4] = {o, Pt(0, 1), Pt(1, 1), Pt(1, 0)}, line[3] = {o, Pt(1, 1), Pt(2, 2)}, ell[6] = {o, Pt(2, 0), Pt(2, 1), Pt(1, 1), Pt(1, 2), Pt(0, 2)};
    XYZ unit = Pt(3, 0, 4), zero = o, nan = Pt(std::nan(""), 1, 1), len = Pt(0, -2, 0), s1 = a, s2 = b;
    Normalise(&unit), Normalise(&zero), Normalise(&nan), SetVectorLength(&len, 2.385), SwapXYZ(&s1, &s2);
    // VectorSub is the second minus the first. XYZ2Polar works in degrees
    // with the written factor 57.2957795 (pi/2 becomes 89.99999997945...),
    // ignores the sign of x, and gives r 0, theta 0, phi 90 at the origin;
    // polar2xyz's 0.0174532925 makes 90 degrees not quite pi/2.
    const double q = M_PI / 2 * 57.2957795, f = 90 * 0.0174532925;
    const XYZ exact[][2] = {
        {VectorSub(a, b), Pt(3, 4, 5)}, {VectorAdd(a, b), Pt(5, 8, 11)}, {VectorInvert(a), Pt(-1, -2, -3)}, {s1, b}, {s2, a}, {zero, o}, {nan, o},
        {MidPoint(a, b), Pt(2.5, 4, 5.5)}, {MakeVector(2.385, -1, 0.5), Pt(2.385, -1, 0.5)}, {CrossProduct(a, b), Pt(-2, 4, -2)},
        {CalcNormal(o, Pt(1, 1, 1), Pt(2, 2, 2)), o}, {VectorPerp(Pt(0, 0, 2)), Pt(0, 1, 0)}, {VectorPerp(o), o}, {ArbitraryRotate(p, 0.7, o), p},
        {ArbitraryRotate2(p, 0.7, a, a), p}, {Polar(o), Pt(0, 0, 90)}, {Polar(Pt(2, 0, 0)), Pt(2, 0, 90)}, {Polar(Pt(0, 3, 0)), Pt(3, 0, 90 + q)},
        {Polar(Pt(0, 0, 2)), Pt(2, q, 90)}, {Polar(Pt(1.5, -0.5, 0.25)), Polar(Pt(-1.5, -0.5, 0.25))}, {Cartesian(1, 90, 90), Pt(std::cos(f), 0, std::sin(f))}};
    // The rotations turn a positive angle clockwise seen from the positive
    // axis, each row catching the signs of both terms; ArbitraryRotate turns
    // the same way about any axis.
    const XYZ near[][2] = {
        {VectorMul(a, 2.385), Pt(2.385, 4.77, 7.155)}, {unit, Pt(0.6, 0, 0.8)}, {len, Pt(0, -2.385, 0)}, {Centroid(tri, 3), Pt(1, 2, 1)},
        {CalcNormal(o, Pt(2, 0, 0), Pt(0, 3, 0)), Pt(0, 0, 1)}, {RotateX(Pt(5, 1, 2), M_PI / 2), Pt(5, 2, -1)},
        {RotateY(Pt(1, 5, 2), M_PI / 2), Pt(-2, 5, 1)}, {RotateZ(Pt(1, 2, 5), M_PI / 2), Pt(2, -1, 5)}, {Vector2DRotate(Pt(1, 2, 7), M_PI / 2), Pt(2, -1, 7)}};
    for (const auto &c : exact) ExpectXYZ(c[0], c[1]);
    for (const auto &c : near) ExpectXYZ(c[0], c[1], 1e-15);
    ExpectXYZ(ArbitraryRotate(p, 0.7, Pt(0, 0.5, 0)), RotateY(p, 0.7), 1e-14);
    // VectorAngle of (1,1,1) with itself: the cosine rounds to
    // 1.0000000000000002 (acos gives NaN) and must give 0; for (1,0,1) it
    // rounds below 1 and the angle is 2.1e-8. |p1||p2| <= 1e-5 gives 0.
    // Angle2D across the -x axis is a small turn, not almost 2 pi. FowlerAngle
    // (dy, dx) is 0, 2, 4, 6 on the axes, odd on the diagonals, and ratios
    // of 1/2 land half-way in each octant.
    const double num[][3] = {
        {DotProduct(a, b), 40, 0}, {Modulus(Pt(3, 4, 12)), 13, 0}, {VectorLength(Pt(1, 1, 1), Pt(4, 5, 13)), 13, 0},
        {VectorAngle(Pt(1, 1, 1), Pt(1, 1, 1)), 0, 0}, {VectorAngle(Pt(1, 0, 1), Pt(1, 0, 1)), 2.1073424255447017e-08, 1e-15},
        {VectorAngle(Pt(-1, -1, -1), Pt(1, 1, 1)), M_PI, 0}, {VectorAngle(o, a), 0, 0}, {VectorAngle(Pt(1e-3, 0, 0), Pt(0, 1e-3, 0)), 0, 0},
        {VectorAngle(Pt(2, 0, 0), Pt(0, 0, 3)), M_PI / 2, 1e-15}, {VectorAngle(Pt(1, 0, 0), Pt(1, 1, 0)), M_PI / 4, 1e-15},
        {Angle2D(0, 1, 1, 0), -M_PI / 2, 1e-15}, {Angle2D(-1, 0.001, -1, -0.001), 0.002, 1e-9}, {Angle2D(-1, -0.001, -1, 0.001), -0.002, 1e-9},
        {PlanePoint(0.25, 0.25, Pt(1, 0, 0), Pt(0, 1, 0), Pt(0, 0, 1)), 0.5, 0}, {PlanePoint(0.3, 0.3, o, Pt(1, 0, 0), Pt(0, 0, 1)), 0, 0},
        {FowlerAngle(0, 1), 0, 0}, {FowlerAngle(1, 1), 1, 0}, {FowlerAngle(1, 0), 2, 0}, {FowlerAngle(1, -1), 3, 0}, {FowlerAngle(0, -1), 4, 0},
        {FowlerAngle(-1, -1), 5, 0}, {FowlerAngle(-1, 0), 6, 0}, {FowlerAngle(-1, 1), 7, 0}, {FowlerAngle(0, 0), 0, 0}, {FowlerAngle(1, 2), 0.5, 0},
        {FowlerAngle(2, 1), 1.5, 0}, {FowlerAngle(2, -1), 2.5, 0}, {FowlerAngle(1, -2), 3.5, 0}, {FowlerAngle(-1, -2), 4.5, 0},
        {FowlerAngle(-2, -1), 5.5, 0}, {FowlerAngle(-2, 1), 6.5, 0}, {FowlerAngle(-1, 2), 7.5, 0}};
    for (const auto &c : num) EXPECT_NEAR(c[0], c[1], c[2]) << "row " << &c - num;
    // VectorEqual to 1e-6 per component; PointInBox strict (a face is
    // outside); the sides of the x axis; the Part's clockwise square, a line
    // and too few points; PointInPolygon with half-open edges (left and
    // bottom inside, right and top outside) on an L shape.
    const int ints[][2] = {
        {VectorEqual(a, Pt(1 + 0.9e-6, 2 - 0.9e-6, 3)), TRUE}, {VectorEqual(a, Pt(1, 2, 3 + 1.1e-6)), FALSE}, {VectorEqual(a, Pt(1 - 1.1e-6, 2, 3)), FALSE},
        {PointInBox(Pt(0.5, 1, 1.5), o, a), TRUE}, {PointInBox(Pt(0.5, 2, 1.5), o, a), FALSE}, {WhichSide(Pt(0, 1), o, Pt(1, 0)), -1},
        {WhichSide(Pt(0, -1), o, Pt(1, 0)), 1}, {WhichSide(Pt(5, 0), o, Pt(1, 0)), 0}, {ClockWise(square, 4), 1}, {ClockWise(line, 3), 0},
        {ClockWise(square, 2), 0}, {ConvexPolygon(line, 3), 0}, {ConvexPolygon(square, 2), 0}, {PointInPolygon(ell, 2, Pt(0.5, 0.5)), FALSE}};
    for (const auto &c : ints) EXPECT_EQ(c[0], c[1]) << "row " << &c - ints;
    const double pip[][3] = {{0, 0.5, 1}, {1.5, 0, 1}, {0.5, 1.5, 1}, {2, 0.5, 0}, {1.5, 1, 0}, {0.5, 2, 0}, {1, 1.5, 0}, {1.5, 1.5, 0}}; // x, y, inside
    for (const auto &c : pip) EXPECT_EQ(PointInPolygon(ell, 6, Pt(c[0], c[1])), c[2]) << c[0] << ", " << c[1];
    // n below 1: each component is 0 / n.
    const XYZ none = Centroid(tri, 0), neg = Centroid(nullptr, -2);
    EXPECT_TRUE(std::isnan(none.x) && std::isnan(none.y) && std::isnan(none.z) && neg.x == 0.0 && std::signbit(neg.x));
}

TEST(Vectors, LinesPlanesSpheresAndFacets) {
    // LineIntersect of the square's diagonals, parallel segments (FALSE at
    // (0, 0)), coincident lines (the first segment's midpoint), a crossing
    // beyond one segment, touches at the end points (ua 1, then ua 0 and ub 1).
    const double cross[][11] = {{0, 0, 1, 1, 0, 1, 1, 0, TRUE, 0.5, 0.5}, {0, 0, 1, 0, 0, 1, 1, 1, FALSE, 0, 0}, {0, 0, 2, 2, 5, 5, 7, 7, TRUE, 1, 1},
                                {0, 0, 1, 0, 2, -1, 2, 1, FALSE, 0, 0}, {0, 0, 1, 0, 1, -1, 1, 1, TRUE, 1, 0}, {0, 0, 1, 0, 0, -1, 0, 0, TRUE, 0, 0}};
    double x, y, u, mu = -1, mu2 = -1, ka, kb, kc, kd;
    for (const auto &c : cross)
        EXPECT_TRUE(LineIntersect(c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], &x, &y) == c[8] && x == c[9] && y == c[10]) << x << " " << y;
    // Feet beyond the segment (the 2-D one ignores z); a line shorter than
    // sqrt(1e-5) stands for its first point.
    const XYZ o = Pt(0, 0, 0), n = Pt(0, 0, 1), clipped[4] = {o, Pt(0.5, 0), Pt(0.5, 0.5), Pt(0, 1)};
    XYZ foot, pa, pb, clip[4] = {o, Pt(1, 0), Pt(0, 1)};
    EXPECT_TRUE(PointLine2D(Pt(3, 2, 9), o, Pt(2, 0), &foot, &u) == 2 && u == 1.5 && foot.x == 3 && foot.y == 0 && foot.z == 0);
    EXPECT_TRUE(PointLine2D(Pt(3, 4), n, Pt(0.003, 0, 2), &foot, &u) == 5 && u == 0 && foot.x == 0 && foot.z == 1);
    EXPECT_TRUE(std::fabs(PointLine3D(Pt(1, 2, 2), o, Pt(4, 0, 0), &foot, &u) - std::sqrt(8.0)) <= 1e-15 && u == 0.25 && foot.x == 1);
    // The plane z = 1 met within and beyond the segment; a parallel line
    // leaves the outputs alone.
    EXPECT_TRUE(LinePlane(o, Pt(2, 4, 2), n, -1, &mu, &pa) && mu == 0.5 && pa.x == 1 && pa.y == 2 && pa.z == 1);
    EXPECT_TRUE(LinePlane(o, Pt(0, 0, 0.5), n, -1, &mu, &pa) && mu == 2 && !LinePlane(o, Pt(1, 0, 0), n, -1, &mu, &pa) && mu == 2);
    EXPECT_TRUE(LineSegmentPlane(o, Pt(0, 0, 4), n, -1, &pa) && pa.z == 1 && !LineSegmentPlane(o, Pt(0, 0, 0.5), n, -1, &pa) &&
                !LineSegmentPlane(o, Pt(1, 0, 1e-6), n, -1, &pa));
    // The unit sphere: both roots; a miss leaves the outputs alone, a line
    // shorter than 1e-5 squared sets them to 0.
    EXPECT_TRUE(RaySphere(Pt(-2, 0, 0), Pt(2, 0, 0), o, 1, &mu, &mu2) && mu == 0.25 && mu2 == 0.75);
    EXPECT_FALSE(RaySphere(Pt(-2, 2, 0), Pt(2, 2, 0), o, 1, &mu, &mu2) || mu != 0.25);
    EXPECT_FALSE(RaySphere(Pt(1, 1, 1), Pt(1, 1, 1.001), o, 1, &mu, &mu2) || mu != 0 || mu2 != 0);
    // The plane through (1,0,0), (0,1,0), (0,0,1) is x + y + z - 1 = 0.
    PlaneParam(Facet{{Pt(1, 0, 0), Pt(0, 1, 0), Pt(0, 0, 1)}}, &ka, &kb, &kc, &kd);
    EXPECT_TRUE(ka == 1 && kb == 1 && kc == 1 && kd == -1);
    // The x axis and the line (2, t, 1) are joined by (2, 0, 0)-(2, 0, 1);
    // a direction below 1e-5 in every component fails, the outputs untouched.
    EXPECT_TRUE(LineLineIntersect(o, Pt(1, 0, 0), Pt(2, 0, 1), Pt(2, 1, 1), &pa, &pb, &mu, &mu2) && mu == 2 && mu2 == 0);
    EXPECT_TRUE(pa.x == 2 && pa.y == 0 && pa.z == 0 && pb.x == 2 && pb.y == 0 && pb.z == 1);
    EXPECT_FALSE(LineLineIntersect(o, Pt(1e-6, 0, 0), Pt(2, 0, 1), Pt(2, 1, 1), &pa, &pb, &mu, &mu2) || mu != 2 || pa.x != 2 || pb.z != 1);
    // The triangle (0,0), (1,0), (0,1) clipped to x <= 0.5 keeps its corner
    // order. z = 1 cuts edges 1-2 and 2-0 of a facet; z = 3 misses it and
    // leaves the outputs alone.
    ASSERT_EQ(ClipFacet(clip, Pt(-1, 0, 0), 0.5), 4);
    for (int i = 0; i < 4; i++) ExpectXYZ(clip[i], clipped[i]);
    EXPECT_TRUE(ClipFacet(clip, Pt(1, 0, 0), 2) == 3 && ClipFacet(clip, Pt(1, 0, 0), -2) == 0);
    const Facet facet = {{o, Pt(2, 0, 0), Pt(0, 2, 2)}};
    EXPECT_TRUE(ContourFacet(facet, n, -1, &pa, &pb) && pa.x == 1 && pa.y == 1 && pa.z == 1 && pb.x == 0 && pb.y == 1 && pb.z == 1);
    EXPECT_TRUE(ContourFacet(facet, n, -3, &pb, &pa) == FALSE && pb.x == 0 && pa.x == 1);
}

TEST(Vectors, InvariantsOnRandomInput) {
    Uniform u(20240607);
    for (int k = 0; k < 1000; k++) {
        XYZ v[4], foot;
        for (XYZ &e : v) e = Pt(u(-10, 10), u(-10, 10), u(-10, 10));
        double t = u(-10, 10), len = Modulus(v[0]), len1 = Modulus(v[1]), x, y, mu;
        // Rotations keep lengths and turn back; a rotation about a line keeps
        // the line's points.
        for (const XYZ &r : {RotateX(v[0], t), RotateY(v[0], t), RotateZ(v[0], t), ArbitraryRotate(v[0], t, v[1])}) EXPECT_NEAR(Modulus(r), len, 1e-12);
        EXPECT_NEAR(std::hypot(Vector2DRotate(v[0], t).x, Vector2DRotate(v[0], t).y), std::hypot(v[0].x, v[0].y), 1e-12);
        EXPECT_TRUE(VectorEqual(ArbitraryRotate(ArbitraryRotate(v[0], t, v[1]), -t, v[1]), v[0]) && VectorEqual(ArbitraryRotate2(v[2], t, v[1], v[2]), v[2]));
        // CrossProduct is orthogonal to both inputs; VectorPerp gives a unit
        // vector orthogonal to its input.
        EXPECT_NEAR(DotProduct(CrossProduct(v[0], v[1]), v[0]) / (len * len * len1), 0, 1e-14);
        EXPECT_NEAR(DotProduct(CrossProduct(v[0], v[1]), v[1]) / (len * len1 * len1), 0, 1e-14);
        EXPECT_TRUE(std::fabs(DotProduct(VectorPerp(v[0]), v[0]) / len) <= 1e-14 && std::fabs(Modulus(VectorPerp(v[0])) - 1) <= 1e-14);
        // Polar coordinates turn back into the point with x >= 0, to the
        // precision of the nine-digit factors.
        ExpectXYZ(Cartesian(len, Polar(v[0]).y, Polar(v[0]).z), Pt(std::fabs(v[0].x), v[0].y, v[0].z), 1e-7 * len);
        // The 2-D segments 0-1 and 2-3 cross exactly when each one's ends lie
        // on opposite sides of the other's line, at a point on both.
        const int met = LineIntersect(v[0].x, v[0].y, v[1].x, v[1].y, v[2].x, v[2].y, v[3].x, v[3].y, &x, &y);
        EXPECT_EQ(met == TRUE, WhichSide(v[2], v[0], v[1]) * WhichSide(v[3], v[0], v[1]) < 0 && WhichSide(v[0], v[2], v[3]) * WhichSide(v[1], v[2], v[3]) < 0);
        for (int i = 0; met && i < 4; i += 2) EXPECT_TRUE(PointLine2D(Pt(x, y), v[i], v[i + 1], &foot, &mu) <= 1e-9 && mu >= -1e-9 && mu <= 1 + 1e-9) << k;
    }
}

TEST(Vectors, ConvexPolygonOnRandomHullsAndDents) {
    Uniform u(4242);
    for (int k = 0; k < 200; k++) {
        std::vector<XYZ> pts(3 + k % 40);
        for (XYZ &p : pts) p = Pt(u(-1, 1), u(-1, 1));
        std::vector<XYZ> hull = ConvexHull(pts), rev(hull.rbegin(), hull.rend());
        const int n = static_cast<int>(hull.size());
        ASSERT_TRUE(n >= 3 && ConvexPolygon(hull.data(), n) == 1 && ClockWise(hull.data(), n) == -1 && ConvexPolygon(rev.data(), n) == 1) << k;
        // Push one corner through the chord of its neighbours: its turn
        // reverses while the corner opposite keeps its own (a triangle stays
        // convex).
        const XYZ mid = MidPoint(hull[(k + n - 1) % n], hull[(k + 1) % n]);
        hull[k % n] = VectorAdd(mid, VectorMul(VectorSub(hull[k % n], mid), 0.5));
        EXPECT_EQ(ConvexPolygon(hull.data(), n), n == 3 ? 1 : -1) << "dented hull " << k;
    }
}
