/* Least-squares straight-line fit. */
#ifndef UTIL_REGRESS_H
#define UTIL_REGRESS_H

#ifdef __cplusplus
extern "C" {
#endif

/* Fits y = a + b x through n points in double precision: sums Sxx, Syy and
 * Sxy about the means give slope b = Sxy / Sxx, intercept a = mean(y) -
 * b mean(x) and correlation r = Sxy / sqrt(Sxx Syy) (1 when Syy is 0).
 * Returns 1, or 0 with a, b and r set to 0 when n < 2 or Sxx is 0. */
int LinRegress(const double *x, const double *y, int n, double *a, double *b, double *r);

#ifdef __cplusplus
}
#endif

#endif
