#include "fft.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace
{

/* The value of pi the direct transform has always used; callers compare its
 * results digit for digit, so it stays at ten digits. */
const double kDftPi = 3.141592654;

/* Pivots smaller than this in magnitude make GSolve give up. */
const double kSingular = 1e-5;

/* Two working arrays of n doubles, or false when they cannot be had. */
bool Allocate(std::vector<double> &a, std::vector<double> &b, std::size_t n)
{
    try {
        a.assign(n, 0.0);
        b.assign(n, 0.0);
    } catch (const std::bad_alloc &) {
        return false;
    } catch (const std::length_error &) {
        return false;
    }
    return true;
}

/* The exponent m of a transform length that Powerof2 accepts, or -1. */
int AcceptedExponent(int n)
{
    int m, twopm;
    if (n < 2 || !Powerof2(n, &m, &twopm))
        return -1;
    return m;
}

double Mean(const double *x, int n)
{
    double sum = 0;
    for (int i = 0; i < n; i++)
        sum += x[i];
    return sum / n;
}

/* sum (x[i] - mx)(y[(i + lag) mod n] - my), the index kept in 0..n-1 for
 * every lag (C's % would give a negative index for a negative lag). */
double CircularCovariance(const double *x, const double *y, int n, int lag)
{
    if (n <= 0)
        return 0;
    const double mx = Mean(x, n), my = Mean(y, n);
    int shift = lag % n;
    if (shift < 0)
        shift += n;
    double sum = 0;
    for (int i = 0; i < n; i++) {
        const int k = i < n - shift ? i + shift : i - (n - shift);
        sum += (x[i] - mx) * (y[k] - my);
    }
    return sum;
}

} // namespace

int Powerof2(int n, int *m, int *twopm)
{
    if (n < 2) {
        *m = 0;
        *twopm = 1;
        return FALSE;
    }
    /* At least one doubling, so the search never stops at 2. The test is
     * made in long long: doubling the largest int power of two overflows. */
    *m = 1;
    *twopm = 2;
    long long previous;
    do {
        previous = *twopm;
        (*m)++;
        *twopm *= 2;
    } while (4 * previous <= n);
    return n == *twopm;
}

/* Radix-2 decimation in time after Cooley and Tukey (1965), with the unit
 * root carried from stage to stage by the half-angle recurrence
 * cos(a/2) = sqrt((1 + cos a)/2), sin(a/2) = sqrt((1 - cos a)/2) instead of
 * calls to sine and cosine. */
int FFT(int dir, int m, double *x, double *y)
{
    if (m < 0 || m >= static_cast<int>(sizeof(std::size_t) * 8 - 1))
        return TRUE;
    const std::size_t n = std::size_t(1) << m;

    /* Bit-reversal reordering: j counts in bit-reversed order, adding n/2
     * with the carry running towards the low bits. */
    std::size_t j = 0;
    for (std::size_t i = 0; i + 1 < n; i++) {
        if (i < j) {
            std::swap(x[i], x[j]);
            std::swap(y[i], y[j]);
        }
        std::size_t k = n >> 1;
        while (k <= j) {
            j -= k;
            k >>= 1;
        }
        j += k;
    }

    /* Butterflies; (c1, c2) is the unit root of the stage, (u1, u2) its
     * powers. */
    double c1 = -1.0, c2 = 0.0;
    std::size_t l2 = 1;
    for (int l = 0; l < m; l++) {
        const std::size_t l1 = l2;
        l2 <<= 1;
        double u1 = 1.0, u2 = 0.0;
        for (std::size_t jj = 0; jj < l1; jj++) {
            for (std::size_t i = jj; i < n; i += l2) {
                const std::size_t i1 = i + l1;
                const double t1 = u1 * x[i1] - u2 * y[i1];
                const double t2 = u1 * y[i1] + u2 * x[i1];
                x[i1] = x[i] - t1;
                y[i1] = y[i] - t2;
                x[i] += t1;
                y[i] += t2;
            }
            const double z = u1 * c1 - u2 * c2;
            u2 = u1 * c2 + u2 * c1;
            u1 = z;
        }
        c2 = std::sqrt((1.0 - c1) / 2.0);
        if (dir == 1)
            c2 = -c2;
        c1 = std::sqrt((1.0 + c1) / 2.0);
    }

    if (dir == 1) {
        for (std::size_t i = 0; i < n; i++) {
            x[i] /= n;
            y[i] /= n;
        }
    }
    return TRUE;
}

/* The defining sum, O(n^2). */
int DFT(int dir, int n, double *x, double *y)
{
    if (n < 1)
        return TRUE;
    std::vector<double> x2, y2;
    if (!Allocate(x2, y2, static_cast<std::size_t>(n)))
        return FALSE;

    for (int k = 0; k < n; k++) {
        const double arg = -static_cast<double>(dir) * 2.0 * kDftPi * k / n;
        x2[k] = 0;
        y2[k] = 0;
        for (int i = 0; i < n; i++) {
            const double cosarg = std::cos(i * arg);
            const double sinarg = std::sin(i * arg);
            x2[k] += x[i] * cosarg - y[i] * sinarg;
            y2[k] += x[i] * sinarg + y[i] * cosarg;
        }
    }

    for (int i = 0; i < n; i++) {
        if (dir == 1) {
            x[i] = x2[i] / n;
            y[i] = y2[i] / n;
        } else {
            x[i] = x2[i];
            y[i] = y2[i];
        }
    }
    return TRUE;
}

/* Transforms the n values at(0) .. at(n - 1) of a grid line (a column or a
 * row) through the working arrays re and im. */
template <class At>
static void TransformLine(int dir, int m, int n, std::vector<double> &re, std::vector<double> &im, At at)
{
    for (int k = 0; k < n; k++) {
        re[k] = at(k).real;
        im[k] = at(k).imag;
    }
    FFT(dir, m, re.data(), im.data());
    for (int k = 0; k < n; k++) {
        at(k).real = re[k];
        at(k).imag = im[k];
    }
}

/* Row-column decomposition: one-dimensional transforms of every column, then
 * of every row. */
int FFT2D(Complex **c, int nx, int ny, int dir)
{
    std::vector<double> real, imag;

    int m = AcceptedExponent(nx);
    if (m < 0 || !Allocate(real, imag, static_cast<std::size_t>(nx)))
        return FALSE;
    for (int j = 0; j < ny; j++)
        TransformLine(dir, m, nx, real, imag, [&](int i) -> Complex & { return c[i][j]; });

    /* A refused ny is only found now, after the columns are done. */
    m = AcceptedExponent(ny);
    if (m < 0 || !Allocate(real, imag, static_cast<std::size_t>(ny)))
        return FALSE;
    for (int i = 0; i < nx; i++)
        TransformLine(dir, m, ny, real, imag, [&](int j) -> Complex & { return c[i][j]; });
    return TRUE;
}

void Correlate(const double *x, const double *y, int n, double *r)
{
    if (n < 1)
        return;
    const double mx = Mean(x, n), my = Mean(y, n);
    double sx = 0, sy = 0;
    for (int i = 0; i < n; i++) {
        sx += (x[i] - mx) * (x[i] - mx);
        sy += (y[i] - my) * (y[i] - my);
    }
    const double denom = std::sqrt(sx * sy);

    const int half = n / 2;
    for (int delay = -half; delay < half; delay++) {
        double sxy = 0;
        for (int i = 0; i < n; i++) {
            const int k = i + delay;
            if (k < 0 || k >= n)
                continue;
            sxy += (x[i] - mx) * (y[k] - my);
        }
        r[delay + half] = sxy / denom;
    }
}

double AutoCorr(const double *x, int n, int lag)
{
    return CircularCovariance(x, x, n, lag);
}

double CrossCorr(const double *x, const double *y, int n, int lag)
{
    return CircularCovariance(x, y, n, lag);
}

int GSolve(double **a, int n, double *x)
{
    for (int i = 0; i < n; i++) {
        /* Partial pivoting: the largest magnitude in column i from row i
         * down, the first of equals winning. */
        int pivot = i;
        double largest = std::fabs(a[i][i]);
        for (int j = i + 1; j < n; j++) {
            if (std::fabs(a[i][j]) > largest) {
                largest = std::fabs(a[i][j]);
                pivot = j;
            }
        }
        if (pivot != i) {
            for (int k = 0; k <= n; k++)
                std::swap(a[k][i], a[k][pivot]);
        }

        if (std::fabs(a[i][i]) < kSingular)
            return FALSE;

        /* Column i last: its entry is the multiplier's numerator. */
        for (int j = i + 1; j < n; j++) {
            for (int k = n; k >= i; k--)
                a[k][j] -= a[k][i] * a[i][j] / a[i][i];
        }
    }

    for (int j = n - 1; j >= 0; j--) {
        double sum = 0;
        for (int k = j + 1; k < n; k++)
            sum += a[k][j] * x[k];
        x[j] = (a[n][j] - sum) / a[j][j];
    }
    return TRUE;
}
