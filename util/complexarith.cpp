#include "complexarith.h"

#include <cmath>

namespace
{

const double kPi = 3.14159265358979323846;

Complex MakeComplex(double real, double imag)
{
    Complex z;
    z.real = real;
    z.imag = imag;
    return z;
}

Quaternion MakeQuaternion(double q0, double q1, double q2, double q3)
{
    Quaternion q;
    q.q0 = q0;
    q.q1 = q1;
    q.q2 = q2;
    q.q3 = q3;
    return q;
}

bool IsZero(Complex z)
{
    return z.real == 0.0 && z.imag == 0.0;
}

double SquaredModulus(Quaternion a)
{
    return a.q0 * a.q0 + a.q1 * a.q1 + a.q2 * a.q2 + a.q3 * a.q3;
}

/* ln(a + b + sqrt((a + b)^2 - 1)) and a - b from a = |z + 1| / 2 and
 * b = |z - 1| / 2: the two halves of the arc sine and arc cosine (Abramowitz
 * and Stegun 4.4.37 and 4.4.38, without the sign of y). */
void ArcParts(Complex z, double *arg, double *logpart)
{
    const double a = std::sqrt((z.real + 1) * (z.real + 1) + z.imag * z.imag) / 2;
    const double b = std::sqrt((z.real - 1) * (z.real - 1) + z.imag * z.imag) / 2;
    *arg = a - b;
    *logpart = std::log(a + b + std::sqrt((a + b) * (a + b) - 1));
}

} // namespace

Complex Cadd(Complex z, Complex w)
{
    return MakeComplex(z.real + w.real, z.imag + w.imag);
}

Complex Csub(Complex z, Complex w)
{
    return MakeComplex(z.real - w.real, z.imag - w.imag);
}

Complex Cmult(Complex z, Complex w)
{
    return MakeComplex(z.real * w.real - z.imag * w.imag, z.real * w.imag + z.imag * w.real);
}

Complex Cmultd(Complex z, double d)
{
    return MakeComplex(z.real * d, z.imag * d);
}

Complex Cdiv(Complex z, Complex w)
{
    if (IsZero(z) || IsZero(w))
        return MakeComplex(0, 0);
    const double x = z.real, y = z.imag, u = w.real, v = w.imag;
    // Smith (1962): divide through by the larger part of w, so that neither
    // u^2 nor v^2 is formed and cannot overflow.
    if (std::fabs(u) >= std::fabs(v)) {
        const double r = v / u, den = u + r * v;
        return MakeComplex((x + r * y) / den, (y - r * x) / den);
    }
    const double r = u / v, den = v + r * u;
    return MakeComplex((r * x + y) / den, (r * y - x) / den);
}

Complex Cdivd(Complex z, double d)
{
    if (d == 0.0 || IsZero(z))
        return MakeComplex(0, 0);
    return MakeComplex(z.real / d, z.imag / d);
}

Complex Cinv(Complex z)
{
    return Cdiv(MakeComplex(1, 0), z);
}

double Cabs(Complex z)
{
    const double x = std::fabs(z.real), y = std::fabs(z.imag);
    if (x == 0.0)
        return y;
    if (y == 0.0)
        return x;
    if (x > y)
        return x * std::sqrt(1 + (y / x) * (y / x));
    return y * std::sqrt(1 + (x / y) * (x / y));
}

Complex Csqrt(Complex z)
{
    if (IsZero(z))
        return MakeComplex(0, 0);
    if (z.imag == 0.0) {
        // A negative real has its root on the positive imaginary axis.
        if (z.real < 0)
            return MakeComplex(0, std::sqrt(-z.real));
        return MakeComplex(std::sqrt(z.real), 0);
    }
    const double m = Cabs(z);
    const double a = std::sqrt((m + z.real) / 2), b = std::sqrt((m - z.real) / 2);
    return MakeComplex(a, z.imag >= 0 ? b : -b);
}

Complex Cexp(Complex z)
{
    const double e = std::exp(z.real);
    return MakeComplex(e * std::cos(z.imag), e * std::sin(z.imag));
}

Complex Clog(Complex z)
{
    if (z.imag == 0.0 && z.real > 0)
        return MakeComplex(std::log(z.real), 0);
    if (z.real == 0.0) {
        if (z.imag > 0)
            return MakeComplex(std::log(z.imag), kPi / 2);
        return MakeComplex(std::log(-z.imag), -kPi / 2);
    }
    return MakeComplex(std::log(Cabs(z)), std::atan2(z.imag, z.real));
}

Complex Cpowd(Complex z, double p)
{
    const double m = std::exp(p * std::log(z.real * z.real + z.imag * z.imag) / 2);
    const double t = std::atan2(z.imag, z.real);
    return MakeComplex(m * std::cos(p * t), m * std::sin(p * t));
}

Complex Csin(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::sin(z.real), 0);
    return MakeComplex(std::sin(z.real) * std::cosh(z.imag), std::cos(z.real) * std::sinh(z.imag));
}

Complex Ccos(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::cos(z.real), 0);
    return MakeComplex(std::cos(z.real) * std::cosh(z.imag), -std::sin(z.real) * std::sinh(z.imag));
}

Complex Ctan(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::tan(z.real), 0);
    const double d = std::cos(2 * z.real) + std::cosh(2 * z.imag);
    return MakeComplex(std::sin(2 * z.real) / d, std::sinh(2 * z.imag) / d);
}

Complex Casin(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::asin(z.real), 0);
    double arg, logpart;
    ArcParts(z, &arg, &logpart);
    return MakeComplex(std::asin(arg), logpart);
}

Complex Cacos(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::acos(z.real), 0);
    double arg, logpart;
    ArcParts(z, &arg, &logpart);
    return MakeComplex(std::acos(arg), -logpart);
}

Complex Catan(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::atan(z.real), 0);
    const double x = z.real, y = z.imag, r2 = x * x + y * y;
    return MakeComplex(std::atan(2 * x / (1 - r2)) / 2, std::log((1 + 2 * y + r2) / (1 - 2 * y + r2)) / 4);
}

Complex Csinh(Complex z)
{
    const double ep = std::exp(z.real), em = std::exp(-z.real);
    return MakeComplex((ep - em) * std::cos(z.imag) / 2, (ep + em) * std::sin(z.imag) / 2);
}

Complex Ccosh(Complex z)
{
    const double ep = std::exp(z.real), em = std::exp(-z.real);
    return MakeComplex((ep + em) * std::cos(z.imag) / 2, (ep - em) * std::sin(z.imag) / 2);
}

Complex Ctanh(Complex z)
{
    if (z.imag == 0.0)
        return MakeComplex(std::tanh(z.real), 0);
    const Complex one = MakeComplex(1, 0), e = Cexp(Cmultd(z, -2));
    return Cdiv(Csub(one, e), Cadd(one, e));
}

Complex Casinh(Complex z)
{
    const Complex root = Csqrt(Cadd(Cmult(z, z), MakeComplex(1, 0)));
    return Clog(Cadd(z, root));
}

Complex Cacosh(Complex z)
{
    const Complex root = Csqrt(Csub(Cmult(z, z), MakeComplex(1, 0)));
    return Clog(Cadd(z, root));
}

Complex Catanh(Complex z)
{
    const Complex one = MakeComplex(1, 0);
    return Cmultd(Clog(Cdiv(Cadd(one, z), Csub(one, z))), 0.5);
}

Quaternion Qadd(Quaternion a, Quaternion b)
{
    return MakeQuaternion(a.q0 + b.q0, a.q1 + b.q1, a.q2 + b.q2, a.q3 + b.q3);
}

Quaternion Qsub(Quaternion a, Quaternion b)
{
    return MakeQuaternion(a.q0 - b.q0, a.q1 - b.q1, a.q2 - b.q2, a.q3 - b.q3);
}

Quaternion Qmult(Quaternion a, Quaternion b)
{
    return MakeQuaternion(a.q0 * b.q0 - a.q1 * b.q1 - a.q2 * b.q2 - a.q3 * b.q3,
                          a.q0 * b.q1 + a.q1 * b.q0 + a.q2 * b.q3 - a.q3 * b.q2,
                          a.q0 * b.q2 + a.q2 * b.q0 + a.q3 * b.q1 - a.q1 * b.q3,
                          a.q0 * b.q3 + a.q3 * b.q0 + a.q1 * b.q2 - a.q2 * b.q1);
}

Quaternion Qconj(Quaternion a)
{
    return MakeQuaternion(a.q0, -a.q1, -a.q2, -a.q3);
}

double Qmod(Quaternion a)
{
    return std::sqrt(SquaredModulus(a));
}

Quaternion Qinv(Quaternion a)
{
    const double m2 = SquaredModulus(a);
    if (!(m2 > 0))
        return MakeQuaternion(0, 0, 0, 0);
    return MakeQuaternion(a.q0 / m2, -a.q1 / m2, -a.q2 / m2, -a.q3 / m2);
}

Quaternion Qdiv(Quaternion a, Quaternion b)
{
    const double m2 = SquaredModulus(b);
    if (!(m2 > 0))
        return MakeQuaternion(0, 0, 0, 0);
    // The conjugate of b is 2 b0 - b, so a conj(b) = 2 b0 a - a b.
    const double s = 2 * b.q0;
    const Quaternion q = Qsub(MakeQuaternion(s * a.q0, s * a.q1, s * a.q2, s * a.q3), Qmult(a, b));
    return MakeQuaternion(q.q0 / m2, q.q1 / m2, q.q2 / m2, q.q3 / m2);
}

Quaternion Qexp(Quaternion a)
{
    const double e = std::exp(a.q0);
    const double n = std::sqrt(a.q1 * a.q1 + a.q2 * a.q2 + a.q3 * a.q3);
    if (n == 0.0)
        return MakeQuaternion(e, 0, 0, 0);
    const double sn = std::sin(n);
    return MakeQuaternion(e * std::cos(n), e * (a.q1 * sn / n), e * (a.q2 * sn / n), e * (a.q3 * sn / n));
}
