/* Vector and geometry primitives: small vector algebra on XYZ values and the
 * 2-D and 3-D tests built on it (angles, rotations, distances to lines,
 * intersections, polygon orientation, planes, polar coordinates). Vectors go
 * in and out by value unless an output pointer is named; "2-D" routines use
 * only x and y of their XYZ arguments. Angles are radians unless stated. */
#ifndef UTIL_VECTORS_H
#define UTIL_VECTORS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A triangle: three corner points, in order. */
typedef struct {
    XYZ p[3];
} Facet;

/* Vector algebra. */

/* The point (x, y, z). */
XYZ MakeVector(double x, double y, double z);
/* p1 + p2. */
XYZ VectorAdd(XYZ p1, XYZ p2);
/* p2 - p1: the vector from p1 to p2 (note the order). */
XYZ VectorSub(XYZ p1, XYZ p2);
/* p times s. */
XYZ VectorMul(XYZ p, double s);
/* -p. */
XYZ VectorInvert(XYZ p);
/* (p1 + p2) / 2. */
XYZ MidPoint(XYZ p1, XYZ p2);
/* p1 . p2. */
double DotProduct(XYZ p1, XYZ p2);
/* p1 x p2. */
XYZ CrossProduct(XYZ p1, XYZ p2);
/* The length of p. */
double Modulus(XYZ p);
/* The distance between p1 and p2. */
double VectorLength(XYZ p1, XYZ p2);
/* TRUE when every component of p1 and p2 differs by at most 1e-6. */
int VectorEqual(XYZ p1, XYZ p2);
/* Scales *p to unit length; a vector whose squared length is not positive
 * becomes (0, 0, 0). */
void Normalise(XYZ *p);
/* Normalises *p as Normalise does, then scales it to length len. */
void SetVectorLength(XYZ *p, double len);
/* Unit normal of (p2 - p1) x (p3 - p1); (0, 0, 0) for a degenerate triangle. */
XYZ CalcNormal(XYZ p1, XYZ p2, XYZ p3);
/* Mean of the n points of p; for n below 1 every component is 0 / n (NaN for
 * 0, -0 for negative n) and p is not read. */
XYZ Centroid(const XYZ *p, int n);
/* Exchanges *p1 and *p2. */
void SwapXYZ(XYZ *p1, XYZ *p2);
/* A unit vector perpendicular to v: v crossed with the coordinate axis of v's
 * smallest absolute component (x before y before z on ties), normalised;
 * (0, 0, 0) when v has no positive squared length. */
XYZ VectorPerp(XYZ v);

/* Angles. */

/* Angle between p1 and p2 in 0 to pi: 0 when |p1| |p2| <= 1e-5, pi when the
 * cosine is at or below -1, 0 when it is at or above 1, else acos. */
double VectorAngle(XYZ p1, XYZ p2);
/* Signed angle from (x1, y1) to (x2, y2): the difference of the atan2 values
 * brought into -pi to pi. */
double Angle2D(double x1, double y1, double x2, double y2);
/* Pseudo-angle of the direction (dx, dy), monotone from 0 to 8 counter-
 * clockwise from the +x axis (2 on +y, 4 on -x, 6 on -y), for sorting. */
double FowlerAngle(double dy, double dx);

/* Rotations by theta about the axes, in this library's sense (x' = c x + s y
 * for RotateZ): a positive angle turns clockwise seen from the positive axis
 * looking towards the origin. The untouched coordinate is copied. */
XYZ RotateX(XYZ p, double theta);
XYZ RotateY(XYZ p, double theta);
XYZ RotateZ(XYZ p, double theta);
/* The 2-D point (v.x, v.y) rotated as RotateZ does; z is copied. */
XYZ Vector2DRotate(XYZ v, double theta);
/* Rotation of p by theta about the axis through the origin along r, in the
 * same sense as RotateX/Y/Z (r = (0, 0, 1) gives RotateZ); p is returned
 * unchanged when r has no positive squared length. */
XYZ ArbitraryRotate(XYZ p, double theta, XYZ r);
/* Rotation of p by theta about the line through p1 and p2 (direction p2 - p1),
 * as ArbitraryRotate; p unchanged when p1 equals p2. */
XYZ ArbitraryRotate2(XYZ p, double theta, XYZ p1, XYZ p2);

/* Polar coordinates, angles in degrees (factors 57.2957795 and 0.0174532925).
 * theta is the elevation above the xy plane; phi is 90 plus asin(y / t) with
 * t the distance from the z axis, so the sign of x is lost. */

/* r = |p|; below 1e-6 theta = 0 and phi = 90; phi's asin part is 0 when
 * t < 1e-6 (and NaN when rounding lifts |y / t| above 1). */
void XYZ2Polar(XYZ p, double *r, double *theta, double *phi);
/* x = r cos(theta) cos(phi - 90), y = r cos(theta) sin(phi - 90),
 * z = r sin(theta). */
void polar2xyz(double r, double theta, double phi, double *x, double *y, double *z);

/* Lines, planes and spheres. */

/* Intersection (x, y) of the 2-D segments 1-2 and 3-4: TRUE with the point
 * when they meet (ends included), TRUE with the first segment's midpoint when
 * the lines coincide (all of |na|, |nb|, |denom| below 1e-5), otherwise FALSE
 * with (0, 0). */
int LineIntersect(double x1, double y1, double x2, double y2,
                  double x3, double y3, double x4, double y4,
                  double *x, double *y);
/* Shortest segment pa-pb between the 3-D lines p1-p2 and p3-p4, with
 * pa = p1 + mua (p2 - p1) and pb = p3 + mub (p4 - p3). FALSE, outputs
 * untouched, when either direction is below 1e-5 in every component or when
 * the lines are parallel (|d2121 d4343 - d4321^2| below 1e-5). */
int LineLineIntersect(XYZ p1, XYZ p2, XYZ p3, XYZ p4, XYZ *pa, XYZ *pb,
                      double *mua, double *mub);
/* Distance in the xy plane from p to the line through p1 and p2; *closest is
 * the foot p1 + u (p2 - p1) (not limited to the segment, z carried along by
 * the same u) and *u the parameter; u = 0 and closest = p1 when |p2 - p1|^2
 * is below 1e-5. */
double PointLine2D(XYZ p, XYZ p1, XYZ p2, XYZ *closest, double *u);
/* PointLine2D in three dimensions. */
double PointLine3D(XYZ p, XYZ p1, XYZ p2, XYZ *closest, double *u);
/* Side of the 2-D line p1-p2 that p lies on: with d = (py - p1y)(p2x - p1x) -
 * (p2y - p1y)(px - p1x), -1 if d > 0, 1 if d < 0, 0 otherwise. */
int WhichSide(XYZ p, XYZ p1, XYZ p2);
/* Orientation of the 2-D polygon p[0..n-1]: 1 clockwise (negative signed
 * area), -1 counter-clockwise, 0 for zero area or n below 3. */
int ClockWise(const XYZ *p, int n);
/* Convexity of the 2-D polygon p[0..n-1] from the turn at every vertex: 1
 * convex, -1 concave (turns of both signs), 0 degenerate or n below 3. */
int ConvexPolygon(const XYZ *p, int n);
/* TRUE when the 2-D point p lies inside the polygon p[0..n-1] by the crossing-
 * number rule with half-open edges: for an axis-aligned rectangle the left and
 * bottom sides are inside, the right and top sides outside. FALSE for n < 3. */
int PointInPolygon(const XYZ *polygon, int n, XYZ p);
/* TRUE only when min < p < max strictly on all three axes. */
int PointInBox(XYZ p, XYZ min, XYZ max);
/* Intersection of the line p1-p2 with the plane n . x + d = 0: *p = p1 +
 * *mu (p2 - p1); FALSE, outputs untouched, when |(p1 - p2) . n| < 1e-5. */
int LinePlane(XYZ p1, XYZ p2, XYZ n, double d, double *mu, XYZ *p);
/* LinePlane limited to the segment: FALSE unless 0 <= mu <= 1 (*p is set as
 * soon as the line is not parallel). */
int LineSegmentPlane(XYZ p1, XYZ p2, XYZ n, double d, XYZ *p);
/* Parameters mu1 <= mu2 where the line p1 + mu (p2 - p1) meets the sphere:
 * FALSE with both 0 when |p2 - p1|^2 < 1e-5, FALSE (outputs untouched) when
 * the line misses, TRUE otherwise (a tangent gives equal roots). */
int RaySphere(XYZ p1, XYZ p2, XYZ centre, double r, double *mu1, double *mu2);
/* Coefficients of the plane a x + b y + c z + d = 0 through the facet's three
 * points (not normalised; (a, b, c) follows the right-hand rule p0, p1, p2). */
void PlaneParam(Facet facet, double *a, double *b, double *c, double *d);
/* z of the plane through p1, p2, p3 above (x, y); 0 when |c| <= 1e-6. */
double PlanePoint(double x, double y, XYZ p1, XYZ p2, XYZ p3);
/* Clips the triangle p[0..2] by the plane n . x + d = 0, keeping the part
 * where n . x + d >= 0, in place; p must have room for 4 points. Returns the
 * number of vertices left, in the triangle's order: 3 (untouched or one
 * corner kept), 4 (one corner cut off) or 0 (all cut). */
int ClipFacet(XYZ *p, XYZ n, double d);
/* The segment p1-p2 where the plane n . x + d = 0 cuts the facet: a corner
 * is above when n . x + d > 0, and TRUE is returned when the corners are not
 * all on one side, with the crossings on the two straddling edges, in the
 * facet's edge order (0-1, 1-2, 2-0). FALSE, outputs untouched, otherwise. */
int ContourFacet(Facet facet, XYZ n, double d, XYZ *p1, XYZ *p2);

#ifdef __cplusplus
}
#endif

#endif
