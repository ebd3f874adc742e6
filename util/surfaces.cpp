#include "surfaces.h"

#include <climits>
#include <cmath>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <vector>

#include "surfaces_tables.h"

namespace {

/* An edge of a triangle being removed by Triangulate; -1, -1 marks an edge
 * shared by two removed triangles (deleted). */
struct Edge {
    int p1, p2;
};

/* A corner of a triangle or tetrahedron for the contour and tetrahedron code. */
struct Sample {
    XYZ p;
    double v;
};

XYZ Interp(const Sample &a, const Sample &b, double level)
{
    return VertexInterp(level, a.p, b.p, a.v, b.v);
}

/* Reverses t's winding when its normal points away from towards; a
 * degenerate triangle (zero normal) is left as it is. */
void FaceTowards(Facet *t, XYZ towards)
{
    const XYZ n = CrossProduct(VectorSub(t->p[0], t->p[1]), VectorSub(t->p[0], t->p[2]));
    if (DotProduct(n, towards) < 0)
        SwapXYZ(&t->p[1], &t->p[2]);
}

} // namespace

/* Circumcircle from the intersection of two perpendicular bisectors (Bourke,
 * "Efficient Triangulation Algorithm Suitable for Terrain Modelling", 1989).
 * A bisector is vertical when its chord is horizontal; that case uses the
 * chord's mid x directly. */
int CircumCircle(double xp, double yp, double x1, double y1, double x2, double y2,
                 double x3, double y3, double *xc, double *yc, double *rsqr)
{
    const double eps = 1e-6;
    const double fabsy1y2 = std::fabs(y1 - y2);
    const double fabsy2y3 = std::fabs(y2 - y3);

    if (fabsy1y2 < eps && fabsy2y3 < eps)
        return FALSE;

    if (fabsy1y2 < eps) {
        const double m2 = -(x3 - x2) / (y3 - y2);
        const double mx2 = (x2 + x3) / 2;
        const double my2 = (y2 + y3) / 2;
        *xc = (x2 + x1) / 2;
        *yc = m2 * (*xc - mx2) + my2;
    } else if (fabsy2y3 < eps) {
        const double m1 = -(x2 - x1) / (y2 - y1);
        const double mx1 = (x1 + x2) / 2;
        const double my1 = (y1 + y2) / 2;
        *xc = (x3 + x2) / 2;
        *yc = m1 * (*xc - mx1) + my1;
    } else {
        const double m1 = -(x2 - x1) / (y2 - y1);
        const double m2 = -(x3 - x2) / (y3 - y2);
        const double mx1 = (x1 + x2) / 2;
        const double mx2 = (x2 + x3) / 2;
        const double my1 = (y1 + y2) / 2;
        const double my2 = (y2 + y3) / 2;
        *xc = (m1 * mx1 - m2 * mx2 + my2 - my1) / (m1 - m2);
        /* Use the bisector of the steeper chord: its slope is the smaller. */
        if (fabsy1y2 > fabsy2y3)
            *yc = m1 * (*xc - mx1) + my1;
        else
            *yc = m2 * (*xc - mx2) + my2;
    }

    const double dx2 = x2 - *xc, dy2 = y2 - *yc;
    *rsqr = dx2 * dx2 + dy2 * dy2;
    const double dxp = xp - *xc, dyp = yp - *yc;
    return dxp * dxp + dyp * dyp <= *rsqr ? TRUE : FALSE;
}

/* Bowyer-Watson insertion (Bowyer 1981, Watson 1981) as laid out by Bourke
 * (1989): each new point removes the triangles whose circumcircle holds it and
 * fans the hole's boundary to it. Because the points arrive sorted by x, a
 * triangle whose circle lies wholly left of the current point can never be
 * touched again and is marked complete. */
int Triangulate(int nv, XYZ *pxyz, TriIndex *v, int *ntri)
{
    if (nv < 1) {
        *ntri = 0;
        return 0;
    }
    /* The super-triangle's indices nv .. nv + 2 must be ints. */
    if (nv > INT_MAX - 3)
        return 1;

    const long long trimax = 4LL * nv;
    std::vector<unsigned char> complete;
    std::vector<Edge> edges;
    try {
        complete.resize(static_cast<std::size_t>(trimax));
    } catch (const std::exception &) {
        return 1;
    }
    std::size_t emax = 200;
    try {
        edges.resize(emax);
    } catch (const std::exception &) {
        return 2;
    }

    double xmin = pxyz[0].x, ymin = pxyz[0].y;
    double xmax = xmin, ymax = ymin;
    for (int i = 1; i < nv; i++) {
        if (pxyz[i].x < xmin) xmin = pxyz[i].x;
        if (pxyz[i].x > xmax) xmax = pxyz[i].x;
        if (pxyz[i].y < ymin) ymin = pxyz[i].y;
        if (pxyz[i].y > ymax) ymax = pxyz[i].y;
    }
    const double dx = xmax - xmin;
    const double dy = ymax - ymin;
    const double dmax = dx > dy ? dx : dy;
    const double xmid = (xmax + xmin) / 2;
    const double ymid = (ymax + ymin) / 2;

    const std::size_t snv = static_cast<std::size_t>(nv);
    pxyz[snv] = MakeVector(xmid - 20 * dmax, ymid - dmax, 0);
    pxyz[snv + 1] = MakeVector(xmid, ymid + 20 * dmax, 0);
    pxyz[snv + 2] = MakeVector(xmid + 20 * dmax, ymid - dmax, 0);
    v[0].p1 = nv;
    v[0].p2 = nv + 1;
    v[0].p3 = nv + 2;
    complete[0] = 0;
    long long n = 1;

    /* CircumCircle leaves its outputs alone for a horizontal triple; the
     * completion test then sees the previous triangle's circle, so these live
     * across the whole run. */
    double xc = 0, yc = 0, r = 0;

    for (int i = 0; i < nv; i++) {
        const double xp = pxyz[i].x;
        const double yp = pxyz[i].y;
        std::size_t nedge = 0;

        for (long long j = 0; j < n; j++) {
            if (complete[j])
                continue;
            const XYZ a = pxyz[v[j].p1], b = pxyz[v[j].p2], c = pxyz[v[j].p3];
            const int inside = CircumCircle(xp, yp, a.x, a.y, b.x, b.y, c.x, c.y, &xc, &yc, &r);
            if (xc < xp && (xp - xc) * (xp - xc) > r)
                complete[j] = 1;
            if (inside) {
                if (nedge + 3 >= emax) {
                    emax += 100;
                    try {
                        edges.resize(emax);
                    } catch (const std::exception &) {
                        *ntri = static_cast<int>(n);
                        return 3;
                    }
                }
                edges[nedge].p1 = v[j].p1;
                edges[nedge].p2 = v[j].p2;
                edges[nedge + 1].p1 = v[j].p2;
                edges[nedge + 1].p2 = v[j].p3;
                edges[nedge + 2].p1 = v[j].p3;
                edges[nedge + 2].p2 = v[j].p1;
                nedge += 3;
                v[j] = v[n - 1];
                complete[j] = complete[n - 1];
                n--;
                j--;
            }
        }

        /* An edge listed twice (in either direction) lies between two removed
         * triangles: it is inside the hole and goes. */
        for (std::size_t j = 0; j + 1 < nedge; j++) {
            for (std::size_t k = j + 1; k < nedge; k++) {
                if (edges[j].p1 == edges[k].p2 && edges[j].p2 == edges[k].p1) {
                    edges[j].p1 = edges[j].p2 = -1;
                    edges[k].p1 = edges[k].p2 = -1;
                }
                if (edges[j].p1 == edges[k].p1 && edges[j].p2 == edges[k].p2) {
                    edges[j].p1 = edges[j].p2 = -1;
                    edges[k].p1 = edges[k].p2 = -1;
                }
            }
        }

        for (std::size_t j = 0; j < nedge; j++) {
            if (edges[j].p1 < 0 || edges[j].p2 < 0)
                continue;
            if (n >= trimax) {
                *ntri = static_cast<int>(n);
                return 4;
            }
            v[n].p1 = edges[j].p1;
            v[n].p2 = edges[j].p2;
            v[n].p3 = i;
            complete[n] = 0;
            n++;
        }
    }

    for (long long j = 0; j < n; j++) {
        if (v[j].p1 >= nv || v[j].p2 >= nv || v[j].p3 >= nv) {
            v[j] = v[n - 1];
            n--;
            j--;
        }
    }
    *ntri = static_cast<int>(n);
    return 0;
}

XYZ VertexInterp(double isolevel, XYZ p1, XYZ p2, double valp1, double valp2)
{
    const double eps = 1e-5;
    if (std::fabs(isolevel - valp1) < eps)
        return p1;
    if (std::fabs(isolevel - valp2) < eps)
        return p2;
    if (std::fabs(valp1 - valp2) < eps)
        return p1;
    const double mu = (isolevel - valp1) / (valp2 - valp1);
    return MakeVector(p1.x + mu * (p2.x - p1.x), p1.y + mu * (p2.y - p1.y),
                      p1.z + mu * (p2.z - p1.z));
}

/* Marching cubes (Lorensen and Cline 1987) with the tables of
 * surfaces_tables.h. */
int PolygoniseCube(GridCell g, double isolevel, Facet *triangles)
{
    int cubeindex = 0;
    for (int k = 0; k < 8; k++)
        if (g.val[k] < isolevel)
            cubeindex |= 1 << k;

    const int mask = mctables::kEdgeTable[cubeindex];
    if (mask == 0)
        return 0;

    XYZ vertlist[12];
    for (int e = 0; e < 12; e++) {
        if (mask & (1 << e)) {
            const int a = mctables::kEdgeCorners[e][0];
            const int b = mctables::kEdgeCorners[e][1];
            vertlist[e] = VertexInterp(isolevel, g.p[a], g.p[b], g.val[a], g.val[b]);
        }
    }

    const int *row = mctables::kTriTable[cubeindex];
    int ntri = 0;
    for (int i = 0; i + 2 < 16 && row[i] != -1; i += 3) {
        triangles[ntri].p[0] = vertlist[row[i]];
        triangles[ntri].p[1] = vertlist[row[i + 1]];
        triangles[ntri].p[2] = vertlist[row[i + 2]];
        ntri++;
    }
    return ntri;
}

/* Marching tetrahedra: one corner on its own side cuts off a triangle, two
 * and two cut a quadrilateral, split into two triangles. The winding is set
 * from geometry (towards the mean of the inside corners), so any order of the
 * four corners gives the same orientation. */
int PolygoniseTri(GridCell g, double isolevel, Facet *triangles,
                  int v0, int v1, int v2, int v3)
{
    const int idx[4] = {v0, v1, v2, v3};
    Sample in[4], out[4];
    int nin = 0, nout = 0;
    for (int k = 0; k < 4; k++) {
        if (idx[k] < 0 || idx[k] > 7)
            return 0;
        const Sample s = {g.p[idx[k]], g.val[idx[k]]};
        if (s.v < isolevel)
            in[nin++] = s;
        else
            out[nout++] = s;
    }
    if (nin == 0 || nout == 0)
        return 0;

    XYZ meanin = MakeVector(0, 0, 0), meanout = MakeVector(0, 0, 0);
    for (int k = 0; k < nin; k++)
        meanin = VectorAdd(meanin, VectorMul(in[k].p, 1.0 / nin));
    for (int k = 0; k < nout; k++)
        meanout = VectorAdd(meanout, VectorMul(out[k].p, 1.0 / nout));
    const XYZ towards = VectorSub(meanout, meanin);

    if (nin == 1 || nout == 1) {
        const Sample *lone = nin == 1 ? in : out;
        const Sample *rest = nin == 1 ? out : in;
        for (int k = 0; k < 3; k++)
            triangles[0].p[k] = Interp(lone[0], rest[k], isolevel);
        FaceTowards(&triangles[0], towards);
        return 1;
    }

    /* Two and two: the crossings on in0-out0, in0-out1, in1-out1, in1-out0
     * go round the quadrilateral in order. */
    const XYZ q00 = Interp(in[0], out[0], isolevel);
    const XYZ q01 = Interp(in[0], out[1], isolevel);
    const XYZ q11 = Interp(in[1], out[1], isolevel);
    const XYZ q10 = Interp(in[1], out[0], isolevel);
    triangles[0].p[0] = q00;
    triangles[0].p[1] = q01;
    triangles[0].p[2] = q11;
    triangles[1].p[0] = q00;
    triangles[1].p[1] = q11;
    triangles[1].p[2] = q10;
    FaceTowards(&triangles[0], towards);
    FaceTowards(&triangles[1], towards);
    return 2;
}

/* Contouring by triangle subdivision (after Bourke's CONREC, 1987): inside a
 * triangle the field is taken as linear, so a level crosses it in at most one
 * straight segment and neighbouring triangles agree on shared edges. */
int Contour(double **d, int ilb, int iub, int jlb, int jub, const double *x,
            const double *y, int nc, const double *z,
            void (*drawline)(double, double, double, double, double))
{
    if (ilb < 0 || jlb < 0 || iub <= ilb || jub <= jlb || nc < 1)
        return 0;

    long long count = 0;
    for (int i = ilb; i < iub; i++) {
        for (int j = jlb; j < jub; j++) {
            /* Corners counter-clockwise from (x[i], y[j]), then the centre. */
            Sample s[5];
            s[0] = {MakeVector(x[i], y[j], 0), d[i][j]};
            s[1] = {MakeVector(x[i + 1], y[j], 0), d[i + 1][j]};
            s[2] = {MakeVector(x[i + 1], y[j + 1], 0), d[i + 1][j + 1]};
            s[3] = {MakeVector(x[i], y[j + 1], 0), d[i][j + 1]};
            s[4] = {MakeVector((x[i] + x[i + 1]) / 2, (y[j] + y[j + 1]) / 2, 0),
                    (s[0].v + s[1].v + s[2].v + s[3].v) / 4};

            double lo = s[0].v, hi = s[0].v;
            for (int k = 1; k < 4; k++) {
                if (s[k].v < lo) lo = s[k].v;
                if (s[k].v > hi) hi = s[k].v;
            }

            for (int m = 0; m < nc; m++) {
                const double level = z[m];
                if (level < lo || level > hi)
                    continue;
                for (int t = 0; t < 4; t++) {
                    const Sample tri[3] = {s[t], s[(t + 1) % 4], s[4]};
                    XYZ ends[3];
                    int nends = 0;
                    for (int e = 0; e < 3; e++) {
                        const Sample &a = tri[e], &b = tri[(e + 1) % 3];
                        if ((a.v > level) != (b.v > level))
                            ends[nends++] = Interp(a, b, level);
                    }
                    if (nends != 2)
                        continue;
                    if (ends[0].x == ends[1].x && ends[0].y == ends[1].y)
                        continue;
                    if (drawline != nullptr)
                        drawline(ends[0].x, ends[0].y, ends[1].x, ends[1].y, level);
                    count++;
                }
            }
        }
    }
    return count > INT_MAX ? INT_MAX : static_cast<int>(count);
}
