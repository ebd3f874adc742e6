// Triangulation, iso-surfaces and contours, tested by their geometric
// properties: empty circumcircles and 2n - 2 - h triangles, closed
// marching-cubes and marching-tetrahedra spheres, contours on the circle.
#include "surfaces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

using namespace geomtest;
using Key = std::array<long long, 3>;

// Unit-cube corner offsets in the tables' numbering.
static const int kCorner[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};

// The six tetrahedra of the Kuhn (Freudenthal) subdivision around the
// diagonal 0-6: every path from corner 0 to corner 6 along the three axes in
// some order. Neighbouring cells split their shared faces alike.
static const int kTetra[6][4] = {{0, 1, 2, 6}, {0, 1, 5, 6}, {0, 3, 2, 6}, {0, 3, 7, 6}, {0, 4, 5, 6}, {0, 4, 7, 6}};

// A point rounded to 1e-7: neighbouring cells interpolate a shared edge from
// opposite ends and can differ in the last bits.
static Key KeyOf(const XYZ &p) { return {std::llround(p.x * 1e7), std::llround(p.y * 1e7), std::llround(p.z * 1e7)}; }

// Sorts pts by x as Triangulate requires (and appends the super-triangle's
// three points) and returns their triangles.
// Checks that no triangle uses a super-triangle vertex, that CircumCircle's
// circle passes through its corners and holds no other point, and that no
// edge has more than two triangles; the number of triangles on each
// undirected edge goes to *use.
static std::vector<TriIndex> Delaunay(std::vector<XYZ> &pts, std::map<std::pair<int, int>, int> *use) {
    std::sort(pts.begin(), pts.end(), [](const XYZ &a, const XYZ &b) { return a.x < b.x; });
    int nv = static_cast<int>(pts.size()), ntri = -1;
    std::vector<TriIndex> tris(4 * nv);
    pts.resize(nv + 3);
    if (Triangulate(nv, pts.data(), tris.data(), &ntri) != 0) { ADD_FAILURE() << "Triangulate failed"; return {}; }
    tris.resize(ntri);
    for (const TriIndex &t : tris) {
        const int v[3] = {t.p1, t.p2, t.p3};
        if (*std::min_element(v, v + 3) < 0 || *std::max_element(v, v + 3) >= nv) { ADD_FAILURE() << "super-triangle vertex"; return {}; }
        for (int i = 0; i < 3; i++) ++(*use)[std::minmax(v[i], v[(i + 1) % 3])];
        double xc = 0, yc = 0, r = 0;
        CircumCircle(0, 0, pts[t.p1].x, pts[t.p1].y, pts[t.p2].x, pts[t.p2].y, pts[t.p3].x, pts[t.p3].y, &xc, &yc, &r);
        for (int i = 0; i < nv; i++) {
            const double d2 = (pts[i].x - xc) * (pts[i].x - xc) + (pts[i].y - yc) * (pts[i].y - yc);
            if (i == t.p1 || i == t.p2 || i == t.p3) { EXPECT_NEAR(d2, r, 1e-6 * (1 + r)); }
            else { EXPECT_GT(d2, r * (1 - 1e-9)) << "point " << i << " inside a circumcircle"; }
        }
    }
    for (const auto &e : *use) EXPECT_LE(e.second, 2) << e.first.first << "-" << e.first.second;
    return tris;
}

TEST(Triangulate, EmptyCircumcirclesAndAtMostTwoNMinusTwoMinusHTriangles) {
    // CircumCircle of the right triangle (0,0), (1,0), (0,1): centre
    // (0.5, 0.5), rsqr 0.5, and (1, 1) on the circle counts as inside. Three
    // points on a horizontal line (within 1e-6): FALSE, the outputs left as
    // they were.
    double xc = -1, yc = -1, r = -1;
    EXPECT_TRUE(CircumCircle(1, 1, 0, 0, 1, 0, 0, 1, &xc, &yc, &r) == TRUE && xc == 0.5 && yc == 0.5 && r == 0.5);
    EXPECT_TRUE(CircumCircle(0, 0, 0, 1, 2, 1, 5, 1 + 1e-7, &xc, &yc, &r) == FALSE && xc == 0.5 && yc == 0.5 && r == 0.5);
    // 0: a unit square's corners; 1: three points; 11-14: 300 uniform points
    // (fixed seeds); 21-23: a square's corners plus 296 interior points that
    // stay away from its sides.
    for (std::uint64_t seed : {0u, 1u, 11u, 12u, 13u, 14u, 21u, 22u, 23u}) {
        SCOPED_TRACE(seed);
        Uniform u(seed);
        std::vector<XYZ> pts;
        if (seed == 0 || seed > 20) pts = {Pt(0, 0), Pt(1, 0), Pt(1, 1), Pt(0, 1)};
        if (seed == 1) pts = {Pt(0, 0), Pt(2.385, 0.5), Pt(1, 2)};
        while (seed > 10 && pts.size() < 300) pts.push_back(seed > 20 ? Pt(u(0.1, 0.9), u(0.1, 0.9)) : Pt(u(0, 100), u(0, 100)));
        const std::size_t full = 2 * pts.size() - 2 - ConvexHull(pts).size();
        std::map<std::pair<int, int>, int> use;
        const std::vector<TriIndex> tris = Delaunay(pts, &use);
        // n points with h on the hull have 2n - 2 - h triangles. The finite
        // super-triangle may lose a few thin ones along the hull of a uniform
        // set, never gain any; the others have them all.
        EXPECT_TRUE(seed > 10 && seed < 20 ? tris.size() <= full && tris.size() + 10 >= full : tris.size() == full) << tris.size();
        if (seed == 1 || (seed > 10 && seed < 20)) continue;
        // The squares are tiled: the areas add up to 1 (no overlap) and the
        // only edges with one triangle are the four sides.
        double area = 0, sides = 0;
        for (const TriIndex &t : tris) area += std::fabs(Cross2(pts[t.p1], pts[t.p2], pts[t.p3])) / 2;
        for (const auto &e : use) {
            const XYZ &a = pts[e.first.first], &b = pts[e.first.second];
            sides += e.second == 1;
            EXPECT_TRUE(e.second == 2 || (a.x == b.x && (a.x == 0 || a.x == 1)) || (a.y == b.y && (a.y == 0 || a.y == 1)));
        }
        EXPECT_TRUE(sides == 4 && std::fabs(area - 1) <= 1e-12) << sides << " " << area;
    }
}

TEST(MarchingCubes, SingleCellsTetrahedraAndVertexInterp) {
    GridCell g;
    Facet tri[5];
    for (int k = 0; k < 8; k++) g.p[k] = Pt(kCorner[k][0], kCorner[k][1], kCorner[k][2]), g.val[k] = k == 0 ? 0 : 2;
    // Corner 0 alone below 1.5: one triangle on edges 0, 8, 3 (row 1 of the
    // published table) three quarters along them; all below or all above:
    // none.
    ASSERT_EQ(PolygoniseCube(g, 1.5, tri), 1);
    for (int i = 0; i < 3; i++) ExpectXYZ(tri[0].p[i], i == 0 ? Pt(0.75, 0, 0) : i == 1 ? Pt(0, 0, 0.75) : Pt(0, 0.75, 0));
    EXPECT_TRUE(PolygoniseCube(g, 5, tri) == 0 && PolygoniseCube(g, -1, tri) == 0);
    // Tetrahedra with corner 0 alone below, with corners 0 and 3 below (a
    // quadrilateral), and all above.
    g.val[3] = 0;
    EXPECT_TRUE(PolygoniseTri(g, 1, tri, 0, 1, 2, 6) == 1 && PolygoniseTri(g, 1, tri, 0, 3, 2, 6) == 2 && PolygoniseTri(g, -1, tri, 0, 1, 2, 6) == 0);
    // VertexInterp (isolevel, valp1, valp2, t): p1 + t (p2 - p1); within 1e-5
    // of an end that end; equal values with the level at neither: p1.
    const double cases[][4] = {{1.5, 1, 2, 0.5}, {1.25, 1, 2, 0.25}, {-0.5, 1, -5, 0.25}, {1 + 9e-6, 1, 2, 0}, {2 - 9e-6, 1, 2, 1}, {3, 1, 1 + 5e-6, 0}};
    for (const auto &c : cases) ExpectXYZ(VertexInterp(c[0], Pt(0, 0, 0), Pt(2, 4, 8), c[1], c[2]), Pt(2 * c[3], 4 * c[3], 8 * c[3]));
}

TEST(MarchingCubes, SphereAndNoiseGiveClosedSurfaces) {
    // Runs 0 and 1, cubes and tetrahedra: the distance from a centre off the
    // grid's symmetry (with |p|^2 the cubes' and the tetrahedra's surfaces
    // would coincide cell by cell), at level 1 in a 25^3 grid over
    // [-1.3, 1.3]^3; no sample lies within 1e-5 of the level (the nearest is
    // 4.4e-5 away), so no crossing snaps to a corner. Runs 2 and 3: noise kept
    // 0.01 away from the level, inside a box of samples above it, which
    // reaches every one of the 256 cases many times; the surface is closed
    // however the ambiguous faces fall, so neighbouring cells and every row
    // of the tables must agree.
    const XYZ centre = Pt(0.05, -0.03, 0.02);
    Uniform u(3);
    std::vector<double> noise(26 * 26 * 26);
    for (double &v : noise) v = u() < 0.5 ? u(0.5, 0.99) : u(1.01, 1.5);
    for (int run = 0; run < 4; run++) {
        const bool tetrahedra = run % 2 == 1, sphere = run < 2;
        std::vector<Facet> mesh;
        Facet tri[5];
        GridCell g;
        for (int i = 0; i < 25 * 25 * 25; i++) {
            for (int c = 0; c < 8; c++) {
                const int gi = i / 625 + kCorner[c][0], gj = i / 25 % 25 + kCorner[c][1], gk = i % 25 + kCorner[c][2];
                g.p[c] = Pt(-1.3 + gi * 0.104, -1.3 + gj * 0.104, -1.3 + gk * 0.104);
                g.val[c] = sphere ? VectorLength(g.p[c], centre) : gi % 25 == 0 || gj % 25 == 0 || gk % 25 == 0 ? 2 : noise[(gi * 26 + gj) * 26 + gk];
            }
            if (!tetrahedra) mesh.insert(mesh.end(), tri, tri + PolygoniseCube(g, 1, tri));
            for (const auto &k : kTetra) if (tetrahedra) mesh.insert(mesh.end(), tri, tri + PolygoniseTri(g, 1, tri, k[0], k[1], k[2], k[3]));
        }
        // The inside (values below the level) is the ball, with the normals
        // facing it and the area 4 pi within 3%. Closed and consistently
        // oriented: every directed edge joins two distinct vertices, once, and
        // its reverse is there too.
        double area = 0, outward = 0, bad = 0;
        std::map<std::pair<Key, Key>, int> directed;
        for (const Facet &f : mesh) {
            const XYZ n = CrossProduct(VectorSub(f.p[0], f.p[1]), VectorSub(f.p[0], f.p[2]));
            area += Modulus(n) / 2;
            outward += DotProduct(n, VectorSub(centre, f.p[0])) >= 0;
            for (int i = 0; i < 3; i++) directed[{KeyOf(f.p[i]), KeyOf(f.p[(i + 1) % 3])}]++;
        }
        for (const auto &d : directed) bad += d.first.first == d.first.second || d.second != 1 || directed.count({d.first.second, d.first.first}) == 0;
        EXPECT_TRUE(mesh.size() > 1000 && bad == 0 && (!sphere || outward == 0)) << run << ": " << mesh.size() << " " << outward << " " << bad;
        if (sphere) { EXPECT_NEAR(area / (4 * M_PI), 1.0, 0.03) << run; }
    }
}

static std::vector<std::array<double, 5>> g_segments; // x1, y1, x2, y2, level

static void Record(double x1, double y1, double x2, double y2, double level) { g_segments.push_back({x1, y1, x2, y2, level}); }

TEST(Contour, CircularFieldGivesClosedCircles) {
    // x^2 + y^2 on 41 x 41 samples over [-2, 2]^2; levels 1 and 2.25 are the
    // circles of radius 1 and 1.5.
    const int n = 40;
    const double levels[2] = {1.0, 2.25};
    double x[n + 1], values[n + 1][n + 1], *d[n + 1];
    for (int i = 0; i <= n; i++) x[i] = -2 + 4.0 * i / n, d[i] = values[i];
    for (int i = 0; i <= n; i++) for (int j = 0; j <= n; j++) values[i][j] = x[i] * x[i] + x[j] * x[j];
    const int count = Contour(d, 0, n, 0, n, x, x, 2, levels, Record);
    ASSERT_TRUE(count == static_cast<int>(g_segments.size()) && count > 100) << count;
    // Every end lies within a few thousandths of its circle (linear
    // interpolation over cells of side 0.1) and is shared by exactly two
    // segments: closed curves on the circles, which therefore cover them.
    std::map<std::pair<double, Key>, int> ends;
    for (const auto &s : g_segments) {
        EXPECT_TRUE(std::fabs(std::hypot(s[0], s[1]) - std::sqrt(s[4])) <= 0.005 && std::fabs(std::hypot(s[2], s[3]) - std::sqrt(s[4])) <= 0.005);
        ends[{s[4], KeyOf(Pt(s[0], s[1]))}]++, ends[{s[4], KeyOf(Pt(s[2], s[3]))}]++;
    }
    for (const auto &e : ends) EXPECT_EQ(e.second, 2);
    // Columns and rows 10 to 30 span [-1, 1]^2: the whole unit circle and
    // nothing of the larger one, here counted without a callback.
    EXPECT_EQ(Contour(d, 10, 30, 10, 30, x, x, 2, levels, nullptr),
              std::count_if(g_segments.begin(), g_segments.end(), [](const std::array<double, 5> &s) { return s[4] == 1; }));
}
