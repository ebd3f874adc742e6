// Helpers for the geometry tests: a seeded generator that gives the same
// doubles under every standard library, and a reference convex hull.
#ifndef TESTS_GEOMETRY_UTIL_H
#define TESTS_GEOMETRY_UTIL_H

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "types.h"

namespace geomtest {

// Uniform doubles from mt19937_64, whose output sequence the C++ standard
// fixes (unlike the distributions, which differ between libraries).
class Uniform {
public:
    explicit Uniform(std::uint64_t seed) : gen_(seed) {}
    // In [lo, hi).
    double operator()(double lo = 0.0, double hi = 1.0)
    {
        const double u = static_cast<double>(gen_() >> 11) * (1.0 / 9007199254740992.0);
        return lo + (hi - lo) * u;
    }

private:
    std::mt19937_64 gen_;
};

inline XYZ Pt(double x, double y, double z = 0.0)
{
    XYZ p;
    p.x = x;
    p.y = y;
    p.z = z;
    return p;
}

// Twice the signed area of the triangle a, b, c in the xy plane (positive
// when counter-clockwise).
inline double Cross2(const XYZ &a, const XYZ &b, const XYZ &c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Convex hull by Andrew's monotone chain (Andrew 1979), counter-clockwise,
// without collinear points.
inline std::vector<XYZ> ConvexHull(std::vector<XYZ> pts)
{
    std::sort(pts.begin(), pts.end(), [](const XYZ &a, const XYZ &b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
    if (pts.size() < 3)
        return pts;
    std::vector<XYZ> hull(2 * pts.size());
    std::size_t k = 0;
    for (std::size_t i = 0; i < pts.size(); i++) {
        while (k >= 2 && Cross2(hull[k - 2], hull[k - 1], pts[i]) <= 0)
            k--;
        hull[k++] = pts[i];
    }
    for (std::size_t i = pts.size() - 1, t = k + 1; i-- > 0;) {
        while (k >= t && Cross2(hull[k - 2], hull[k - 1], pts[i]) <= 0)
            k--;
        hull[k++] = pts[i];
    }
    hull.resize(k - 1);
    return hull;
}

} // namespace geomtest

#endif
