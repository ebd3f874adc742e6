// Helpers for the geometry tests: a seeded generator that gives the same
// doubles under every standard library, a point comparison, and a reference
// convex hull.
#ifndef TESTS_GEOMETRY_UTIL_H
#define TESTS_GEOMETRY_UTIL_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "types.h"

namespace geomtest {

// Uniform doubles in [lo, hi) from mt19937_64, whose output sequence the C++
// standard fixes (unlike the distributions, which differ between libraries).
struct Uniform : std::mt19937_64 {
    using std::mt19937_64::mt19937_64;
    double operator()(double lo = 0.0, double hi = 1.0) { return lo + (hi - lo) * static_cast<double>(std::mt19937_64::operator()() >> 11) * 0x1p-53; }
};

inline XYZ Pt(double x, double y, double z = 0.0) { return XYZ{x, y, z}; }

// Expects every component of got within tol of want's (tol 0: exactly).
inline void ExpectXYZ(const XYZ &got, const XYZ &want, double tol = 0.0) {
    EXPECT_TRUE(std::fabs(got.x - want.x) <= tol && std::fabs(got.y - want.y) <= tol && std::fabs(got.z - want.z) <= tol) << std::setprecision(17)
        << "got " << got.x << " " << got.y << " " << got.z << ", want " << want.x << " " << want.y << " " << want.z;
}

// Twice the signed area of the triangle a, b, c in the xy plane (positive
// when counter-clockwise).
inline double Cross2(const XYZ &a, const XYZ &b, const XYZ &c) { return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x); }

// Convex hull by Andrew's monotone chain (Andrew 1979), counter-clockwise and
// without collinear points: the lower chain over the points sorted by x, then
// the upper chain over them in reverse, each without its last point.
inline std::vector<XYZ> ConvexHull(std::vector<XYZ> pts) {
    std::sort(pts.begin(), pts.end(), [](const XYZ &a, const XYZ &b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    std::vector<XYZ> hull;
    for (std::size_t pass = 0, start = 0; pass < 2; pass++, start = hull.size(), std::reverse(pts.begin(), pts.end())) {
        for (const XYZ &p : pts) {
            while (hull.size() >= start + 2 && Cross2(hull[hull.size() - 2], hull.back(), p) <= 0) hull.pop_back();
            hull.push_back(p);
        }
        hull.pop_back();
    }
    return hull;
}

} // namespace geomtest

#endif
