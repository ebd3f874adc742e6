/* The least-squares line fit behind LinRegress, as a C++ template so that a
 * single-precision twin can share its steps (C++ callers only).
 *
 * Sums are accumulated in double; each product x*x, y*y and x*y is formed in
 * the input type T; the slope is rounded to T before the intercept is
 * computed from it, and the outputs are stored as T. For T = double nothing
 * is rounded. */
#ifndef UTIL_LINEFIT_H
#define UTIL_LINEFIT_H

#include <cmath>

/* y = a + b x through n points: b = Sxy / Sxx, a = mean(y) - b mean(x),
 * r = Sxy / sqrt(Sxx Syy), or 1 when Syy is 0. Returns 1, or 0 with a, b
 * and r set to 0 when n < 2 or Sxx is 0. */
template <typename T>
int FitLine(const T *x, const T *y, int n, T *a, T *b, T *r)
{
    *a = 0;
    *b = 0;
    *r = 0;
    if (n < 2)
        return 0;
    double sumx = 0, sumy = 0, sumxx = 0, sumyy = 0, sumxy = 0;
    for (int i = 0; i < n; i++) {
        const T xx = x[i] * x[i], yy = y[i] * y[i], xy = x[i] * y[i];
        sumx += x[i];
        sumy += y[i];
        sumxx += xx;
        sumyy += yy;
        sumxy += xy;
    }
    const double sxx = sumxx - sumx * sumx / n;
    const double syy = sumyy - sumy * sumy / n;
    const double sxy = sumxy - sumy * sumx / n;
    if (sxx == 0)
        return 0;
    *b = static_cast<T>(sxy / sxx);
    *a = static_cast<T>(sumy / n - static_cast<double>(*b) * sumx / n);
    if (syy == 0) {
        *r = 1;
        return 1;
    }
    *r = static_cast<T>(sxy / std::sqrt(sxx * syy));
    return 1;
}

#endif
