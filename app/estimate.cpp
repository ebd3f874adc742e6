#include "estimate.h"

#include <cmath>

#include "settings.h"

void BuildLogLogPoints(std::vector<float> *xs, std::vector<float> *ys)
{
    std::vector<float> &X = *xs, &Y = *ys;
    X.clear();
    Y.clear();
    for (int i = 0; i < nresults; i++) {
        const int size = results[i].size;
        const int count = results[i].count;
        const float x = static_cast<float>(std::log(1.0 / size));
        float y = count <= 0 ? 0.0f : std::log(static_cast<float>(count));
        int last = -1;
        for (size_t j = 0; j < X.size(); j++) {
            const float d = x - X[j];
            if (std::fabs(static_cast<double>(d)) < 0.0001) {
                if (Y[j] < y)
                    y = Y[j];
                last = static_cast<int>(j);
            }
        }
        if (last >= 0) {
            Y[static_cast<size_t>(last)] = y;
        } else {
            X.push_back(x);
            // A new point for a zero count gets 0, as merging gives it.
            Y.push_back(count > 0 ? std::log(static_cast<float>(count)) : 0.0f);
        }
    }
}

int LinRegressf(const float *x, const float *y, int n, float *a, float *b, float *r)
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
        // Products in single precision, added in double.
        const float xx = x[i] * x[i], yy = y[i] * y[i], xy = x[i] * y[i];
        sumxx += xx;
        sumyy += yy;
        sumxy += xy;
    }
    const double sxx = sumxx - sumx * sumx / n;
    const double syy = sumyy - sumy * sumy / n;
    const double sxy = sumxy - sumy * sumx / n;
    if (sxx == 0)
        return 0;
    *b = static_cast<float>(sxy / sxx);
    // The intercept uses the slope already rounded to float.
    *a = static_cast<float>(sumy / n - static_cast<double>(*b) * sumx / n);
    if (syy == 0) {
        *r = 1;
        return 1;
    }
    *r = static_cast<float>(sxy / std::sqrt(sxx * syy));
    return 1;
}

double CalcSlope(void)
{
    if (nresults < 4)
        return -1.0;
    std::vector<float> X, Y;
    BuildLogLogPoints(&X, &Y);
    float slope = 0;
    if (X.size() >= 3) {
        float a, b, r;
        if (LinRegressf(X.data(), Y.data(), static_cast<int>(X.size()), &a, &b, &r))
            slope = b;
    }
    return slope;
}
