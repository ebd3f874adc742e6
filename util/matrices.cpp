#include "matrices.h"

#include <climits>
#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
#include <vector>

namespace
{

const double kPi = 3.14159265358979323846;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

/* The int whose two's-complement bit pattern is u, without relying on the
 * implementation-defined conversion of out-of-range unsigned values. */
int WrapToInt(unsigned int u)
{
    if (u <= static_cast<unsigned int>(INT_MAX))
        return static_cast<int>(u);
    return -static_cast<int>(UINT_MAX - u) - 1;
}

/* An n x n matrix in one heap block, with row pointers in the caller's
 * double ** shape. Throws std::bad_alloc or std::length_error when the
 * storage cannot be had. */
struct Scratch {
    std::vector<double> cells;
    std::vector<double *> rows;
    explicit Scratch(std::size_t n) : cells(n * n), rows(n)
    {
        for (std::size_t i = 0; i < n; i++)
            rows[i] = cells.data() + i * n;
    }
};

/* m = a without row skip_row and column skip_col; a is n x n, m has n - 1
 * rows. */
void Minor(double *const *a, int n, int skip_row, int skip_col, double **m)
{
    for (int i = 0, mi = 0; i < n; i++) {
        if (i == skip_row)
            continue;
        for (int j = 0, mj = 0; j < n; j++) {
            if (j != skip_col)
                m[mi][mj++] = a[i][j];
        }
        mi++;
    }
}

/* Determinant as the public function defines it; may throw on allocation. */
double DeterminantOf(double *const *a, int n)
{
    if (n < 1)
        return 0;
    if (n == 1)
        return a[0][0];
    if (n == 2)
        return a[0][0] * a[1][1] - a[1][0] * a[0][1];
    /* One minor buffer per level, refilled for each column. */
    Scratch minor(static_cast<std::size_t>(n - 1));
    double det = 0;
    for (int j = 0; j < n; j++) {
        Minor(a, n, 0, j, minor.rows.data());
        const double sign = (j % 2 == 0) ? 1.0 : -1.0; /* (-1)^(j + 2) */
        det += sign * a[0][j] * DeterminantOf(minor.rows.data(), n - 1);
    }
    return det;
}

void FillNaN(double **m, int n)
{
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++)
            m[i][j] = kNaN;
}

/* Determinant of the 3x3 matrix left from a 4x4 without row r and column c,
 * expanded along its first row. */
double Minor44(double a[4][4], int r, int c)
{
    int rows[3], cols[3];
    for (int i = 0, k = 0; i < 4; i++)
        if (i != r)
            rows[k++] = i;
    for (int j = 0, k = 0; j < 4; j++)
        if (j != c)
            cols[k++] = j;
    double m[3][3];
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            m[i][j] = a[rows[i]][cols[j]];
    return Determinant33(m);
}

} // namespace

/* Scalar functions. */

double Logarithm(double x, double base)
{
    return std::log(x) / std::log(base);
}

int PowerInt(int x, int n)
{
    /* Unsigned arithmetic wraps modulo 2^32 without undefined behaviour, and
     * multiplication modulo 2^32 is associative, so squaring gives exactly
     * the n-fold product in far fewer steps. */
    unsigned int result = 1, base = static_cast<unsigned int>(x);
    for (unsigned int e = n > 0 ? static_cast<unsigned int>(n) : 0u; e != 0; e >>= 1) {
        if (e & 1u)
            result *= base;
        base *= base;
    }
    return WrapToInt(result);
}

int intsqrt(int n)
{
    /* Trials stay at most 32767, so their squares fit in an int. */
    int result = 0;
    for (int bit = 1 << 14; bit > 0; bit >>= 1) {
        const int trial = result + bit;
        const int square = trial * trial;
        if (square <= n)
            result = trial;
        if (square == n)
            break;
    }
    return result;
}

double Factorial(int n)
{
    double f = 1;
    /* Once the product has overflowed to infinity it stays there. */
    for (int i = 2; i <= n && f != HUGE_VAL; i++)
        f *= i;
    return f;
}

double BesselI0(double x)
{
    /* Denominators 4^k (k!)^2 of the series of Abramowitz & Stegun 9.6.12. */
    static const double kDenominator[9] = {
        1.0, 4.0, 64.0, 2304.0, 147456.0, 14745600.0, 2123366400.0, 416179814400.0, 106542032486400.0};
    const double y = x * x;
    double power = 1, sum = 0;
    for (int k = 0; k < 9; k++) {
        sum += power / kDenominator[k];
        power *= y;
    }
    return sum;
}

double Bessel(double x, int n)
{
    /* Bessel's integral, Abramowitz & Stegun 9.1.21. The step count follows
     * from the accumulated t: after 10000 additions t is a little above pi. */
    const double dt = kPi / 10000;
    double sum = 0;
    for (double t = 0; t < kPi; t += dt)
        sum += std::cos(x * std::sin(t) - n * t) * dt;
    return sum / kPi;
}

double LnGamma(double x)
{
    /* Lanczos (1964) with gamma = 5 and six terms, in the form of Press et
     * al., Numerical Recipes, section 6.1. */
    static const double kCoefficient[6] = {76.18009172947146,  -86.50532032941678,   24.01409824083091,
                                           -1.231739572450155, 0.001208650973866179, -5.395239384953e-06};
    double t = x + 5.5;
    t -= (x + 0.5) * std::log(t);
    double s = 1.000000000190015, y = x;
    for (double c : kCoefficient)
        s += c / ++y;
    return std::log(2.5066282746310007 * s / x) - t;
}

/* Fixed-size matrices. */

double Det2x2(double a, double b, double c, double d)
{
    return a * d - b * c;
}

double Determinant22(double m[2][2])
{
    return m[0][0] * m[1][1] - m[0][1] * m[1][0];
}

double Det3x3(double a1, double a2, double a3, double b1, double b2, double b3, double c1, double c2,
              double c3)
{
    return a1 * (b2 * c3 - b3 * c2) - b1 * (a2 * c3 - a3 * c2) + c1 * (a2 * b3 - a3 * b2);
}

double Determinant33(double m[3][3])
{
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

double Determinant44(double m[4][4])
{
    /* sij: the 2x2 determinant of rows 2 and 3 in columns i and j. */
    const double s01 = m[2][0] * m[3][1] - m[2][1] * m[3][0];
    const double s02 = m[2][0] * m[3][2] - m[2][2] * m[3][0];
    const double s03 = m[2][0] * m[3][3] - m[2][3] * m[3][0];
    const double s12 = m[2][1] * m[3][2] - m[2][2] * m[3][1];
    const double s13 = m[2][1] * m[3][3] - m[2][3] * m[3][1];
    const double s23 = m[2][2] * m[3][3] - m[2][3] * m[3][2];
    return m[0][0] * (m[1][1] * s23 - m[1][2] * s13 + m[1][3] * s12) -
           m[0][1] * (m[1][0] * s23 - m[1][2] * s03 + m[1][3] * s02) +
           m[0][2] * (m[1][0] * s13 - m[1][1] * s03 + m[1][3] * s01) -
           m[0][3] * (m[1][0] * s12 - m[1][1] * s02 + m[1][2] * s01);
}

void Identity44(double m[4][4])
{
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            m[i][j] = (i == j) ? 1.0 : 0.0;
}

void Multiply44(double a[4][4], double b[4][4], double c[4][4])
{
    /* Through a copy, so that c may be a or b. */
    double r[4][4];
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            r[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j] + a[i][3] * b[3][j];
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            c[i][j] = r[i][j];
}

void Adjoint44(double a[4][4], double adj[4][4])
{
    double r[4][4];
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            r[j][i] = ((i + j) % 2 == 0 ? 1.0 : -1.0) * Minor44(a, i, j);
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            adj[i][j] = r[i][j];
}

int Inverse22(double a[2][2], double inv[2][2])
{
    const double d = Determinant22(a);
    if (std::fabs(d) <= 1e-6)
        return FALSE;
    const double r00 = a[1][1] / d, r01 = -a[0][1] / d, r10 = -a[1][0] / d, r11 = a[0][0] / d;
    inv[0][0] = r00;
    inv[0][1] = r01;
    inv[1][0] = r10;
    inv[1][1] = r11;
    return TRUE;
}

int Inverse33(double a[3][3], double inv[3][3])
{
    const double d = Determinant33(a);
    if (std::fabs(d) <= 1e-6)
        return FALSE;
    /* r[i][j] is the cofactor of a[j][i]. */
    double r[3][3];
    r[0][0] = a[1][1] * a[2][2] - a[1][2] * a[2][1];
    r[0][1] = a[0][2] * a[2][1] - a[0][1] * a[2][2];
    r[0][2] = a[0][1] * a[1][2] - a[0][2] * a[1][1];
    r[1][0] = a[1][2] * a[2][0] - a[1][0] * a[2][2];
    r[1][1] = a[0][0] * a[2][2] - a[0][2] * a[2][0];
    r[1][2] = a[0][2] * a[1][0] - a[0][0] * a[1][2];
    r[2][0] = a[1][0] * a[2][1] - a[1][1] * a[2][0];
    r[2][1] = a[0][1] * a[2][0] - a[0][0] * a[2][1];
    r[2][2] = a[0][0] * a[1][1] - a[0][1] * a[1][0];
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            inv[i][j] = r[i][j] / d;
    return TRUE;
}

int Inverse44(double a[4][4], double inv[4][4])
{
    /* The determinant comes first, in case inv is a itself. */
    const double d = Determinant44(a);
    Adjoint44(a, inv);
    if (std::fabs(d) < 1e-6)
        return FALSE;
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            inv[i][j] /= d;
    return TRUE;
}

/* General matrices. Exceptions must not cross this C interface, so an
 * allocation failure becomes NaN. */

double Determinant(double **a, int n)
{
    try {
        return DeterminantOf(a, n);
    } catch (const std::exception &) {
        return kNaN;
    }
}

void CoFactor(double **a, int n, double **b)
{
    if (n < 1)
        return;
    try {
        /* Through a copy, so that b may be a. */
        Scratch result(static_cast<std::size_t>(n));
        double **r = result.rows.data();
        Scratch minor(static_cast<std::size_t>(n - 1));
        for (int i = 0; i < n; i++) {
            for (int j = 0; j < n; j++) {
                Minor(a, n, i, j, minor.rows.data());
                const double sign = ((i + j) % 2 == 0) ? 1.0 : -1.0;
                r[i][j] = sign * DeterminantOf(minor.rows.data(), n - 1);
            }
        }
        for (int i = 0; i < n; i++)
            for (int j = 0; j < n; j++)
                b[i][j] = r[i][j];
    } catch (const std::exception &) {
        FillNaN(b, n);
    }
}

void Transpose(double **a, int n)
{
    for (int i = 0; i < n; i++) {
        for (int j = i + 1; j < n; j++) {
            const double t = a[i][j];
            a[i][j] = a[j][i];
            a[j][i] = t;
        }
    }
}

void MatrixMul(double **a, double **b, double **c, int n)
{
    if (n < 1)
        return;
    try {
        /* Through a copy, so that c may be a or b. */
        Scratch result(static_cast<std::size_t>(n));
        double **r = result.rows.data();
        for (int i = 0; i < n; i++) {
            for (int j = 0; j < n; j++) {
                double sum = 0;
                for (int k = 0; k < n; k++)
                    sum += b[i][k] * a[k][j];
                r[i][j] = sum;
            }
        }
        for (int i = 0; i < n; i++)
            for (int j = 0; j < n; j++)
                c[i][j] = r[i][j];
    } catch (const std::exception &) {
        FillNaN(c, n);
    }
}
