/* Fourier transforms, correlation and a linear solver. A signal is a pair of
 * caller-owned double arrays of equal length (real parts, imaginary parts),
 * transformed in place. Direction 1 is the forward transform
 * X[k] = (1/n) sum x[i] exp(-2 pi i ik/n); the inverse (direction -1; for FFT
 * and FFT2D any direction but 1) has the opposite sign and no scaling, so a
 * forward then inverse transform restores the signal. Nothing here keeps a
 * pointer to the caller's data. */
#ifndef UTIL_FFT_H
#define UTIL_FFT_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Sets *m and *twopm = 2^*m to the largest power of two not above n and
 * returns TRUE when n equals it. The search always takes one step past 2, so
 * n of 2 or 3 gives *m = 2, *twopm = 4 and FALSE (2 is never accepted); n
 * below 2 gives *m = 0, *twopm = 1 and FALSE. */
int Powerof2(int n, int *m, int *twopm);

/* In-place radix-2 transform of the 2^m points of x (real) and y (imaginary)
 * in direction dir; the forward transform (dir 1) divides by 2^m. Always
 * returns TRUE; m below 0, or too large for the length to be a size_t,
 * leaves the arrays untouched. */
int FFT(int dir, int m, double *x, double *y);

/* Direct transform of n points: X[k] = sum (x[i] + i y[i]) exp(-dir 2 pi i ik/n)
 * with pi taken as 3.141592654, replacing x and y and divided by n when dir
 * is 1. dir enters the angle as a number, so dir 2 samples every second
 * frequency. Returns FALSE, arrays untouched, when working storage cannot be
 * had; n below 1 does nothing and returns TRUE. */
int DFT(int dir, int n, double *x, double *y);

/* Transforms the grid c[i][j] (nx rows of ny values) in direction dir: first
 * every column (over i), then every row (over j). Each size must pass
 * Powerof2, so 2 is refused. Returns FALSE when nx is refused or storage
 * fails (grid untouched), or when ny is refused or storage fails after the
 * columns have already been transformed; else TRUE. */
int FFT2D(Complex **c, int nx, int ny, int dir);

/* Normalised linear correlation of x and y without wrap-around: for each
 * delay d from -(n/2) up to but excluding n/2, r[d + n/2] =
 * sum (x[i] - mx)(y[i + d] - my) / sqrt(sum (x - mx)^2 sum (y - my)^2) over
 * the i with 0 <= i + d < n. r takes 2 (n/2) values; a constant signal gives
 * a zero denominator (NaN or infinity). n below 1 writes nothing. */
void Correlate(const double *x, const double *y, int n, double *r);

/* Circular, unnormalised autocovariance sum (x[i] - m)(x[(i + lag) mod n] - m)
 * with m the mean. Any lag is accepted, taken modulo n onto 0..n-1 (so -1 is
 * the same as n - 1); n below 1 gives 0. */
double AutoCorr(const double *x, int n, int lag);

/* Circular, unnormalised cross-covariance sum (x[i] - mx)(y[(i + lag) mod n] - my),
 * lag taken modulo n as in AutoCorr; n below 1 gives 0. */
double CrossCorr(const double *x, const double *y, int n, int lag);

/* Solves the n equations given as n + 1 columns a[column][row] (column n is
 * the right-hand side) into x by Gaussian elimination with partial pivoting,
 * leaving a in its eliminated (upper triangular) form. Returns FALSE, with x
 * unwritten and a partly eliminated, when a pivot is below 1e-5 in
 * magnitude: the system is then treated as singular. */
int GSolve(double **a, int n, double *x);

#ifdef __cplusplus
}
#endif

#endif
