// Complex and quaternion arithmetic: std::complex as the reference wherever
// the library's closed forms are the principal values, hand-worked values for
// the zero rules and the deliberate deviations, and quaternion identities on
// fixed-seed random input.
#include "complexarith.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <iomanip>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "geometry_util.h"

namespace {

using Std = std::complex<double>;
const double kInf = std::numeric_limits<double>::infinity(), kS2 = std::sqrt(2.0), kS3 = std::sqrt(3.0);

Complex C(double re, double im) { return Complex{re, im}; }
Std S(Complex z) { return Std(z.real, z.imag); }
Quaternion Q(double a, double b, double c, double d) { return Quaternion{a, b, c, d}; }

// Every component of got equal to want's (infinities included) or within tol.
void ExpectNear(std::initializer_list<double> got, std::initializer_list<double> want, double tol, int row) {
    bool ok = true;
    for (auto g = got.begin(), w = want.begin(); g != got.end(); ++g, ++w) ok = ok && (*g == *w || std::fabs(*g - *w) <= tol);
    std::ostringstream s;
    for (double g : got) s << std::setprecision(17) << g << " ";
    EXPECT_TRUE(ok) << "row " << row << ": got " << s.str();
}
void ExpectC(Complex g, Complex w, double tol, int row) { ExpectNear({g.real, g.imag}, {w.real, w.imag}, tol, row); }
void ExpectQ(Quaternion g, Quaternion w, double tol, int row = 0) { ExpectNear({g.q0, g.q1, g.q2, g.q3}, {w.q0, w.q1, w.q2, w.q3}, tol, row); }

// A one-argument function and its std::complex reference, as a table row.
#define UNARY(f, ref) #f, [](Complex z, Complex) { return f(z); }, [](Std z, Std) { return ref(z); }

} // namespace

TEST(Complex, AgreesWithStdComplexWhereTheClosedFormsArePrincipal) {
    using Fn = std::function<Complex(Complex, Complex)>;
    using Ref = std::function<Std(Std, Std)>;
    using Domain = std::function<bool(Std)>;
    const Domain all = [](Std) { return true; };
    // Casin and Cacos drop the sign of y and Catan's atan folds |z| > 1 into
    // the wrong half: compare them only where they are principal. Cacosh's
    // root takes the other sign for x < 0. Real arguments take the shortcut
    // formulas; asin of a real beyond 1 and atanh on its cut are left out.
    // The closed forms of Csqrt (m - x for x >> |y|), Casin (asin next to 1
    // beside the cut), Casinh and Cacosh (through Csqrt) cancel digits: 1e-11
    // there.
    const Domain upper = [](Std z) { return z.imag() > 0 || (z.imag() == 0 && std::fabs(z.real()) < 1); };
    const struct { const char *name; Fn f; Ref ref; Domain in; double tol = 1e-13; } table[] = {
        {"Cadd", Cadd, [](Std z, Std w) { return z + w; }, all}, {"Csub", Csub, [](Std z, Std w) { return z - w; }, all},
        {"Cmult", Cmult, [](Std z, Std w) { return z * w; }, all}, {"Cdiv", Cdiv, [](Std z, Std w) { return z / w; }, all},
        {"Cmultd", [](Complex z, Complex w) { return Cmultd(z, w.real); }, [](Std z, Std w) { return z * w.real(); }, all},
        {"Cdivd", [](Complex z, Complex w) { return Cdivd(z, w.real); }, [](Std z, Std w) { return z / w.real(); }, all},
        {"Cpowd", [](Complex z, Complex w) { return Cpowd(z, w.real); }, [](Std z, Std w) { return std::pow(z, w.real()); }, all},
        {"Cabs", [](Complex z, Complex) { return C(Cabs(z), 0); }, [](Std z, Std) { return Std(std::abs(z)); }, all},
        {UNARY(Cinv, 1.0 /), all}, {UNARY(Csqrt, std::sqrt), all, 1e-11},
        {UNARY(Cexp, std::exp), all}, {UNARY(Clog, std::log), all}, {UNARY(Csin, std::sin), all}, {UNARY(Ccos, std::cos), all},
        {UNARY(Ctan, std::tan), all}, {UNARY(Csinh, std::sinh), all}, {UNARY(Ccosh, std::cosh), all}, {UNARY(Ctanh, std::tanh), all},
        {UNARY(Casin, std::asin), upper, 1e-11}, {UNARY(Cacos, std::acos), upper},
        {UNARY(Catan, std::atan), [](Std z) { return std::abs(z) < 1 || z.imag() == 0; }},
        {UNARY(Casinh, std::asinh), all, 1e-11},
        {UNARY(Cacosh, std::acosh), [](Std z) { return z.real() > 0; }, 1e-11},
        {UNARY(Catanh, std::atanh), [](Std z) { return z.imag() != 0 || std::fabs(z.real()) < 1; }},
    };
    geomtest::Uniform rnd(20240611);
    for (const auto &t : table) {
        int tried = 0;
        for (int i = 0; i < 2000; i++) {
            // Every fourth argument is real, to reach the shortcut formulas.
            const Complex z = C(rnd(-3, 3), i % 4 == 0 ? 0.0 : rnd(-3, 3)), w = C(rnd(-3, 3), rnd(-3, 3));
            if (!t.in(S(z))) continue;
            tried++;
            const Std want = t.ref(S(z), S(w)), got = S(t.f(z, w));
            ASSERT_LE(std::abs(got - want), t.tol * std::abs(want)) << t.name << std::setprecision(17) << " of " << S(z) << ", " << S(w) << ": got " << got << ", want " << want;
        }
        EXPECT_GT(tried, 500) << t.name;
    }
}

TEST(Complex, ZeroRulesShortcutsAndDeviationsWorkedByHand) {
    const double p2 = M_PI / 2, l12 = std::log(1 + kS2), at2 = std::atan(2.0);
    const Complex o = C(0, 0), one = C(1, 0), big = C(3e300, 4e300);
    // Division by zero and of zero (even by NaN) gives 0; Smith's method
    // divides parts near the overflow threshold that u^2 + v^2 could not.
    // Csqrt of a negative real lies on the positive imaginary axis. Clog on the imaginary axis and
    // at 0 (ln 0 with -pi/2). Casin and Cacos of -i keep the sign of i's
    // imaginary part (principal: -ln(1 + sqrt 2) and +ln(1 + sqrt 2)); asin
    // of a real beyond 1 is NaN in the shortcut. Catan(1 + i) has real part
    // -atan(2)/2, pi/2 below the principal pi/2 - atan(2)/2, with imaginary
    // part ln(5)/4. Catanh at +-1 divides by or into zero: (ln 0, -pi/2) / 2.
    const struct { Complex got, want; } rows[] = {
        {Cdiv(one, o), o}, {Cdiv(o, C(std::nan(""), 1)), o}, {Cinv(o), o}, {Cdivd(one, 0), o}, {Cdivd(o, 2.385), o},
        {Cdiv(big, C(1e300, 2e300)), C(2.2, -0.4)}, {Cmultd(Cdiv(C(1, 3e-300), big), 1e300), C(0.12, -0.16)},
        {C(Cabs(C(3, 4)), 0), C(5, 0)}, {C(Cabs(C(0, -2)), Cabs(C(-2, 0))), C(2, 2)}, {C(Cabs(big), 0), C(5e300, 0)},
        {Csqrt(C(0, 2)), C(1, 1)}, {Csqrt(C(3, -4)), C(2, -1)}, {Csqrt(C(-4, 0)), C(0, 2)}, {Csqrt(C(-4, -0.0)), C(0, 2)}, {Csqrt(o), o},
        {Clog(C(0, -1)), C(0, -p2)}, {Clog(C(0, 1)), C(0, p2)}, {Clog(o), C(-kInf, -p2)}, {Clog(C(-1, 0)), C(0, M_PI)},
        {Casin(C(0, -1)), C(0, l12)}, {Cacos(C(0, -1)), C(p2, -l12)}, {Casin(C(0, 1)), C(0, l12)}, {Cacos(C(0, 1)), C(p2, -l12)},
        {C(std::isnan(Casin(C(2, 0)).real), std::isnan(Cacos(C(-2, 0)).real)), C(1, 1)},
        {Catan(C(1, 1)), C(-at2 / 2, std::log(5.0) / 4)}, {Catan(C(0.5, 0.5)), C(at2 / 2, std::log(5.0) / 4)},
        {Catanh(one), C(-kInf, -M_PI / 4)}, {Catanh(C(-1, 0)), C(-kInf, -M_PI / 4)}, {Cpowd(o, 2.385), o},
    };
    for (const auto &r : rows) ExpectC(r.got, r.want, 1e-15 * std::max(1.0, std::fabs(r.want.real)), int(&r - rows));
    const Std principal = std::atan(Std(1, 1));
    EXPECT_NEAR(principal.real() - Catan(C(1, 1)).real, p2, 1e-15);
}

TEST(Quaternion, UnitProductsFollowHamilton) {
    // The multiplication table of 1, i, j, k (Hamilton 1843): i^2 = j^2 = k^2
    // = ijk = -1, so ij = k, ji = -k, jk = i, kj = -i, ki = j, ik = -j.
    const Quaternion u[4] = {Q(1, 0, 0, 0), Q(0, 1, 0, 0), Q(0, 0, 1, 0), Q(0, 0, 0, 1)};
    const int table[4][4] = {{1, 2, 3, 4}, {2, -1, 4, -3}, {3, -4, -1, 2}, {4, 3, -2, -1}}; // +-(index + 1) of the product
    for (int a = 0; a < 4; a++)
        for (int b = 0; b < 4; b++) {
            const Quaternion e = u[std::abs(table[a][b]) - 1];
            const double s = table[a][b] > 0 ? 1 : -1;
            ExpectQ(Qmult(u[a], u[b]), Q(s * e.q0, s * e.q1, s * e.q2, s * e.q3), 0, a * 4 + b);
        }
    // (1 + 2i + 3j + 4k)(5 + 6i + 7j + 8k), worked by hand; conjugate, sums,
    // modulus sqrt(30), and the zero rules of Qinv and Qdiv.
    const Quaternion a = Q(1, 2, 3, 4), b = Q(5, 6, 7, 8), z = Q(0, 0, 0, 0);
    ExpectQ(Qmult(a, b), Q(-60, 12, 30, 24), 0);
    ExpectQ(Qconj(a), Q(1, -2, -3, -4), 0);
    ExpectQ(Qadd(a, b), Q(6, 8, 10, 12), 0);
    ExpectQ(Qsub(a, b), Q(-4, -4, -4, -4), 0);
    EXPECT_EQ(Qmod(a), std::sqrt(30.0));
    ExpectQ(Qinv(z), z, 0);
    ExpectQ(Qdiv(a, z), z, 0);
    ExpectQ(Qdiv(a, Q(0, 1e-170, 0, 0)), z, 0); // |b|^2 underflows to 0
}

TEST(Quaternion, InverseDivisionAndModulusIdentitiesOnRandomQuaternions) {
    geomtest::Uniform rnd(7);
    const Quaternion one = Q(1, 0, 0, 0);
    for (int i = 0; i < 1000; i++) {
        const Quaternion a = Q(rnd(-3, 3), rnd(-3, 3), rnd(-3, 3), rnd(-3, 3)), b = Q(rnd(-3, 3), rnd(-3, 3), rnd(-3, 3), rnd(-3, 3));
        ExpectQ(Qmult(a, Qinv(a)), one, 1e-14, i);
        ExpectQ(Qmult(Qinv(a), a), one, 1e-14, i);
        // a / a is 1 only to rounding (0.9999999999999998 and the like).
        ExpectQ(Qdiv(a, a), one, 1e-15, i);
        ExpectQ(Qmult(Qdiv(a, b), b), a, 1e-13, i);
        EXPECT_NEAR(Qmod(Qmult(a, b)), Qmod(a) * Qmod(b), 1e-13 * Qmod(a) * Qmod(b));
    }
}

TEST(Quaternion, ExpWorkedByHandAndOnTheComplexPlane) {
    // Vector part (pi/3) (0.36, 0.48, 0.8), a unit direction, so n = pi/3 with
    // cos n = 1/2 and sin n = sqrt(3)/2; e^(ln 2) = 2.
    const double t = M_PI / 3;
    ExpectQ(Qexp(Q(std::log(2.0), 0.36 * t, 0.48 * t, 0.8 * t)), Q(1, 0.36 * kS3, 0.48 * kS3, 0.8 * kS3), 1e-15);
    ExpectQ(Qexp(Q(1.5, 0, 0, 0)), Q(std::exp(1.5), 0, 0, 0), 0);
    // 1, i span a copy of the complex numbers: Qexp there is std::exp.
    const Std e = std::exp(Std(0.7, -2.385));
    ExpectQ(Qexp(Q(0.7, -2.385, 0, 0)), Q(e.real(), e.imag(), 0, 0), 1e-15);
}
