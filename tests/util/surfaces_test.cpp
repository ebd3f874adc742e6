// Triangulation, iso-surfaces and contours, tested by their geometric
// properties: empty circumcircles and 2n - 2 - h triangles, closed and
// consistently oriented marching-cubes spheres, contours on the circle.
#include "surfaces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"
#include "surfaces_tables.h"

namespace {

using geomtest::Pt;
using geomtest::Uniform;

const double kPi = 3.14159265358979323846;

// ---------------------------------------------------------------------------
// Circumcircle and triangulation

TEST(CircumCircle, RightTriangleAndPointOnCircle)
{
    double xc = -1, yc = -1, r = -1;
    // (1, 1) lies exactly on the circle through (0,0), (1,0), (0,1).
    EXPECT_EQ(CircumCircle(1, 1, 0, 0, 1, 0, 0, 1, &xc, &yc, &r), TRUE);
    EXPECT_EQ(xc, 0.5);
    EXPECT_EQ(yc, 0.5);
    EXPECT_EQ(r, 0.5);
    EXPECT_EQ(CircumCircle(1.01, 1, 0, 0, 1, 0, 0, 1, &xc, &yc, &r), FALSE);
    EXPECT_EQ(CircumCircle(0.2, 0.3, 0, 0, 1, 0, 0, 1, &xc, &yc, &r), TRUE);
    // The same triangle with the horizontal chord second (points 2 and 3).
    EXPECT_EQ(CircumCircle(1, 1, 0, 1, 0, 0, 1, 0, &xc, &yc, &r), TRUE);
    EXPECT_EQ(xc, 0.5);
    EXPECT_EQ(yc, 0.5);
    EXPECT_EQ(r, 0.5);
}

TEST(CircumCircle, HorizontalLineLeavesOutputsUnset)
{
    double xc = 7, yc = 8, r = 9;
    EXPECT_EQ(CircumCircle(0, 0, 0, 1, 2, 1, 5, 1 + 1e-7, &xc, &yc, &r), FALSE);
    EXPECT_EQ(xc, 7);
    EXPECT_EQ(yc, 8);
    EXPECT_EQ(r, 9);
}

TEST(CircumCircle, CentreIsEquidistantOnRandomTriangles)
{
    Uniform u(1);
    for (int k = 0; k < 1000; k++) {
        double x[3], y[3];
        for (int i = 0; i < 3; i++) {
            x[i] = u(-5, 5);
            y[i] = u(-5, 5);
        }
        double xc, yc, r;
        const int in = CircumCircle(u(-5, 5), u(-5, 5), x[0], y[0], x[1], y[1], x[2], y[2], &xc, &yc, &r);
        (void)in;
        for (int i = 0; i < 3; i++) {
            const double d2 = (x[i] - xc) * (x[i] - xc) + (y[i] - yc) * (y[i] - yc);
            EXPECT_NEAR(d2, r, 1e-6 * (1 + r)) << "case " << k;
        }
    }
}

struct Triangulation {
    int code = -1;
    std::vector<XYZ> pts; // sorted by x, with room for the super-triangle
    std::vector<TriIndex> tris;
};

Triangulation TriangulateSorted(std::vector<XYZ> pts)
{
    std::sort(pts.begin(), pts.end(), [](const XYZ &a, const XYZ &b) { return a.x < b.x; });
    Triangulation t;
    const int nv = static_cast<int>(pts.size());
    t.pts = pts;
    t.pts.resize(pts.size() + 3);
    t.tris.resize(4 * pts.size());
    int ntri = -1;
    t.code = Triangulate(nv, t.pts.data(), t.tris.data(), &ntri);
    t.tris.resize(static_cast<std::size_t>(ntri));
    return t;
}

double SignedArea(const XYZ &a, const XYZ &b, const XYZ &c)
{
    return geomtest::Cross2(a, b, c) / 2;
}

// Number of triangles on each undirected edge.
std::map<std::pair<int, int>, int> EdgeUse(const std::vector<TriIndex> &tris)
{
    std::map<std::pair<int, int>, int> use;
    for (const TriIndex &t : tris) {
        const int v[3] = {t.p1, t.p2, t.p3};
        for (int i = 0; i < 3; i++)
            use[std::minmax(v[i], v[(i + 1) % 3])]++;
    }
    return use;
}

// The Delaunay properties every output must have.
void CheckDelaunay(const Triangulation &t, int nv)
{
    ASSERT_EQ(t.code, 0);
    for (const TriIndex &tri : t.tris) {
        ASSERT_TRUE(tri.p1 >= 0 && tri.p1 < nv && tri.p2 >= 0 && tri.p2 < nv && tri.p3 >= 0 && tri.p3 < nv)
            << "a triangle uses a super-triangle vertex";
        const XYZ &a = t.pts[tri.p1], &b = t.pts[tri.p2], &c = t.pts[tri.p3];
        EXPECT_GT(std::fabs(SignedArea(a, b, c)), 0.0);
        double xc = 0, yc = 0, r = 0;
        CircumCircle(0, 0, a.x, a.y, b.x, b.y, c.x, c.y, &xc, &yc, &r);
        for (int i = 0; i < nv; i++) {
            if (i == tri.p1 || i == tri.p2 || i == tri.p3)
                continue;
            const double d2 = (t.pts[i].x - xc) * (t.pts[i].x - xc) + (t.pts[i].y - yc) * (t.pts[i].y - yc);
            EXPECT_GT(d2, r * (1 - 1e-9)) << "point " << i << " inside a circumcircle";
        }
    }
    for (const auto &e : EdgeUse(t.tris))
        EXPECT_LE(e.second, 2) << "edge " << e.first.first << "-" << e.first.second;
}

TEST(Triangulate, SquareAndSingleTriangle)
{
    Triangulation sq = TriangulateSorted({Pt(0, 0), Pt(1, 1), Pt(0, 1), Pt(1, 0)});
    EXPECT_EQ(sq.code, 0);
    EXPECT_EQ(sq.tris.size(), 2u);
    CheckDelaunay(sq, 4);

    Triangulation one = TriangulateSorted({Pt(0, 0), Pt(2.385, 0.5), Pt(1, 2)});
    EXPECT_EQ(one.code, 0);
    ASSERT_EQ(one.tris.size(), 1u);
    const TriIndex &t = one.tris[0];
    std::array<int, 3> v = {t.p1, t.p2, t.p3};
    std::sort(v.begin(), v.end());
    EXPECT_EQ(v, (std::array<int, 3>{0, 1, 2}));
}

TEST(Triangulate, NoPointsGiveNoTriangles)
{
    XYZ pts[3];
    TriIndex tris[1];
    int ntri = -1;
    EXPECT_EQ(Triangulate(0, pts, tris, &ntri), 0);
    EXPECT_EQ(ntri, 0);
}

TEST(Triangulate, RandomSetsAreDelaunay)
{
    for (std::uint64_t seed : {11u, 12u, 13u, 14u}) {
        Uniform u(seed);
        std::vector<XYZ> pts(300);
        for (XYZ &p : pts)
            p = Pt(u(0, 100), u(0, 100));
        const std::size_t h = geomtest::ConvexHull(pts).size();
        Triangulation t = TriangulateSorted(pts);
        SCOPED_TRACE(seed);
        CheckDelaunay(t, 300);
        // A triangulation of n points with h on the hull has 2n - 2 - h
        // triangles; the finite super-triangle may lose a few thin ones along
        // the hull, never gain any.
        EXPECT_LE(t.tris.size(), 2 * 300 - 2 - h);
        EXPECT_GE(t.tris.size() + 10, 2 * 300 - 2 - h);
    }
}

TEST(Triangulate, InteriorPointsAwayFromHullTileTheSquare)
{
    for (std::uint64_t seed : {21u, 22u, 23u}) {
        Uniform u(seed);
        std::vector<XYZ> pts = {Pt(0, 0), Pt(1, 0), Pt(1, 1), Pt(0, 1)};
        for (int i = 0; i < 296; i++)
            pts.push_back(Pt(u(0.1, 0.9), u(0.1, 0.9)));
        Triangulation t = TriangulateSorted(pts);
        SCOPED_TRACE(seed);
        CheckDelaunay(t, 300);
        // h = 4: exactly 2 * 300 - 2 - 4 triangles.
        EXPECT_EQ(t.tris.size(), 594u);
        // They tile the square: no overlap (areas add up to 1) and every
        // edge is inner (two triangles) or one of the square's sides.
        double area = 0;
        for (const TriIndex &tri : t.tris)
            area += std::fabs(SignedArea(t.pts[tri.p1], t.pts[tri.p2], t.pts[tri.p3]));
        EXPECT_NEAR(area, 1.0, 1e-12);
        int boundary = 0;
        for (const auto &e : EdgeUse(t.tris)) {
            if (e.second == 1) {
                boundary++;
                const XYZ &a = t.pts[e.first.first], &b = t.pts[e.first.second];
                const bool on_side = (a.x == b.x && (a.x == 0 || a.x == 1)) ||
                                     (a.y == b.y && (a.y == 0 || a.y == 1));
                EXPECT_TRUE(on_side);
            } else {
                EXPECT_EQ(e.second, 2);
            }
        }
        EXPECT_EQ(boundary, 4);
    }
}

// ---------------------------------------------------------------------------
// Marching cubes and tetrahedra

TEST(VertexInterp, InterpolatesAndSnaps)
{
    const XYZ a = Pt(0, 0, 0), b = Pt(2, 4, 8);
    struct Case {
        double iso, v1, v2, t; // expected point a + t (b - a)
    } cases[] = {
        {1.5, 1, 2, 0.5},        {1.25, 1, 2, 0.25},      {-0.5, 1, -5, 0.25},
        {1 + 9e-6, 1, 2, 0},     {2 - 9e-6, 1, 2, 1},     // within 1e-5 of an end
        {3, 1, 1 + 5e-6, 0},     // equal values, level at neither: p1
    };
    for (const Case &c : cases) {
        const XYZ p = VertexInterp(c.iso, a, b, c.v1, c.v2);
        EXPECT_DOUBLE_EQ(p.x, 2 * c.t);
        EXPECT_DOUBLE_EQ(p.y, 4 * c.t);
        EXPECT_DOUBLE_EQ(p.z, 8 * c.t);
    }
}

// Unit-cube corner offsets in the tables' numbering.
const int kCorner[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                           {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};

TEST(MarchingCubes, PublishedTableEntries)
{
    EXPECT_EQ(mctables::kEdgeTable[0], 0);
    EXPECT_EQ(mctables::kEdgeTable[1], 0x109);
    EXPECT_EQ(mctables::kEdgeTable[128], 0x8c0);
    EXPECT_EQ(mctables::kEdgeTable[255], 0);
    const int row1[4] = {0, 8, 3, -1};
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(mctables::kTriTable[1][i], row1[i]);
    EXPECT_EQ(mctables::kTriTable[0][0], -1);
    EXPECT_EQ(mctables::kTriTable[255][0], -1);
}

// Each case's triangles must use exactly the edges with one corner on each
// side, and their boundary must be closed loops on the cube's faces: every
// triangle edge either appears twice (once each way) or lies on a face.
TEST(MarchingCubes, EveryTableRowIsAConsistentPatch)
{
    for (int index = 0; index < 256; index++) {
        SCOPED_TRACE(index);
        int crossed = 0;
        for (int e = 0; e < 12; e++) {
            const int a = mctables::kEdgeCorners[e][0], b = mctables::kEdgeCorners[e][1];
            if (((index >> a) & 1) != ((index >> b) & 1))
                crossed |= 1 << e;
        }
        EXPECT_EQ(mctables::kEdgeTable[index], crossed);

        const int *row = mctables::kTriTable[index];
        int used = 0, len = 0;
        while (len < 16 && row[len] != -1)
            used |= 1 << row[len++];
        ASSERT_LT(len, 16);
        EXPECT_EQ(len % 3, 0);
        EXPECT_LE(len / 3, 5);
        EXPECT_EQ(used, crossed);

        std::map<std::pair<int, int>, int> directed;
        for (int t = 0; t < len; t += 3)
            for (int i = 0; i < 3; i++)
                directed[{row[t + i], row[t + (i + 1) % 3]}]++;
        for (const auto &d : directed) {
            EXPECT_EQ(d.second, 1);
            if (directed.count({d.first.second, d.first.first}))
                continue;
            // A boundary edge: both crossing points on one face of the cube.
            const int *a0 = kCorner[mctables::kEdgeCorners[d.first.first][0]];
            const int *a1 = kCorner[mctables::kEdgeCorners[d.first.first][1]];
            const int *b0 = kCorner[mctables::kEdgeCorners[d.first.second][0]];
            const int *b1 = kCorner[mctables::kEdgeCorners[d.first.second][1]];
            bool shared = false;
            for (int axis = 0; axis < 3; axis++)
                shared = shared || (a0[axis] == a1[axis] && b0[axis] == b1[axis] && a0[axis] == b0[axis]);
            EXPECT_TRUE(shared) << "edges " << d.first.first << " " << d.first.second;
        }
    }
}

GridCell UnitCell(const double val[8])
{
    GridCell g;
    for (int k = 0; k < 8; k++) {
        g.p[k] = Pt(kCorner[k][0], kCorner[k][1], kCorner[k][2]);
        g.val[k] = val[k];
    }
    return g;
}

TEST(MarchingCubes, SingleCells)
{
    Facet tri[5];
    const double below[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    const double above[8] = {2, 2, 2, 2, 2, 2, 2, 2};
    EXPECT_EQ(PolygoniseCube(UnitCell(below), 1, tri), 0);
    EXPECT_EQ(PolygoniseCube(UnitCell(above), 1, tri), 0);

    // Corner 0 below: one triangle on edges 0, 8, 3 (row 1 of the table).
    const double one[8] = {0, 2, 2, 2, 2, 2, 2, 2};
    ASSERT_EQ(PolygoniseCube(UnitCell(one), 1.5, tri), 1);
    const XYZ expected[3] = {Pt(0.75, 0, 0), Pt(0, 0, 0.75), Pt(0, 0.75, 0)};
    for (int i = 0; i < 3; i++) {
        EXPECT_DOUBLE_EQ(tri[0].p[i].x, expected[i].x);
        EXPECT_DOUBLE_EQ(tri[0].p[i].y, expected[i].y);
        EXPECT_DOUBLE_EQ(tri[0].p[i].z, expected[i].z);
    }
    // All but corner 6 below: also one triangle.
    const double seven[8] = {0, 0, 0, 0, 0, 0, 2, 0};
    EXPECT_EQ(PolygoniseCube(UnitCell(seven), 1, tri), 1);
}

// Joins mesh vertices that lie within a small distance of each other.
class Welder {
public:
    explicit Welder(double tol) : tol_(tol) {}
    int Id(const XYZ &p)
    {
        const long cx = Cell(p.x), cy = Cell(p.y), cz = Cell(p.z);
        for (long dx = -1; dx <= 1; dx++)
            for (long dy = -1; dy <= 1; dy++)
                for (long dz = -1; dz <= 1; dz++) {
                    auto it = grid_.find(std::make_tuple(cx + dx, cy + dy, cz + dz));
                    if (it == grid_.end())
                        continue;
                    for (int id : it->second)
                        if (std::fabs(pts_[id].x - p.x) <= tol_ && std::fabs(pts_[id].y - p.y) <= tol_ &&
                            std::fabs(pts_[id].z - p.z) <= tol_)
                            return id;
                }
        pts_.push_back(p);
        const int id = static_cast<int>(pts_.size()) - 1;
        grid_[std::make_tuple(cx, cy, cz)].push_back(id);
        return id;
    }

private:
    long Cell(double v) const { return static_cast<long>(std::floor(v / (4 * tol_))); }
    double tol_;
    std::vector<XYZ> pts_;
    std::map<std::tuple<long, long, long>, std::vector<int>> grid_;
};

struct MeshCheck {
    int triangles = 0;
    int degenerate = 0;
    int open_or_nonmanifold = 0; // undirected edges not used exactly twice
    int misoriented = 0;         // directed edges not matched by their reverse
    double area = 0;
};

MeshCheck CheckMesh(const std::vector<Facet> &facets)
{
    MeshCheck m;
    Welder weld(1e-9);
    std::map<std::pair<int, int>, int> directed;
    for (const Facet &f : facets) {
        const int id[3] = {weld.Id(f.p[0]), weld.Id(f.p[1]), weld.Id(f.p[2])};
        m.triangles++;
        if (id[0] == id[1] || id[1] == id[2] || id[2] == id[0]) {
            m.degenerate++;
            continue;
        }
        for (int i = 0; i < 3; i++)
            directed[{id[i], id[(i + 1) % 3]}]++;
        m.area += Modulus(CrossProduct(VectorSub(f.p[0], f.p[1]), VectorSub(f.p[0], f.p[2]))) / 2;
    }
    for (const auto &d : directed) {
        const auto rev = directed.find({d.first.second, d.first.first});
        const int reverse = rev == directed.end() ? 0 : rev->second;
        if (d.second + reverse != 2)
            m.open_or_nonmanifold++;
        if (d.second != 1 || reverse != 1)
            m.misoriented++;
    }
    return m;
}

// The field over an n^3 grid of cells spanning [-lim, lim]^3.
template <typename Field>
std::vector<GridCell> Cells(int n, double lim, Field f)
{
    std::vector<GridCell> cells;
    const double h = 2 * lim / n;
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++)
            for (int k = 0; k < n; k++) {
                GridCell g;
                for (int c = 0; c < 8; c++) {
                    const int gi = i + kCorner[c][0], gj = j + kCorner[c][1], gk = k + kCorner[c][2];
                    g.p[c] = Pt(-lim + gi * h, -lim + gj * h, -lim + gk * h);
                    g.val[c] = f(gi, gj, gk, g.p[c]);
                }
                cells.push_back(g);
            }
    return cells;
}

// The six tetrahedra of the Kuhn (Freudenthal) subdivision around the
// diagonal 0-6: every path from corner 0 to corner 6 along the three axes in
// some order. Neighbouring cells split their shared faces alike.
const int kTetra[6][4] = {{0, 1, 2, 6}, {0, 1, 5, 6}, {0, 3, 2, 6},
                          {0, 3, 7, 6}, {0, 4, 5, 6}, {0, 4, 7, 6}};

std::vector<Facet> Polygonise(const std::vector<GridCell> &cells, double iso, bool tetrahedra)
{
    std::vector<Facet> out;
    Facet tri[5];
    for (const GridCell &g : cells) {
        if (!tetrahedra) {
            const int n = PolygoniseCube(g, iso, tri);
            EXPECT_LE(n, 5);
            out.insert(out.end(), tri, tri + n);
            continue;
        }
        for (const auto &t : kTetra) {
            const int n = PolygoniseTri(g, iso, tri, t[0], t[1], t[2], t[3]);
            EXPECT_LE(n, 2);
            out.insert(out.end(), tri, tri + n);
        }
    }
    return out;
}

// Distance from a centre off the grid's symmetry. (With |p|^2 instead, the
// cube's and the tetrahedra's surfaces in a cell would lie in one plane: the
// linear interpolant of |p|^2 over any simplex inscribed in the cube's
// circumsphere is |p|^2 - |p - centre|^2 + R^2, linear in p.)
const XYZ kSphereCentre = {0.05, -0.03, 0.02};

double SphereField(int, int, int, const XYZ &p)
{
    return VectorLength(p, kSphereCentre);
}

TEST(MarchingCubes, SphereIsClosedOrientedAndHasTheRightArea)
{
    for (bool tetrahedra : {false, true}) {
        SCOPED_TRACE(tetrahedra ? "tetrahedra" : "cubes");
        // Radius 1 in a 25^3 grid over [-1.3, 1.3]^3: no sample falls within
        // 1e-5 of the level (the nearest is 4.4e-5 away), so no crossing
        // snaps to a corner.
        const std::vector<Facet> mesh = Polygonise(Cells(25, 1.3, SphereField), 1.0, tetrahedra);
        const MeshCheck m = CheckMesh(mesh);
        EXPECT_GT(m.triangles, 1000);
        EXPECT_EQ(m.degenerate, 0);
        EXPECT_EQ(m.open_or_nonmanifold, 0);
        EXPECT_EQ(m.misoriented, 0);
        EXPECT_NEAR(m.area / (4 * kPi), 1.0, 0.03);

        // The inside (values below the level) is the ball, and the normals
        // face it: no triangle's normal points away from the centre.
        int outward = 0;
        for (const Facet &f : mesh) {
            const XYZ n = CrossProduct(VectorSub(f.p[0], f.p[1]), VectorSub(f.p[0], f.p[2]));
            if (DotProduct(n, VectorSub(kSphereCentre, f.p[0])) >= 0)
                outward++;
        }
        EXPECT_EQ(outward, 0);
    }
}

TEST(MarchingCubes, RandomFieldsGiveClosedSurfaces)
{
    // Noise values inside a box whose outer samples are all above the level:
    // every surface is closed however the ambiguous faces fall. Checks that
    // neighbouring cells, and the table's cases, agree on every shared face.
    for (std::uint64_t seed : {3u, 4u, 5u}) {
        Uniform u(seed);
        const int n = 10;
        std::vector<double> values((n + 1) * (n + 1) * (n + 1));
        for (double &v : values)
            v = u(0.0, 1.0);
        auto field = [&](int i, int j, int k, const XYZ &) {
            if (i == 0 || j == 0 || k == 0 || i == n || j == n || k == n)
                return 1.0;
            return values[(i * (n + 1) + j) * (n + 1) + k];
        };
        for (bool tetrahedra : {false, true}) {
            SCOPED_TRACE(tetrahedra ? "tetrahedra" : "cubes");
            const MeshCheck m = CheckMesh(Polygonise(Cells(n, 1.0, field), 0.5, tetrahedra));
            EXPECT_GT(m.triangles, 500);
            EXPECT_EQ(m.open_or_nonmanifold, 0);
            EXPECT_EQ(m.misoriented, 0);
        }
    }
}

TEST(MarchingTetrahedra, SingleTetrahedra)
{
    const double val[8] = {0, 2, 2, 0, 2, 2, 2, 2};
    const GridCell g = UnitCell(val);
    Facet tri[2];
    // Tetrahedron 0, 1, 2, 6 with only corner 0 below: one triangle.
    ASSERT_EQ(PolygoniseTri(g, 1, tri, 0, 1, 2, 6), 1);
    // Tetrahedron 0, 3, 2, 6 with corners 0 and 3 below: a quadrilateral.
    EXPECT_EQ(PolygoniseTri(g, 1, tri, 0, 3, 2, 6), 2);
    // Corner order does not change the orientation: normals face corner 0.
    for (const auto &order : {std::array<int, 4>{0, 1, 2, 6}, std::array<int, 4>{6, 2, 1, 0},
                              std::array<int, 4>{1, 0, 6, 2}}) {
        ASSERT_EQ(PolygoniseTri(g, 1, tri, order[0], order[1], order[2], order[3]), 1);
        const XYZ n = CrossProduct(VectorSub(tri[0].p[0], tri[0].p[1]), VectorSub(tri[0].p[0], tri[0].p[2]));
        EXPECT_GT(DotProduct(n, VectorSub(tri[0].p[0], g.p[0])), 0);
    }
    EXPECT_EQ(PolygoniseTri(g, 5, tri, 0, 1, 2, 6), 0);  // all below
    EXPECT_EQ(PolygoniseTri(g, -1, tri, 0, 1, 2, 6), 0); // all above
    EXPECT_EQ(PolygoniseTri(g, 1, tri, 0, 1, 2, 8), 0);  // no corner 8
    EXPECT_EQ(PolygoniseTri(g, 1, tri, -1, 1, 2, 6), 0);
}

// ---------------------------------------------------------------------------
// Contours

struct Segment {
    double x1, y1, x2, y2, level;
};
std::vector<Segment> g_segments;

void Record(double x1, double y1, double x2, double y2, double level)
{
    g_segments.push_back({x1, y1, x2, y2, level});
}

TEST(Contour, CircularFieldGivesClosedCircles)
{
    const int n = 40; // 41 x 41 samples over [-2, 2]^2
    std::vector<double> x(n + 1), y(n + 1);
    std::vector<std::vector<double>> rows(n + 1, std::vector<double>(n + 1));
    std::vector<double *> d(n + 1);
    for (int i = 0; i <= n; i++) {
        x[i] = y[i] = -2 + 4.0 * i / n;
        d[i] = rows[i].data();
    }
    for (int i = 0; i <= n; i++)
        for (int j = 0; j <= n; j++)
            rows[i][j] = x[i] * x[i] + y[j] * y[j];

    const double levels[2] = {1.0, 2.25}; // radii 1 and 1.5
    g_segments.clear();
    const int count = Contour(d.data(), 0, n, 0, n, x.data(), y.data(), 2, levels, Record);
    EXPECT_EQ(count, static_cast<int>(g_segments.size()));
    ASSERT_GT(count, 100);

    for (double level : levels) {
        const double r = std::sqrt(level);
        double length = 0;
        Welder weld(1e-9);
        std::map<int, int> ends;
        for (const Segment &s : g_segments) {
            if (s.level != level)
                continue;
            // Linear interpolation of r^2 over cells of side 0.1 stays
            // within a few thousandths of the circle.
            EXPECT_NEAR(std::hypot(s.x1, s.y1), r, 0.005);
            EXPECT_NEAR(std::hypot(s.x2, s.y2), r, 0.005);
            length += std::hypot(s.x2 - s.x1, s.y2 - s.y1);
            ends[weld.Id(Pt(s.x1, s.y1))]++;
            ends[weld.Id(Pt(s.x2, s.y2))]++;
        }
        EXPECT_NEAR(length / (2 * kPi * r), 1.0, 0.01) << "level " << level;
        // A closed curve: every end point is shared by exactly two segments.
        for (const auto &e : ends)
            EXPECT_EQ(e.second, 2);
    }

    // Sub-range: columns and rows 10 to 30 ([-1, 1]^2) hold the unit circle
    // only where it touches the edge, and none of the larger one.
    g_segments.clear();
    Contour(d.data(), 10, 30, 10, 30, x.data(), y.data(), 2, levels, Record);
    for (const Segment &s : g_segments)
        EXPECT_EQ(s.level, 1.0);
}

TEST(Contour, BadRangesReportNothing)
{
    double row0[2] = {0, 1}, row1[2] = {1, 2};
    double *d[2] = {row0, row1};
    const double x[2] = {0, 1}, y[2] = {0, 1}, z[1] = {0.5};
    g_segments.clear();
    EXPECT_EQ(Contour(d, 0, 0, 0, 1, x, y, 1, z, Record), 0);
    EXPECT_EQ(Contour(d, 0, 1, 1, 1, x, y, 1, z, Record), 0);
    EXPECT_EQ(Contour(d, -1, 1, 0, 1, x, y, 1, z, Record), 0);
    EXPECT_EQ(Contour(d, 0, 1, 0, 1, x, y, 0, z, Record), 0);
    EXPECT_TRUE(g_segments.empty());
    // One cell whose corner 0 is below 0.5: the level cuts two triangles.
    EXPECT_EQ(Contour(d, 0, 1, 0, 1, x, y, 1, z, Record), 2);
    EXPECT_EQ(Contour(d, 0, 1, 0, 1, x, y, 1, z, nullptr), 2);
}

} // namespace
