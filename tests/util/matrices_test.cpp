// Scalar functions against the C++17 special functions and values worked out
// by hand; matrix routines by identities on fixed-seed random matrices, hand
// cases that pin argument order, and the singularity thresholds.
#include "matrices.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"

namespace
{

// An n x n matrix in the caller's double ** shape, each row its own heap
// block of exactly n doubles so that AddressSanitizer sees any overrun.
struct Mat {
    std::vector<std::vector<double>> cells;
    std::vector<double *> rows;
    explicit Mat(int n, std::initializer_list<double> v = {}) : cells(n, std::vector<double>(n)), rows(n)
    {
        for (int i = 0; i < n; i++)
            rows[i] = cells[i].data();
        for (size_t k = 0; k < v.size(); k++)
            at(k) = v.begin()[k];
    }
    // A move keeps the row blocks; a copy would share them, so none is made.
    Mat(Mat &&) = default;
    Mat(const Mat &) = delete;
    int n() const { return static_cast<int>(rows.size()); }
    double **p() { return rows.data(); }
    double &at(size_t k) const { return rows[k / n()][k % n()]; } // row order
};

// diag on the diagonal, plus noise in [-1, 1) everywhere when u is given:
// diag n + 1 makes a diagonally dominant matrix, well conditioned and with a
// positive determinant (Gershgorin).
Mat Make(int n, double diag, geomtest::Uniform *u = nullptr)
{
    Mat m(n);
    for (int k = 0; k < n * n; k++)
        m.at(k) = (u ? (*u)(-1, 1) : 0) + (k % (n + 1) == 0 ? diag : 0);
    return m;
}

// From and to the fixed-size array shape.
template <int N> Mat Of(double (&f)[N][N])
{
    Mat m(N);
    for (int k = 0; k < N * N; k++)
        m.at(k) = f[k / N][k % N];
    return m;
}
template <int N> void Put(const Mat &m, double (&f)[N][N])
{
    for (int k = 0; k < N * N; k++)
        f[k / N][k % N] = m.at(k);
}

// b a, through MatrixMul.
Mat Product(Mat &b, Mat &a)
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
    // Lanczos's six-term series is good to 2e-10 (Numerical Recipes 6.1).
    EXPECT_TRUE(std::fabs(LnGamma(1)) <= 1e-10 && std::fabs(LnGamma(2)) <= 1e-10);
    for (double x = 0.01; x < 200; x *= 1.07)
        EXPECT_NEAR(LnGamma(x), std::lgamma(x), 2e-10) << x;
    // The rectangle rule here is the trapezoid rule, exact to rounding for
    // this periodic integrand, plus dt/(2 pi) (f(0) - f(pi)) for the missing
    // end sample: 1e-4 for odd orders, 0 for even. Negative orders and
    // arguments by J_-n(x) = J_n(-x) = (-1)^n J_n(x) (Abramowitz & Stegun 9.1.5).
    for (int n = -3; n <= 6; n++) {
        const double odd = n % 2 != 0, sign = odd ? -1 : 1;
        for (double x : {0.0, 0.5, 2.385, 7.0, 15.0}) {
            const double jn = std::cyl_bessel_j(std::abs(n), x) * (n < 0 ? sign : 1);
            EXPECT_NEAR(Bessel(x, n), jn + 1e-4 * odd, 1e-11) << n << " " << x;
            EXPECT_NEAR(Bessel(-x, n), sign * jn + 1e-4 * odd, 1e-11) << n << " " << -x;
        }
    }
    // The nine-term series falls short of I0 by its tail: at least the first
    // omitted term t9 = (x/2)^18 / (9!)^2, at most t9 / (1 - (x/2)^2 / 100).
    for (double x = -4; x <= 4; x += 0.25) {
        const double i0 = std::cyl_bessel_i(0.0, std::fabs(x)),
                     t9 = std::pow(x / 2, 18) / std::pow(362880.0, 2);
        const double tail = i0 - BesselI0(x), slack = 4e-16 * i0;
        EXPECT_TRUE(tail >= t9 - slack && tail <= t9 / (1 - x * x / 400) + slack) << x << " tail " << tail;
    }
    for (int n = 21; n <= 170; n++)
        EXPECT_NEAR(Factorial(n) / std::tgamma(n + 1.0), 1, 1e-13) << n;
    // Bases above and below e, arguments above and below 1.
    const double logs[][3] = {
        {8, 2, 3}, {1000, 10, 3}, {2.385, M_E, std::log(2.385)}, {1e-300, 100, -150}, {0.5, 4, -0.5}};
    for (const auto &c : logs)
        EXPECT_NEAR(Logarithm(c[0], c[1]), c[2], 1e-15 * std::fabs(c[2])) << c[0] << " " << c[1];
}

TEST(Matrices, IntegerFunctionsWorkedByHand)
{
    // 3^20 = 3486784401, 10^10 = 10000000000, 46341^2 = 2147488281 and
    // 65537^2 = 4295098369, each less a multiple of 2^32; 2^31 and (-2)^31
    // are both INT_MIN in 32 bits; 2^n is 0 from n = 32 on.
    // clang-format off
    const int powers[][3] = {{2, 0, 1}, {2, -3, 1}, {0, 0, 1}, {-3, 3, -27}, {7, 1, 7}, {2, 30, 1 << 30}, {2, 31, INT_MIN},
        {-2, 31, INT_MIN}, {2, 32, 0}, {3, 20, -808182895}, {10, 10, 1410065408}, {46341, 2, -2147479015}, {65537, 2, 131073},
        {INT_MIN, 1, INT_MIN}, {INT_MIN, 2, 0}, {-1, INT_MAX, -1}, {1, INT_MAX, 1}, {2, INT_MAX, 0}};
    // 20! = 2432902008176640000 is exact in a double; 171! overflows.
    const double facts[][2] = {{-1, 1}, {0, 1}, {1, 1}, {5, 120}, {10, 3628800}, {20, 2432902008176640000.0},
        {171, HUGE_VAL}, {INT_MAX, HUGE_VAL}};
    // clang-format on
    for (const auto &c : powers)
        EXPECT_EQ(PowerInt(c[0], c[1]), c[2]) << c[0] << "^" << c[1];
    for (const auto &c : facts)
        EXPECT_EQ(Factorial(static_cast<int>(c[0])), c[1]) << c[0];
    // floor(sqrt(n)) wherever that is below 32768, densely and at every
    // square and its neighbours; the 15 bits cap larger roots at 32767.
    auto check = [](int64_t n) {
        const double root = n < 0 ? 0 : std::min(32767.0, std::floor(std::sqrt(static_cast<double>(n))));
        ASSERT_EQ(intsqrt(static_cast<int>(n)), root) << n;
    };
    for (int n = -10; n <= 100000; n++)
        check(n);
    for (int64_t k = 300; k <= 46340; k++)
        for (int64_t n = k * k - 1; n <= k * k + 1; n++)
            check(n);
    EXPECT_TRUE(intsqrt(17) == 4 && intsqrt(16) == 4 && intsqrt(INT_MAX) == 32767 && intsqrt(INT_MIN) == 0);
}

TEST(Matrices, RandomMatricesObeyDeterminantAndInverseIdentities)
{
    geomtest::Uniform u(20240611);
    for (int trial = 0; trial < 20; trial++) {
        // det(b a) = det(a) det(b), and a Transpose(CoFactor(a)) = det(a) I.
        for (int n = 1; n <= 6; n++) {
            Mat a = Make(n, n + 1, &u), b = Make(n, n + 1, &u), ba = Product(b, a), adj(n);
            const double da = Determinant(a.p(), n), db = Determinant(b.p(), n);
            EXPECT_NEAR(Determinant(ba.p(), n), da * db, 1e-12 * da * db) << n;
            CoFactor(a.p(), n, adj.p());
            Transpose(adj.p(), n);
            if (n > 1)
                ExpectMat(Product(a, adj), Make(n, da), 1e-12 * da);
        }
        // The fixed sizes agree with the general routine; Det3x3 takes the
        // columns (a determinant equals its transpose's).
        Mat g2 = Make(2, 3, &u), g3 = Make(3, 4, &u), g4 = Make(4, 5, &u), h4 = Make(4, 5, &u);
        double a2[2][2], i2[2][2], a3[3][3], i3[3][3], a4[4][4], i4[4][4], b4[4][4], c4[4][4];
        Put(g2, a2), Put(g3, a3), Put(g4, a4), Put(h4, b4);
        const double d3 = Determinant33(a3), d4 = Determinant44(a4), e4 = Determinant44(b4);
        EXPECT_EQ(Determinant(g2.p(), 2), Determinant22(a2));
        EXPECT_NEAR(Determinant(g3.p(), 3), d3, 1e-13 * d3);
        EXPECT_NEAR(
            Det3x3(a3[0][0], a3[1][0], a3[2][0], a3[0][1], a3[1][1], a3[2][1], a3[0][2], a3[1][2], a3[2][2]),
            d3, 1e-13 * d3);
        EXPECT_NEAR(Determinant(g4.p(), 4), d4, 1e-12 * d4);
        Multiply44(a4, b4, c4);
        EXPECT_NEAR(Determinant44(c4), d4 * e4, 1e-12 * d4 * e4);
        // a inv(a) = I, also when the 4x4 inverse overwrites its input.
        ASSERT_TRUE(Inverse22(a2, i2) && Inverse33(a3, i3) && Inverse44(a4, i4) && Inverse44(a4, a4));
        Mat m2 = Of(i2), m3 = Of(i3), m4 = Of(i4);
        ExpectMat(Product(g2, m2), Make(2, 1), 1e-15);
        ExpectMat(Product(g3, m3), Make(3, 1), 1e-15);
        ExpectMat(Product(g4, m4), Make(4, 1), 1e-15);
        ExpectMat(Of(a4), m4);
    }
}

TEST(Matrices, HandWorkedCasesPinArgumentOrder)
{
    // [[1,0,5],[2,1,6],[3,4,0]]: -24 + 25 = 1 by the first row.
    double m3[3][3] = {{1, 0, 5}, {2, 1, 6}, {3, 4, 0}};
    EXPECT_TRUE(Determinant33(m3) == 1 && Det3x3(1, 2, 3, 0, 1, 4, 5, 6, 0) == 1 && Det2x2(1, 2, 3, 4) == -2);
    // b = [[0,1],[1,0]] swaps a's rows from the left (b a = [[3,4],[1,2]])
    // and its columns from the right; MatrixMul gives b a.
    Mat a(2, {1, 2, 3, 4}), b(2, {0, 1, 1, 0}), cof(2), one(1, {2.385}), onecof(1, {9});
    ExpectMat(Product(b, a), Mat(2, {3, 4, 1, 2}));
    // The cofactors of [[1,2],[3,4]]; a 1x1 matrix has an empty minor, whose
    // Determinant (size 0) is 0; n below 1 reads and writes nothing.
    CoFactor(a.p(), 2, cof.p());
    CoFactor(one.p(), 1, onecof.p());
    ExpectMat(cof, Mat(2, {4, -3, -2, 1}));
    EXPECT_TRUE(onecof.at(0) == 0 && Determinant(one.p(), 1) == 2.385 && Determinant(nullptr, 0) == 0 &&
                Determinant(nullptr, -1) == 0);
    CoFactor(nullptr, 0, nullptr), Transpose(nullptr, -1), MatrixMul(nullptr, nullptr, nullptr, 0);
    Transpose(a.p(), 2);
    ExpectMat(a, Mat(2, {1, 3, 2, 4}));
    // The product may overwrite both operands (r and w hold the same values).
    geomtest::Uniform u(99), v(99);
    Mat r = Make(5, 6, &u), w = Make(5, 6, &v), sq = Product(r, r);
    MatrixMul(w.p(), w.p(), w.p(), 5);
    ExpectMat(w, sq);
    // Multiply44 is a b: with a = I + E01 and b = I + E12, a b has the extra
    // E02 term that b a lacks.
    double a4[4][4], b4[4][4], c4[4][4];
    Identity44(a4), Identity44(b4);
    a4[0][1] = b4[1][2] = 1;
    Multiply44(a4, b4, c4);
    ExpectMat(Of(c4), Mat(4, {1, 1, 1, 0, 0, 1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
}

TEST(Matrices, SingularityThresholdsDifferBySize)
{
    // The 2x2 and 3x3 inverses fail at |det| = 1e-6 exactly and leave inv
    // alone; the 4x4 one passes there, and when it fails inv holds the
    // adjoint, for diag(d, 1, 1, 1) diag(1, d, d, d) (worked by hand).
    for (double d : {1e-6, -1e-6, 1.000001e-6, 1e-7, 0.0}) {
        double a2[2][2] = {{d, 0}, {0, 1}}, i2[2][2] = {{2.385}},
               a3[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, d}}, i3[3][3] = {{2.385}};
        double a4[4][4] = {{d, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, i4[4][4];
        const bool ok = std::fabs(d) > 1e-6, ok4 = std::fabs(d) >= 1e-6;
        EXPECT_TRUE(Inverse22(a2, i2) == ok && Inverse33(a3, i3) == ok && Inverse44(a4, i4) == ok4) << d;
        EXPECT_TRUE(ok ? i2[0][0] == 1 / d && i3[2][2] == 1 / d : i2[0][0] == 2.385 && i3[0][0] == 2.385)
            << d;
        const double x = ok4 ? 1 / d : 1, y = ok4 ? 1 : d;
        ExpectMat(Of(i4), Mat(4, {x, 0, 0, 0, 0, y, 0, 0, 0, 0, y, 0, 0, 0, 0, y}), 1e-9);
    }
}
