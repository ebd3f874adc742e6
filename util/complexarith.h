/* Complex and quaternion arithmetic: free functions on Complex and Quaternion
 * values that take their operands by value and return a new value. Division
 * by zero gives zero rather than an infinity, purely real arguments take
 * shortcut formulas, and the elementary functions use the closed forms stated
 * below (some deliberately differ from the principal branches of <complex>). */
#ifndef UTIL_COMPLEXARITH_H
#define UTIL_COMPLEXARITH_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Complex arithmetic; below z = x + i y and w = u + i v. */

/* z + w. */
Complex Cadd(Complex z, Complex w);
/* z - w. */
Complex Csub(Complex z, Complex w);
/* z w. */
Complex Cmult(Complex z, Complex w);
/* (x d, y d). */
Complex Cmultd(Complex z, double d);
/* z / w by Smith's method (Smith 1962), which never squares u or v; 0 when z
 * or w is 0 (both parts exactly zero). */
Complex Cdiv(Complex z, Complex w);
/* (x / d, y / d); 0 when d is 0 or z is 0. */
Complex Cdivd(Complex z, double d);
/* 1 / z as Cdiv gives it, so 0 for z = 0. */
Complex Cinv(Complex z);
/* |z| without overflow: the other part's magnitude when one part is 0, else
 * the larger magnitude times sqrt(1 + (smaller / larger)^2). */
double Cabs(Complex z);
/* Principal square root: 0 for z = 0; for y = 0, (sqrt x, 0) when x > 0 and
 * (0, sqrt(-x)) when x < 0 (the real-axis shortcut would otherwise take the
 * root of a negative number); otherwise, with m = |z|, a = sqrt((m + x) / 2)
 * and b = sqrt((m - x) / 2), (a, b) for y >= 0 and (a, -b) for y < 0. */
Complex Csqrt(Complex z);
/* e^x (cos y, sin y). */
Complex Cexp(Complex z);
/* Natural logarithm: (ln x, 0) when y = 0 and x > 0; (ln y, pi/2) when x = 0
 * and y > 0; (ln(-y), -pi/2) when x = 0 and y <= 0, so Clog(0) is
 * (-infinity, -pi/2); otherwise (ln |z|, atan2(y, x)). */
Complex Clog(Complex z);
/* z^p = exp(p ln(x^2 + y^2) / 2) (cos(p t), sin(p t)) with t = atan2(y, x);
 * 0^p is 0 for p > 0, and NaN for p = 0 (0 times the infinite logarithm). */
Complex Cpowd(Complex z, double p);
/* (sin x, 0) when y = 0; else (sin x cosh y, cos x sinh y). */
Complex Csin(Complex z);
/* (cos x, 0) when y = 0; else (cos x cosh y, -sin x sinh y). */
Complex Ccos(Complex z);
/* (tan x, 0) when y = 0; else, with d = cos 2x + cosh 2y,
 * (sin 2x / d, sinh 2y / d). */
Complex Ctan(Complex z);
/* (asin x, 0) when y = 0 (a NaN real part for |x| > 1); else, with
 * a = |z + 1| / 2 and b = |z - 1| / 2, (asin(a - b), ln(a + b +
 * sqrt((a + b)^2 - 1))). The imaginary part is never negative: this is the
 * principal arc sine only for y > 0. */
Complex Casin(Complex z);
/* (acos x, 0) when y = 0 (a NaN real part for |x| > 1); else, with a and b
 * as for Casin, (acos(a - b), -ln(a + b + sqrt((a + b)^2 - 1))). The
 * imaginary part is never positive: this is the principal arc cosine only
 * for y > 0. */
Complex Cacos(Complex z);
/* (atan x, 0) when y = 0; else, with r2 = x^2 + y^2,
 * (atan(2x / (1 - r2)) / 2, ln((1 + 2y + r2) / (1 - 2y + r2)) / 4). The real
 * part uses atan, not atan2: outside the unit circle it lies pi/2 from the
 * principal value's, within -pi/4 to pi/4. */
Complex Catan(Complex z);
/* ((e^x - e^-x) cos y / 2, (e^x + e^-x) sin y / 2). */
Complex Csinh(Complex z);
/* ((e^x + e^-x) cos y / 2, (e^x - e^-x) sin y / 2). */
Complex Ccosh(Complex z);
/* (tanh x, 0) when y = 0; else (1 - e^-2z) / (1 + e^-2z) by Cdiv. */
Complex Ctanh(Complex z);
/* Clog(z + Csqrt(z^2 + 1)). */
Complex Casinh(Complex z);
/* Clog(z + Csqrt(z^2 - 1)); the principal value for x > 0 only (for x < 0
 * the root takes the other sign). */
Complex Cacosh(Complex z);
/* Half the logarithm of the quotient: Clog(Cdiv(1 + z, 1 - z)) / 2. At
 * z = 1 and z = -1 the zero-divisor and zero-dividend rules of Cdiv make the
 * quotient 0, so both give (-infinity, -pi/4). */
Complex Catanh(Complex z);

/* Quaternion arithmetic; a and b have scalar parts a0, b0 and vector parts
 * (a1, a2, a3), (b1, b2, b3). */

/* Componentwise a + b. */
Quaternion Qadd(Quaternion a, Quaternion b);
/* Componentwise a - b. */
Quaternion Qsub(Quaternion a, Quaternion b);
/* The Hamilton product a b (so i j = k and j i = -k). */
Quaternion Qmult(Quaternion a, Quaternion b);
/* (a0, -a1, -a2, -a3). */
Quaternion Qconj(Quaternion a);
/* sqrt(a0^2 + a1^2 + a2^2 + a3^2). */
double Qmod(Quaternion a);
/* Qconj(a) / |a|^2; all zero when |a|^2 is not positive. */
Quaternion Qinv(Quaternion a);
/* a b^-1, formed as (2 b0 a - a b) / |b|^2 (which is a Qconj(b) / |b|^2); all
 * zero when |b|^2 is not positive, that is for b = 0 and also when |b|^2
 * underflows, as Qinv does. Qdiv(a, a) is 1 only to rounding. */
Quaternion Qdiv(Quaternion a, Quaternion b);
/* With n the length of the vector part, e^a0 (cos n, a1 sin n / n,
 * a2 sin n / n, a3 sin n / n); (e^a0, 0, 0, 0) when n is 0. */
Quaternion Qexp(Quaternion a);

#ifdef __cplusplus
}
#endif

#endif
