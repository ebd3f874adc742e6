/* Interpolation and curves: scalar interpolators between samples, Bezier
 * curves through control points and open uniform B-splines. Everywhere mu
 * runs from 0 (at y1 or the first point) to 1 (at y2 or the last point). A
 * curve of degree n has the n + 1 control points p[0..n]; curves return XYZ
 * by value or write into arrays the caller made. Nothing allocates. */
#ifndef UTIL_CURVES_H
#define UTIL_CURVES_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Scalar interpolation. */

/* y1 (1 - mu) + y2 mu. */
double LinearInterpolate(double y1, double y2, double mu);
/* y1 (1 - m) + y2 m with m = (1 - cos(mu pi)) / 2: slope 0 at both ends. */
double CosineInterpolate(double y1, double y2, double mu);
/* Cubic through y1 (mu 0) and y2 (mu 1) shaped by the neighbours y0 and y3:
 * a0 mu^3 + a1 mu^2 + a2 mu + a3 with a0 = y3 - y2 - y0 + y1,
 * a1 = y0 - y1 - a0, a2 = y2 - y0, a3 = y1. */
double CubicInterpolate(double y0, double y1, double y2, double y3, double mu);
/* Cubic Hermite from y1 to y2 with tangents m0 = ((y1 - y0)(1 + bias) +
 * (y2 - y1)(1 - bias)) s and m1 = ((y2 - y1)(1 + bias) + (y3 - y2)(1 - bias)) s,
 * s = (1 - tension) / 2: tension 1 gives zero tangents, 0 with bias 0 is
 * Catmull-Rom, -1 doubles the tangents; a positive bias leans them toward the
 * earlier segment, a negative one toward the later. */
double HermiteInterpolate(double y0, double y1, double y2, double y3, double mu, double tension, double bias);

/* Bezier curves. */

/* Quadratic Bezier: (1 - mu)^2 p1 + 2 mu (1 - mu) p2 + mu^2 p3. */
XYZ Bezier3(XYZ p1, XYZ p2, XYZ p3, double mu);
/* Cubic Bezier in Bernstein form: (1 - mu)^3 p1 + 3 mu (1 - mu)^2 p2 +
 * 3 mu^2 (1 - mu) p3 + mu^3 p4. */
XYZ Bezier4(XYZ p1, XYZ p2, XYZ p3, XYZ p4, double mu);
/* The same cubic in polynomial form: a mu^3 + b mu^2 + c mu + p0 with
 * c = 3 (p1 - p0), b = 3 (p2 - p1) - c, a = p3 - p0 - c - b. */
XYZ CubicBezier(XYZ p0, XYZ p1, XYZ p2, XYZ p3, double mu);
/* Bezier curve of degree n through the n + 1 points p[0..n]: the sum of
 * BezierBlend(k, mu, n) p[k], with (1 - mu)^(n - k) obtained by dividing
 * pow(1 - mu, n) by 1 - mu at each k. At mu exactly 1, where that division
 * would be 0 / 0, the result is p[n], the curve's end. n below 0 gives the
 * origin and p is not read. */
XYZ Bezier(const XYZ *p, int n, double mu);
/* Bernstein weight C(n, k) mu^k (1 - mu)^(n - k), the binomial coefficient
 * built in floating point with small intermediate values; a power whose
 * exponent is below 1 is left out (so mu = 0 or 1 gives no 0^0). */
double BezierBlend(int k, double mu, int n);

/* Open uniform B-splines of order t (degree t - 1) over the control points
 * control[0..n]. The knot vector u has n + t + 1 integer entries; the curve
 * is defined for u[t - 1] <= v < u[n + 1], which is 0 to n - t + 2 for the
 * vector SplineKnots makes. */

/* Fills u[0..n+t] with the open uniform knot vector: t zeros, then
 * 1, 2, ..., n - t + 1, then n - t + 2 repeated t times (0 0 0 1 2 3 3 3 for
 * n 4, t 3). Meaningful for 1 <= t <= n + 1. */
void SplineKnots(int *u, int n, int t);
/* B-spline basis function N(k, t) at v by the Cox-de Boor recursion:
 * for t 1, 1 when u[k] <= v < u[k + 1], else 0; above that
 * (v - u[k]) / (u[k+t-1] - u[k]) N(k, t-1) + (u[k+t] - v) / (u[k+t] - u[k+1])
 * N(k+1, t-1), a term with a zero denominator counting as 0. The intervals
 * are half-open, so every basis function is 0 at the last knot value. t below
 * 1 gives 0. */
double SplineBlend(int k, int t, const int *u, double v);
/* *output = the sum over k = 0 to n of SplineBlend(k, t, u, v) control[k].
 * At v equal to the last knot value this is the origin: evaluate up to just
 * below it, or use SplineCurve, which ends on control[n]. */
void SplinePoint(const int *u, int n, int t, double v, const XYZ *control, XYZ *output);
/* Samples the whole B-spline into output[0..res-1], u being the knot vector
 * SplineKnots(u, n, t) filled (any knot vector whose first t and last t
 * entries are equal will do). Sample i is SplinePoint at
 * v = u[t-1] + i (u[n+1] - u[t-1]) / (res - 1), evenly spaced in the
 * parameter, except the last, which is control[n]: the curve's end, where
 * SplinePoint itself would give the origin. The first is control[0]; res 1
 * gives control[0] alone. Returns FALSE, writing nothing, unless n >= 0,
 * 1 <= t <= n + 1 and res >= 1. */
int SplineCurve(const int *u, int n, int t, int res, const XYZ *control, XYZ *output);
/* Smooth curve through every vertex of the open polygon p[0..n]: a
 * Catmull-Rom spline, that is HermiteInterpolate with tension 0 and bias 0
 * on each coordinate, segment i running from p[i] to p[i+1] with p[i-1] and
 * p[i+2] as neighbours; beyond the ends the polygon is continued by the
 * reflected vertices 2 p[0] - p[1] and 2 p[n] - p[n-1], so evenly spaced
 * collinear vertices give an evenly spaced straight line. The res samples
 * output[0..res-1] are evenly spaced in the parameter s from 0 to n, sample
 * j at s = j n / (res - 1) (segment floor(s), mu = s - floor(s), the last
 * segment taking s = n with mu 1); a sample with integral s is exactly
 * p[s], so when n divides res - 1 every vertex appears in output. res 1
 * gives p[0]; n 0 gives p[0] res times. Returns FALSE, writing nothing,
 * unless n >= 0 and res >= 1. */
int PolygonCurve(const XYZ *p, int n, int res, XYZ *output);

#ifdef __cplusplus
}
#endif

#endif
