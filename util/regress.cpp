#include "regress.h"

#include "linefit.h"

int LinRegress(const double *x, const double *y, int n, double *a, double *b, double *r)
{
    return FitLine(x, y, n, a, b, r);
}
