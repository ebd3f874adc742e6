#include "regress.h"

#include <cmath>

int LinRegress(const double *x, const double *y, int n, double *a, double *b, double *r)
{
    *a = 0;
    *b = 0;
    *r = 0;
    if (n < 2)
        return 0;
    double sumx = 0, sumy = 0, sumxx = 0, sumyy = 0, sumxy = 0;
    for (int i = 0; i < n; i++) {
        sumx += x[i];
        sumy += y[i];
        sumxx += x[i] * x[i];
        sumyy += y[i] * y[i];
        sumxy += x[i] * y[i];
    }
    const double sxx = sumxx - sumx * sumx / n;
    const double syy = sumyy - sumy * sumy / n;
    const double sxy = sumxy - sumy * sumx / n;
    if (sxx == 0)
        return 0;
    *b = sxy / sxx;
    *a = sumy / n - *b * sumx / n;
    if (syy == 0) {
        *r = 1;
        return 1;
    }
    *r = sxy / std::sqrt(sxx * syy);
    return 1;
}
