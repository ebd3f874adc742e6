/* Geometry builders: Delaunay triangulation of planar points (Bowyer-Watson),
 * iso-surfaces of a sampled field by marching cubes or marching tetrahedra,
 * and contour lines over a rectangular grid. Points are XYZ (triangulation
 * uses x and y only); a corner counts as inside the surface when its value is
 * below the iso-level. Callers supply every output array with the room stated;
 * nothing is kept after a call returns. */
#ifndef UTIL_SURFACES_H
#define UTIL_SURFACES_H

#include "types.h"
#include "vectors.h" /* Facet: the triangle record written by the polygonisers */

#ifdef __cplusplus
extern "C" {
#endif

/* One triangle of a triangulation: indices into the caller's point array. */
typedef struct {
    int p1, p2, p3;
} TriIndex;

/* One cell of a sampled field: its eight corner points and values, corners
 * 0-3 round the bottom face and 4-7 round the top, k + 4 above k, in the order
 * of the published marching-cubes tables. */
typedef struct {
    XYZ p[8];
    double val[8];
} GridCell;

/* TRUE when (xp, yp) lies inside or on the circle through (x1, y1), (x2, y2),
 * (x3, y3), whose centre and squared radius go to *xc, *yc, *rsqr; FALSE with
 * the outputs untouched when |y1 - y2| and |y2 - y3| are both below 1e-6. */
int CircumCircle(double xp, double yp, double x1, double y1, double x2, double y2,
                 double x3, double y3, double *xc, double *yc, double *rsqr);
/* Delaunay triangulation of the nv points pxyz[0..nv-1], which must be sorted
 * by increasing x. pxyz needs room for nv + 3 points (the last three are
 * overwritten with a super-triangle) and v room for 4 nv triangles; the
 * triangles go to v[0..*ntri-1]. Returns 0, or 1 / 2 when the flag / edge
 * storage cannot be allocated (nv above INT_MAX - 3 also gives 1), 3 when the
 * edge list cannot grow, 4 when more than 4 nv triangles would be needed.
 * nv below 1 gives no triangles. Triangles along the hull that are thin
 * compared with the super-triangle (20 times the extent) can be missing. */
int Triangulate(int nv, XYZ *pxyz, TriIndex *v, int *ntri);
/* The point where the field crosses isolevel on the edge p1-p2 by linear
 * interpolation of valp1, valp2; p1 when isolevel or valp2 is within 1e-5
 * of valp1, p2 when isolevel is within 1e-5 of valp2. */
XYZ VertexInterp(double isolevel, XYZ p1, XYZ p2, double valp1, double valp2);
/* Marching cubes on one cell: writes the iso-surface triangles of g at
 * isolevel to triangles (room for 5) and returns their number, 0 to 5. */
int PolygoniseCube(GridCell g, double isolevel, Facet *triangles);
/* Marching tetrahedra: the iso-surface of the tetrahedron with corners
 * v0..v3 (indices 0 to 7 into g) written to triangles (room for 2); returns
 * 0, 1 or 2, and 0 when an index is out of range. Each triangle's normal
 * (right-hand rule) faces the corners below the level. Splitting every cell
 * into the same six tetrahedra around one diagonal gives a watertight mesh. */
int PolygoniseTri(GridCell g, double isolevel, Facet *triangles,
                  int v0, int v1, int v2, int v3);
/* Contour lines of the grid d[i][j] (i from ilb to iub at x[i], j from jlb to
 * jub at y[j]; the bounds index the arrays directly) for the nc levels z[],
 * in increasing order. Each grid cell is split into four triangles around its
 * centre (value: the mean of its corners) and every level crossing a triangle
 * is reported as one segment drawline(x1, y1, x2, y2, level) found by linear
 * interpolation; zero-length pieces are not reported. Returns the number of
 * segments (capped at INT_MAX; drawline may be NULL to count only), 0 when a
 * lower bound is negative or there is no cell or level. */
int Contour(double **d, int ilb, int iub, int jlb, int jub, const double *x,
            const double *y, int nc, const double *z,
            void (*drawline)(double, double, double, double, double));

#ifdef __cplusplus
}
#endif

#endif
