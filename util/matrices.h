/* Scalar special functions (logarithm to any base, integer power and square
 * root, factorial, Bessel functions, log gamma) and determinants, products and
 * inverses of square matrices. Fixed-size matrices are 2x2, 3x3 and 4x4
 * arrays of doubles indexed [row][column]; general n x n matrices are n
 * pointers to rows of n doubles, all owned by the caller. Input matrices are
 * never modified; outputs may share storage with inputs. */
#ifndef UTIL_MATRICES_H
#define UTIL_MATRICES_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Scalar functions. */

/* ln x / ln base. */
double Logarithm(double x, double base);
/* x to the n in 32-bit two's-complement wrapping arithmetic (the low 32 bits
 * of the exact power); 1 for n below 1. */
int PowerInt(int x, int n);
/* Integer square root built bit by bit from 2^14 down to 2^0: floor(sqrt(n))
 * for 0 <= n < 32768^2, 32767 for larger n, 0 for negative n. */
int intsqrt(int n);
/* n! as a double (rounded beyond 22!, infinite from 171!); 1 for n below 2. */
double Factorial(int n);
/* Modified Bessel function I0(x) from the first nine terms of its power
 * series, sum over k = 0..8 of (x/2)^(2k) / (k!)^2; the cut shows beyond
 * |x| of about 2 (relative error 2.4e-9 at 3, 1.4e-2 at 10). */
double BesselI0(double x);
/* Bessel function of the first kind J_n(x) as (1/pi) times the integral over
 * 0..pi of cos(x sin t - n t) by the rectangle rule, samples t = 0, dt, 2 dt,
 * ... while t < pi, dt = pi / 10000. The missing end sample makes odd orders
 * exactly about 1e-4 too high; even orders are accurate to rounding. */
double Bessel(double x, int n);
/* ln Gamma(x) for x > 0 by the six-term Lanczos series (error below about
 * 2e-10); other x give what the formula gives (NaN or infinity). */
double LnGamma(double x);

/* Fixed-size matrices. */

/* a d - b c. */
double Det2x2(double a, double b, double c, double d);
/* m00 m11 - m01 m10. */
double Determinant22(double m[2][2]);
/* a1 (b2 c3 - b3 c2) - b1 (a2 c3 - a3 c2) + c1 (a2 b3 - a3 b2): the
 * determinant of the matrix whose columns are a, b and c. */
double Det3x3(double a1, double a2, double a3, double b1, double b2, double b3, double c1, double c2,
              double c3);
/* Determinant by expansion along the first row. */
double Determinant33(double m[3][3]);
/* Determinant by expansion along the first row, the 3x3 minors expanded with
 * the 2x2 sub-determinants of the last two rows. */
double Determinant44(double m[4][4]);
/* Sets m to the identity. */
void Identity44(double m[4][4]);
/* c = a b. */
void Multiply44(double a[4][4], double b[4][4], double c[4][4]);
/* adj = the adjoint of a (the transposed matrix of cofactors), so that
 * a adj = det(a) I. */
void Adjoint44(double a[4][4], double adj[4][4]);
/* inv = the inverse of a and TRUE; FALSE, inv untouched, when the determinant
 * is at most 1e-6 in magnitude. */
int Inverse22(double a[2][2], double inv[2][2]);
/* As Inverse22 for 3x3: the cofactor formula, FALSE when |det| <= 1e-6. */
int Inverse33(double a[3][3], double inv[3][3]);
/* Writes the adjoint of a into inv; FALSE, inv holding the adjoint, when the
 * determinant is below 1e-6 in magnitude (unlike the 2x2 and 3x3 inverses,
 * exactly 1e-6 passes); otherwise divides inv by it and returns TRUE. */
int Inverse44(double a[4][4], double inv[4][4]);

/* General n x n matrices. The contract is n >= 1 with n distinct rows of n
 * doubles each; for n below 1 nothing is read or written. Working storage
 * comes from the heap; if it cannot be had, the result is NaN throughout. */

/* Determinant: 0 for n below 1, a00 for 1, a00 a11 - a10 a01 for 2, else the
 * recursive cofactor expansion along the first row (time grows as n!). */
double Determinant(double **a, int n);
/* b[i][j] = (-1)^(i+j) Determinant of a without row i and column j; for
 * n = 1 that minor is empty and, as Determinant of size 0, counts as 0. */
void CoFactor(double **a, int n, double **b);
/* Transposes a in place; nothing happens for n below 2. */
void Transpose(double **a, int n);
/* c[i][j] = sum over k of b[i][k] a[k][j]: the product b a, in that order. */
void MatrixMul(double **a, double **b, double **c, int n);

#ifdef __cplusplus
}
#endif

#endif
