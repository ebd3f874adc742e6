/* The dimension estimate: the slope of the least-squares line through
 * (ln(1/s), ln N(s)), one point per distinct box size, where repeated sizes
 * keep their smallest count. The points and the fitted slope are floats, so
 * the estimate printed is a single-precision value; the sums are doubles. */
#ifndef TALVOR_ESTIMATE_H
#define TALVOR_ESTIMATE_H

#include <vector>

/* The log-log points of results: X = ln(1/size) as float, Y = the float log
 * of the smallest count of that size (0 for counts of 0). Sizes whose X lie
 * within 0.0001 of each other share a point; points come in the order their
 * sizes first occur. */
void BuildLogLogPoints(std::vector<float> *xs, std::vector<float> *ys);

/* The estimate from results: -1.0 with fewer than 4 records, 0.0 with fewer
 * than 3 points or when the fit fails, else the fitted slope (a float value). */
double CalcSlope(void);

/* Least-squares line y = a + b x through n float points, sums in double and
 * products in single precision; writes intercept a, slope b and correlation
 * r. Returns 1, or 0 (outputs 0) when n < 2 or all x are equal. */
int LinRegressf(const float *x, const float *y, int n, float *a, float *b, float *r);

#endif
