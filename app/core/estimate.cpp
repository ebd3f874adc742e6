#include "estimate.h"

#include <cmath>

#include "linefit.h"
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
    // The utility library's fit in single precision: products formed in
    // float, the slope rounded to float before the intercept.
    return FitLine(x, y, n, a, b, r);
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
