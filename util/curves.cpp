#include "curves.h"

#include "vectors.h"

#include <cmath>

namespace
{

const double kPi = 3.14159265358979323846;

/* blend times the binomial coefficient C(n, k), built by multiplying in
 * n, n - 1, ..., 1 and dividing out k, k - 1, ..., 2 and n - k, ..., 2 one
 * factor of each per step, so the intermediate values stay near the result
 * instead of growing like n!. The counters are wide so that no int argument
 * can overflow them. */
double ScaleByBinomial(double blend, int n, int k)
{
    long long nn = n;
    long long kn = k;
    long long nkn = static_cast<long long>(n) - k;
    while (nn >= 1) {
        blend *= static_cast<double>(nn);
        nn--;
        if (kn > 1) {
            blend /= static_cast<double>(kn);
            kn--;
        }
        if (nkn > 1) {
            blend /= static_cast<double>(nkn);
            nkn--;
        }
    }
    return blend;
}

} // namespace

double LinearInterpolate(double y1, double y2, double mu)
{
    return y1 * (1 - mu) + y2 * mu;
}

double CosineInterpolate(double y1, double y2, double mu)
{
    const double m = (1 - std::cos(mu * kPi)) / 2;
    return y1 * (1 - m) + y2 * m;
}

double CubicInterpolate(double y0, double y1, double y2, double y3, double mu)
{
    const double a0 = y3 - y2 - y0 + y1;
    const double a1 = y0 - y1 - a0;
    const double a2 = y2 - y0;
    const double a3 = y1;
    const double mu2 = mu * mu;
    return a0 * mu * mu2 + a1 * mu2 + a2 * mu + a3;
}

double HermiteInterpolate(double y0, double y1, double y2, double y3, double mu, double tension, double bias)
{
    const double s = (1 - tension) / 2;
    const double m0 = (y1 - y0) * (1 + bias) * s + (y2 - y1) * (1 - bias) * s;
    const double m1 = (y2 - y1) * (1 + bias) * s + (y3 - y2) * (1 - bias) * s;
    const double mu2 = mu * mu;
    const double mu3 = mu2 * mu;
    const double a0 = 2 * mu3 - 3 * mu2 + 1;
    const double a1 = mu3 - 2 * mu2 + mu;
    const double a2 = mu3 - mu2;
    const double a3 = -2 * mu3 + 3 * mu2;
    return a0 * y1 + a1 * m0 + a2 * m1 + a3 * y2;
}

XYZ Bezier3(XYZ p1, XYZ p2, XYZ p3, double mu)
{
    const double mum1 = 1 - mu;
    const double a = mum1 * mum1;
    const double b = 2 * mu * mum1;
    const double c = mu * mu;
    return MakeVector(a * p1.x + b * p2.x + c * p3.x, a * p1.y + b * p2.y + c * p3.y,
                 a * p1.z + b * p2.z + c * p3.z);
}

XYZ Bezier4(XYZ p1, XYZ p2, XYZ p3, XYZ p4, double mu)
{
    const double mum1 = 1 - mu;
    const double a = mum1 * mum1 * mum1;
    const double b = 3 * mu * mum1 * mum1;
    const double c = 3 * mu * mu * mum1;
    const double d = mu * mu * mu;
    return MakeVector(a * p1.x + b * p2.x + c * p3.x + d * p4.x, a * p1.y + b * p2.y + c * p3.y + d * p4.y,
                 a * p1.z + b * p2.z + c * p3.z + d * p4.z);
}

XYZ CubicBezier(XYZ p0, XYZ p1, XYZ p2, XYZ p3, double mu)
{
    const XYZ c = MakeVector(3 * (p1.x - p0.x), 3 * (p1.y - p0.y), 3 * (p1.z - p0.z));
    const XYZ b = MakeVector(3 * (p2.x - p1.x) - c.x, 3 * (p2.y - p1.y) - c.y, 3 * (p2.z - p1.z) - c.z);
    const XYZ a = MakeVector(p3.x - p0.x - c.x - b.x, p3.y - p0.y - c.y - b.y, p3.z - p0.z - c.z - b.z);
    const double mu2 = mu * mu;
    const double mu3 = mu2 * mu;
    return MakeVector(a.x * mu3 + b.x * mu2 + c.x * mu + p0.x, a.y * mu3 + b.y * mu2 + c.y * mu + p0.y,
                 a.z * mu3 + b.z * mu2 + c.z * mu + p0.z);
}

XYZ Bezier(const XYZ *p, int n, double mu)
{
    XYZ b = MakeVector(0, 0, 0);
    if (n < 0)
        return b;
    const double mum1 = 1 - mu;
    // The incremental power below would divide 0 by 0 here; the Bernstein
    // weights are then all 0 except the last, which is 1.
    if (mum1 == 0)
        return p[n];
    double muk = 1;
    double munk = std::pow(mum1, n);
    for (int k = 0; k <= n; k++) {
        const double blend = ScaleByBinomial(muk * munk, n, k);
        muk *= mu;
        munk /= mum1;
        b.x += p[k].x * blend;
        b.y += p[k].y * blend;
        b.z += p[k].z * blend;
    }
    return b;
}

double BezierBlend(int k, double mu, int n)
{
    double blend = ScaleByBinomial(1, n, k);
    if (k >= 1)
        blend *= std::pow(mu, k);
    if (static_cast<long long>(n) - k >= 1)
        blend *= std::pow(1 - mu, static_cast<double>(static_cast<long long>(n) - k));
    return blend;
}

void SplineKnots(int *u, int n, int t)
{
    for (int j = 0; j <= n + t; j++) {
        if (j < t)
            u[j] = 0;
        else if (j <= n)
            u[j] = j - t + 1;
        else
            u[j] = n - t + 2;
    }
}

double SplineBlend(int k, int t, const int *u, double v)
{
    if (t < 1)
        return 0;
    if (t == 1)
        return (u[k] <= v && v < u[k + 1]) ? 1 : 0;
    // Repeated knots make a denominator 0; that term's basis function is then
    // 0 as well, and the term is dropped rather than evaluated as 0 / 0.
    double value = 0;
    const int d1 = u[k + t - 1] - u[k];
    if (d1 != 0)
        value = (v - u[k]) / d1 * SplineBlend(k, t - 1, u, v);
    const int d2 = u[k + t] - u[k + 1];
    if (d2 != 0)
        value += (u[k + t] - v) / d2 * SplineBlend(k + 1, t - 1, u, v);
    return value;
}

void SplinePoint(const int *u, int n, int t, double v, const XYZ *control, XYZ *output)
{
    XYZ sum = MakeVector(0, 0, 0);
    for (int k = 0; k <= n; k++) {
        const double b = SplineBlend(k, t, u, v);
        sum.x += control[k].x * b;
        sum.y += control[k].y * b;
        sum.z += control[k].z * b;
    }
    *output = sum;
}

int SplineCurve(const int *u, int n, int t, int res, const XYZ *control, XYZ *output)
{
    if (n < 0 || t < 1 || t > n + 1 || res < 1)
        return FALSE;
    const double start = u[t - 1];
    const double span = u[n + 1] - u[t - 1];
    // The last sample is set apart: the half-open basis intervals make every
    // basis function vanish at the final knot, while the clamped curve ends on
    // the last control point.
    for (int i = 0; i < res - 1; i++)
        SplinePoint(u, n, t, start + i * span / (res - 1), control, &output[i]);
    output[res - 1] = res == 1 ? control[0] : control[n];
    return TRUE;
}

int PolygonCurve(const XYZ *p, int n, int res, XYZ *output)
{
    if (n < 0 || res < 1)
        return FALSE;
    if (n == 0 || res == 1) {
        for (int j = 0; j < res; j++)
            output[j] = p[0];
        return TRUE;
    }
    // Vertex i of the polygon extended by one reflected vertex at each end.
    auto vertex = [p, n](int i) {
        if (i < 0)
            return MakeVector(2 * p[0].x - p[1].x, 2 * p[0].y - p[1].y, 2 * p[0].z - p[1].z);
        if (i > n)
            return MakeVector(2 * p[n].x - p[n - 1].x, 2 * p[n].y - p[n - 1].y, 2 * p[n].z - p[n - 1].z);
        return p[i];
    };
    for (int j = 0; j < res; j++) {
        // j n / (res - 1) is exact whenever it is a whole number, so those
        // samples land exactly on a vertex (mu 0, or mu 1 at the end).
        const double s = static_cast<double>(j) * n / (res - 1);
        int seg = static_cast<int>(std::floor(s));
        if (seg > n - 1)
            seg = n - 1;
        const double mu = s - seg;
        const XYZ y0 = vertex(seg - 1), y1 = p[seg], y2 = p[seg + 1], y3 = vertex(seg + 2);
        output[j] = MakeVector(HermiteInterpolate(y0.x, y1.x, y2.x, y3.x, mu, 0, 0),
                          HermiteInterpolate(y0.y, y1.y, y2.y, y3.y, mu, 0, 0),
                          HermiteInterpolate(y0.z, y1.z, y2.z, y3.z, mu, 0, 0));
    }
    return TRUE;
}
