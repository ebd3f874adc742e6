// Scalar functions against the C++17 special functions and hand-worked values; matrix routines by
// identities on fixed-seed random matrices, hand cases that pin argument order, and singularity thresholds.
#include "matrices.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

namespace
{

// n x n in the double ** shape, each row its own heap block so that AddressSanitizer sees any overrun;
// values v in row order, else diag I plus noise in [-1, 1) from u (diag n + 1: det > 0 by Gershgorin).
struct Mat {
    std::vector<std::vector<double>> cells;
    std::vector<double *> rows;
    explicit Mat(int n, std::initializer_list<double> v = {}, double diag = 0, geomtest::Uniform *u = nullptr)
        : cells(n, std::vector<double>(n)), rows(n)
    {
        for (int k = 0; k < n * n; k++) {
            rows[k / n] = cells[k / n].data();
            at(k) = k < int(v.size()) ? v.begin()[k] : (u ? (*u)(-1, 1) : 0) + (k % (n + 1) == 0 ? diag : 0);
        }
    }
    Mat(Mat &&) = default; // no copies: they would share the row blocks
    int n() const { return static_cast<int>(rows.size()); }
    double **p() { return rows.data(); }
    double &at(size_t k) const { return rows[k / n()][k % n()]; }
};
template <int N> Mat Of(double (&f)[N][N], const Mat *put = nullptr) // put: copy into f
{
    Mat m(N);
    for (int k = 0; k < N * N; k++)
        m.at(k) = put ? (f[k / N][k % N] = put->at(k)) : f[k / N][k % N];
    return m;
}
Mat Product(Mat &b, Mat &a) // b a, through MatrixMul
{
    Mat c(a.n());
    MatrixMul(a.p(), b.p(), c.p(), a.n());
    return c;
}
void ExpectMat(const Mat &got, const Mat &want, double tol = 0)
{
    for (int k = 0; k < want.n() * want.n(); k++)
        EXPECT_NEAR(got.at(k), want.at(k), tol) << "entry " << k / want.n() << ", " << k % want.n();
}

} // namespace

TEST(Matrices, ScalarFunctionsMatchTheStandardLibrary)
{
    for (double x = 0.01; x < 200; x *= 1.07) // six-term Lanczos: 2e-10 (Numerical Recipes 6.1)
        EXPECT_NEAR(LnGamma(x), std::lgamma(x), 2e-10) << x;
    // Periodic trapezoid rule, exact to rounding, plus dt/(2 pi) (f(0) - f(pi)) for the missing end
    // sample: 1e-4 for odd n. J_-n(x) = J_n(-x) = (-1)^n J_n(x) (Abramowitz & Stegun 9.1.5).
    for (int n = 0; n <= 6; n++)
        for (double x : {0.0, 0.5, 2.385, 7.0, 15.0}) {
            const double jn = std::cyl_bessel_j(n, x), odd = n % 2, sign = odd ? -1 : 1;
            EXPECT_NEAR(Bessel(x, n), jn + 1e-4 * odd, 1e-11) << n << " " << x;
            EXPECT_NEAR(Bessel(-x, n), sign * jn + 1e-4 * odd, 1e-11) << n << " " << -x;
            EXPECT_NEAR(Bessel(x, -n), sign * jn + 1e-4 * odd, 1e-11) << -n << " " << x;
        }
    // The nine-term series misses t9 = (x/2)^18 / (9!)^2 plus a geometric tail below t9 x^2 / 384.
    for (double x = -4; x <= 4; x += 0.25) {
        const double i0 = std::cyl_bessel_i(0.0, std::fabs(x)), t9 = std::pow(x / 2, 18) / 131681894400.0;
        EXPECT_NEAR(i0 - BesselI0(x), t9, t9 * x * x / 380 + 4e-16 * i0) << x;
    }
    for (int n = 21; n <= 170; n++)
        EXPECT_NEAR(Factorial(n) / std::tgamma(n + 1.0), 1, 1e-13) << n;
    const double logs[][3] = {{8, 2, 3}, {2.385, M_E, std::log(2.385)}, {1e-300, 100, -150}, {0.5, 4, -0.5}};
    for (const auto &c : logs)
        EXPECT_NEAR(Logarithm(c[0], c[1]), c[2], 1e-15 * std::fabs(c[2])) << c[0] << " " << c[1];
}

TEST(Matrices, IntegerFunctionsWorkedByHand)
{
    // 3^20 = 3486784401, 10^10 = 10000000000, 46341^2 = 2147488281, 65537^2 = 4295098369, each less a
    // multiple of 2^32; 2^31 and (-2)^31 are INT_MIN in 32 bits; 2^n is 0 from n = 32 on.
    const int powers[][3] = {{2, 0, 1}, {2, -3, 1}, {0, 0, 1}, {-3, 3, -27}, {7, 1, 7}, {2, 31, INT_MIN},
                             {-2, 31, INT_MIN}, {2, 32, 0}, {3, 20, -808182895}, {10, 10, 1410065408},
                             {46341, 2, -2147479015}, {65537, 2, 131073}, {INT_MIN, 2, 0}, {-1, INT_MAX, -1}};
    for (const auto &c : powers)
        EXPECT_EQ(PowerInt(c[0], c[1]), c[2]) << c[0] << "^" << c[1];
    // 20! = 2432902008176640000 is exact in a double; 171! overflows.
    const double facts[][2] = {{-1, 1}, {0, 1}, {1, 1}, {5, 120}, {20, 2432902008176640000.0},
                               {171, HUGE_VAL}, {INT_MAX, HUGE_VAL}};
    for (const auto &c : facts)
        EXPECT_EQ(Factorial(static_cast<int>(c[0])), c[1]) << c[0];
    // floor(sqrt(n)) at every square and its neighbours, capped at 32767 by the 15 bits.
    std::vector<long long> ns = {INT_MIN, -10, INT_MAX};
    for (long long k = 0; k <= 46340; k++)
        ns.insert(ns.end(), {k * k - 1, k * k, k * k + 1, k * k + k});
    for (long long n : ns)
        ASSERT_EQ(intsqrt(static_cast<int>(n)), n < 0 ? 0 : std::min(32767.0, std::floor(std::sqrt(n)))) << n;
}

TEST(Matrices, RandomMatricesObeyDeterminantAndInverseIdentities)
{
    geomtest::Uniform u(20240611);
    auto inverts = [](Mat &&inv, Mat &a) { ExpectMat(Product(inv, a), Mat(a.n(), {}, 1), 1e-15); };
    for (int trial = 0; trial < 20; trial++) {
        for (int n = 1; n <= 6; n++) { // det(b a) = det a det b; a Transpose(CoFactor(a)) = det(a) I
            Mat a(n, {}, n + 1, &u), b(n, {}, n + 1, &u), ba = Product(b, a), adj(n);
            const double da = Determinant(a.p(), n), db = Determinant(b.p(), n);
            EXPECT_NEAR(Determinant(ba.p(), n), da * db, 1e-12 * da * db) << n;
            CoFactor(a.p(), n, adj.p());
            Transpose(adj.p(), n);
            if (n > 1)
                ExpectMat(Product(a, adj), Mat(n, {}, da), 1e-12 * da);
        }
        // Fixed sizes against the general routine (Det3x3 takes columns: det a = det a^T); a inv(a) = I,
        // also with the 4x4 inverse in place.
        Mat g2(2, {}, 3, &u), g3(3, {}, 4, &u), g4(4, {}, 5, &u), h4(4, {}, 5, &u);
        double a2[2][2], i2[2][2], a3[3][3], i3[3][3], a4[4][4], i4[4][4], b4[4][4];
        Of(a2, &g2), Of(a3, &g3), Of(a4, &g4), Of(b4, &h4);
        const double d3 = Determinant(g3.p(), 3), d4 = Determinant(g4.p(), 4), e4 = Determinant(h4.p(), 4);
        EXPECT_NEAR(Determinant33(a3), d3, 1e-13 * d3);
        EXPECT_NEAR(Det3x3(a3[0][0], a3[1][0], a3[2][0], a3[0][1], a3[1][1], a3[2][1], a3[0][2], a3[1][2],
                           a3[2][2]), d3, 1e-13 * d3);
        Multiply44(a4, b4, b4); // the product may overwrite an operand
        EXPECT_NEAR(Determinant44(b4), d4 * e4, 1e-12 * d4 * e4);
        ASSERT_TRUE(Inverse22(a2, i2) && Inverse33(a3, i3) && Inverse44(a4, i4) && Inverse44(a4, a4));
        inverts(Of(i2), g2), inverts(Of(i3), g3), inverts(Of(i4), g4), ExpectMat(Of(a4), Of(i4));
    }
}

TEST(Matrices, HandWorkedCasesPinArgumentOrder)
{
    // [[0,1],[1,0]] a swaps a's rows; [[1,2],[3,4]] has cofactors [[4,-3],[-2,1]] and determinant -2;
    // each result overwrites an input. A 1x1 matrix has an empty minor, whose determinant (size 0) is 0.
    Mat a(2, {1, 2, 3, 4}), b(2, {0, 1, 1, 0}), one(1, {2.385}), onecof(1, {9});
    MatrixMul(a.p(), b.p(), a.p(), 2);
    ExpectMat(a, Mat(2, {3, 4, 1, 2}));
    MatrixMul(a.p(), b.p(), a.p(), 2), CoFactor(a.p(), 2, a.p());
    ExpectMat(a, Mat(2, {4, -3, -2, 1}));
    Transpose(a.p(), 2);
    ExpectMat(a, Mat(2, {4, -2, -3, 1}));
    CoFactor(one.p(), 1, onecof.p());
    EXPECT_TRUE(onecof.at(0) == 0 && Determinant(one.p(), 1) == 2.385 && Determinant(nullptr, 0) == 0 &&
                Determinant(nullptr, -1) == 0 && Det2x2(1, 2, 3, 4) == -2);
    CoFactor(nullptr, 0, nullptr), Transpose(nullptr, -1), MatrixMul(nullptr, nullptr, nullptr, 0);
    // (I + E01)(I + E12) has the E02 term that the reverse order lacks.
    double a4[4][4], b4[4][4];
    Identity44(a4), Identity44(b4), a4[0][1] = b4[1][2] = 1;
    Multiply44(a4, b4, a4);
    ExpectMat(Of(a4), Mat(4, {1, 1, 1, 0, 0, 1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
}

TEST(Matrices, SingularityThresholdsDifferBySize)
{
    // 2x2 and 3x3 fail at |det| = 1e-6 and leave inv alone; 4x4 passes there and on failure holds
    // the adjoint: that of diag(d, 1, 1, 1) is diag(1, d, d, d) (by hand).
    for (double d : {1e-6, -1e-6, 1.000001e-6, 1e-7, 0.0}) {
        double a2[2][2] = {{d}, {0, 1}}, a3[3][3] = {{1}, {0, 1}, {0, 0, d}}, i2[2][2] = {{2.385}},
               i3[3][3] = {{2.385}}, a4[4][4] = {{d}, {0, 1}, {0, 0, 1}, {0, 0, 0, 1}}, i4[4][4];
        const bool ok = std::fabs(d) > 1e-6, ok4 = std::fabs(d) >= 1e-6;
        EXPECT_TRUE(Inverse22(a2, i2) == ok && Inverse33(a3, i3) == ok && Inverse44(a4, i4) == ok4) << d;
        EXPECT_TRUE(ok ? i2[0][0] == 1 / d && i3[2][2] == 1 / d : i2[0][0] == 2.385 && i3[0][0] == 2.385);
        ExpectMat(Of(i4), Mat(4, {ok4 ? 1 / d : 1}, ok4 ? 1 : d), 1e-9);
    }
}
