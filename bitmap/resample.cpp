#include "resample.h"

#include <cmath>
#include <cstdint>

namespace {

double Positive(double t)
{
    return t > 0 ? t : 0;
}

double Cube(double t)
{
    return t * t * t;
}

int Clamp(int64_t v, int lo, int hi)
{
    return v < lo ? lo : (v > hi ? hi : static_cast<int>(v));
}

// Clamps before converting, so that any double (huge or negative) indexes
// a pixel inside the source.
int ClampIndex(double v, int n)
{
    const double t = std::trunc(v);
    if (!(t > 0))
        return 0;
    if (t >= n - 1)
        return n - 1;
    return static_cast<int>(t);
}

// Truncates a non-negative channel sum and keeps its low eight bits, for any
// magnitude (fmod is exact).
unsigned char Low8(double sum)
{
    const double t = std::trunc(sum);
    if (!(t >= 0))
        return 0;
    if (t < 2147483648.0)
        return static_cast<unsigned char>(static_cast<int64_t>(t) & 0xFF);
    return static_cast<unsigned char>(std::fmod(t, 256.0));
}

// Destination index i of nn maps to source position i n / nn: the integer
// part (no half-pixel centring) and the kernel weights of taps -1 .. 2
// around it for the fractional part.
struct Taps {
    int64_t base;
    double weight[4];
};

Taps KernelTaps(int i, int n, int nn)
{
    const int64_t scaled = static_cast<int64_t>(i) * n;
    Taps t;
    t.base = scaled / nn;
    const double frac = static_cast<double>(scaled) / nn - static_cast<double>(t.base);
    for (int m = -1; m <= 2; m++)
        t.weight[m + 1] = BiCubicR(m - frac);
    return t;
}

size_t At(int x, int y, int w)
{
    return static_cast<size_t>(x) + static_cast<size_t>(y) * static_cast<size_t>(w);
}

} // namespace

double BiCubicR(double x)
{
    return (Cube(Positive(x + 2)) - 4 * Cube(Positive(x + 1)) + 6 * Cube(Positive(x)) -
            4 * Cube(Positive(x - 1))) /
           6;
}

void BiCubicScale(const BitmapPixel *bitmap, int nx, int ny, BitmapPixel *bitmap2, int nnx, int nny)
{
    if (nnx < 1 || nny < 1 || nx < 1 || ny < 1)
        return;
    for (int i = 0; i < nnx; i++) {
        // The kernel depends on the tap and the fraction only: its four
        // values are evaluated once per column and once per row. Each tap
        // still weighs exactly R(m - dx) * R(n - dy).
        const Taps tx = KernelTaps(i, nx, nnx);
        for (int j = 0; j < nny; j++) {
            const Taps ty = KernelTaps(j, ny, nny);
            double r = 0, g = 0, b = 0, a = 0;
            for (int m = -1; m <= 2; m++) {
                const int xx = Clamp(tx.base + m, 0, nx - 1);
                for (int n = -1; n <= 2; n++) {
                    const int yy = Clamp(ty.base + n, 0, ny - 1);
                    const double w = tx.weight[m + 1] * ty.weight[n + 1];
                    const BitmapPixel &p = bitmap[At(xx, yy, nx)];
                    r += p.r * w;
                    g += p.g * w;
                    b += p.b * w;
                    a += p.a * w;
                }
            }
            bitmap2[At(i, j, nnx)] = BitmapPixel{Low8(r), Low8(g), Low8(b), Low8(a)};
        }
    }
}

void GaussianScale(const BitmapPixel *bitmap, int nx, int ny, BitmapPixel *bitmap2, int nnx, int nny,
                   double sigma)
{
    if (nnx < 1 || nny < 1 || nx < 1 || ny < 1)
        return;
    const double sigma2 = sigma * sigma;
    for (int i = 0; i < nnx; i++) {
        for (int j = 0; j < nny; j++) {
            BitmapPixel &out = bitmap2[At(i, j, nnx)];
            if (sigma2 <= 0) {
                const int x = static_cast<int>(static_cast<int64_t>(i) * nx / nnx);
                const int y = static_cast<int>(static_cast<int64_t>(j) * ny / nny);
                out = bitmap[At(x, y, nx)];
                continue;
            }
            const double x = static_cast<double>(i) * nx / nnx;
            const double y = static_cast<double>(j) * ny / nny;
            double r = 0, g = 0, b = 0, a = 0;
            // A sigma so large that adding 1 no longer moves the sample
            // position (or an infinite one) would step forever; it samples
            // nothing, as a NaN sigma does.
            if (std::fabs(sigma) < 1e15) {
                for (double xx = x - 4 * sigma; xx <= x + 4 * sigma + 0.01; xx += 1) {
                    const int sx = ClampIndex(xx, nx);
                    for (double yy = y - 4 * sigma; yy <= y + 4 * sigma + 0.01; yy += 1) {
                        const double w = std::exp(-((y - yy) * (y - yy) + (x - xx) * (x - xx)) * 0.5 / sigma2) /
                                         (sigma2 * 6.283185307179586);
                        const BitmapPixel &p = bitmap[At(sx, ClampIndex(yy, ny), nx)];
                        r += p.r * w;
                        g += p.g * w;
                        b += p.b * w;
                        a += p.a * w;
                    }
                }
            }
            out = BitmapPixel{Low8(r), Low8(g), Low8(b), Low8(a)};
        }
    }
}
