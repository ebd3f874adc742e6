// Fourier transforms, correlation and the linear solver. Reference values
// come from NumPy, computed live by tests/util/fft_reference.py under the
// system interpreter; the rest are worked by hand or are identities
// (round trip, Parseval, residuals) on fixed-seed noise.
//
// Conventions: direction 1 of FFT, DFT and FFT2D equals numpy.fft.fft(x) / n
// (fft2(c) / (nx ny)): the unit-root recurrence starts at -1 and takes the
// negative square root for the sine in that direction, so the kernel is
// exp(-2 pi i ik/n). Direction -1 equals numpy.fft.ifft(x) * n.
#include "fft.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using Vec = std::vector<double>;
using Arrays = std::map<std::string, Vec>;

const char kNoNumPy[] = "/usr/bin/python3 $TALVOR_SRC/tests/util/fft_reference.py failed: "
                        "it needs TALVOR_SRC set and numpy installed (run scripts/install-deps)";

// Runs the reference script once per process. Each line is a name, a count
// and that many Python reprs, which %lf reads back exactly. Any failure
// leaves the map empty.
const Arrays &NumPy()
{
    static const Arrays arrays = [] {
        Arrays a;
        const char *src = std::getenv("TALVOR_SRC");
        const std::string cmd =
            "/usr/bin/python3 " + std::string(src ? src : "") + "/tests/util/fft_reference.py";
        FILE *pipe = src ? popen(cmd.c_str(), "r") : nullptr;
        char name[64];
        size_t count;
        bool ok = pipe != nullptr;
        while (ok && std::fscanf(pipe, "%63s %zu", name, &count) == 2) {
            Vec &v = a[name];
            v.resize(count);
            for (double &e : v)
                ok = ok && std::fscanf(pipe, "%lf", &e) == 1;
        }
        if (!(pipe && pclose(pipe) == 0 && ok))
            a.clear();
        return a;
    }();
    return arrays;
}

// Largest difference from the reference, absolute or in units of the
// reference's largest component.
double MaxDiff(const Vec &re, const Vec &im, const Vec &ref_re, const Vec &ref_im)
{
    double err = 0;
    for (size_t i = 0; i < ref_re.size(); i++)
        err = std::max({err, std::fabs(re.at(i) - ref_re[i]), std::fabs(im.at(i) - ref_im[i])});
    return err;
}

double RelError(const Vec &re, const Vec &im, const Vec &ref_re, const Vec &ref_im)
{
    return MaxDiff(re, im, ref_re, ref_im) /
           std::max(MaxDiff(ref_re, ref_im, Vec(re.size()), Vec(re.size())), 1e-300);
}

Vec Noise(std::mt19937 &gen, int n)
{
    Vec v(n);
    for (double &e : v)
        e = gen() / 4294967296.0 * 4.77 - 2.385;
    return v;
}

// A grid of nx rows of ny cells from row-major real and imaginary parts.
struct Grid {
    std::vector<Complex> cells;
    std::vector<Complex *> rows;
    Grid(const Vec &re, const Vec &im, int nx, int ny)
    {
        for (size_t k = 0; k < re.size(); k++)
            cells.push_back({re[k], im[k]});
        for (int i = 0; i < nx; i++)
            rows.push_back(&cells[i * ny]);
    }
};

const double kFftTol = 64 * DBL_EPSILON;

} // namespace

TEST(Fft, Powerof2FindsLargestPowerWithItsFirstPassQuirk)
{
    // Worked by hand: one doubling always happens, so 2 and 3 land on 4.
    const int n[] = {INT_MIN, 1, 2, 3, 4, 6, 8, 9, 1023, 1024, 1 << 30, INT_MAX};
    const int m[] = {0, 0, 2, 2, 2, 2, 3, 3, 9, 10, 30, 30};
    const int ok[] = {FALSE, FALSE, FALSE, FALSE, TRUE, FALSE, TRUE, FALSE, FALSE, TRUE, TRUE, FALSE};
    for (int k = 0; k < 12; k++) {
        int mm = -7, twopm = -7;
        EXPECT_EQ(Powerof2(n[k], &mm, &twopm), ok[k]) << n[k];
        EXPECT_EQ(mm, m[k]) << n[k];
        EXPECT_EQ(twopm, 1 << m[k]) << n[k];
    }
}

TEST(Fft, FftAndDftMatchNumPy)
{
    const Arrays &np = NumPy();
    ASSERT_FALSE(np.empty()) << kNoNumPy;
    // The DFT's pi - 3.141592654 = -4.1e-10 turns the term of x[i] in bin k
    // by at most |dir| 8.2e-10 i k / n radians, which with weights |x[i]|
    // (over n when forward) bounds its error; true pi would agree with NumPy
    // to rounding, far below 1e-10. dir 2 doubles the angle: bin k is
    // NumPy's unscaled bin 2k mod n. FFT takes any dir but 1 as the inverse.
    for (int n : {8, 12, 16, 64}) {
        const std::string s = std::to_string(n);
        const Vec &x0 = np.at("sig" + s + ".re"), &y0 = np.at("sig" + s + ".im");
        for (int dir : {1, -1, 2}) {
            const std::string ref = (dir == 1 ? "fwd" : "inv") + s, dref = (dir == -1 ? "inv" : "fwd") + s;
            Vec x = x0, y = y0, ref_re(n), ref_im(n);
            double bound = 1e-14;
            for (int k = 0; k < n; k++) {
                ref_re[k] = np.at(dref + ".re")[dir == 2 ? 2 * k % n : k] * (dir == 2 ? n : 1);
                ref_im[k] = np.at(dref + ".im")[dir == 2 ? 2 * k % n : k] * (dir == 2 ? n : 1);
                bound +=
                    std::abs(dir) * 8.3e-10 * k * (n - 1) / n * std::hypot(x0[k], y0[k]) / (dir == 1 ? n : 1);
            }
            ASSERT_EQ(DFT(dir, n, x.data(), y.data()), TRUE);
            EXPECT_LT(MaxDiff(x, y, ref_re, ref_im), bound) << n << " " << dir;
            EXPECT_GT(MaxDiff(x, y, ref_re, ref_im), 1e-10) << n << " " << dir;
            int m, twopm;
            x = x0, y = y0;
            if (Powerof2(n, &m, &twopm)) {
                EXPECT_EQ(FFT(dir, m, x.data(), y.data()), TRUE);
                EXPECT_LT(RelError(x, y, np.at(ref + ".re"), np.at(ref + ".im")), kFftTol) << n << " " << dir;
            }
        }
    }
}

TEST(Fft, TwoDimensionalMatchesNumPyAndRefusesSizesLikePowerof2)
{
    const Arrays &np = NumPy();
    ASSERT_FALSE(np.empty()) << kNoNumPy;
    for (const auto &size : {std::make_pair(4, 8), std::make_pair(8, 4)}) {
        const std::string s = std::to_string(size.first) + "x" + std::to_string(size.second);
        for (int dir : {1, -1}) {
            Grid g(np.at("grid" + s + ".re"), np.at("grid" + s + ".im"), size.first, size.second);
            ASSERT_EQ(FFT2D(g.rows.data(), size.first, size.second, dir), TRUE);
            Vec re, im;
            for (const Complex &c : g.cells)
                re.push_back(c.real), im.push_back(c.imag);
            const std::string ref = (dir == 1 ? "fwd" : "inv") + s;
            EXPECT_LT(RelError(re, im, np.at(ref + ".re"), np.at(ref + ".im")), kFftTol) << ref;
        }
    }
    // A refused nx leaves the grid alone; a refused ny is found only after
    // the columns j < ny have been transformed (numpy.fft.fft(c, axis=0) / nx).
    const Vec &re = np.at("grid4x8.re"), &im = np.at("grid4x8.im"), &cre = np.at("cols4x8.re"),
              &cim = np.at("cols4x8.im");
    const int sizes[][2] = {{2, 4}, {1, 4}, {0, 4}, {6, 4}, {4, 2}, {4, 3}, {4, 0}, {4, 6}};
    for (const auto &size : sizes) {
        Grid g(re, im, 4, 8);
        EXPECT_EQ(FFT2D(g.rows.data(), size[0], size[1], 1), FALSE) << size[0] << "x" << size[1];
        for (int k = 0; k < 32; k++) {
            const bool done = size[0] == 4 && k % 8 < size[1];
            EXPECT_NEAR(g.cells[k].real, done ? cre[k] : re[k], done ? 1e-15 : 0)
                << size[0] << "x" << size[1];
            EXPECT_NEAR(g.cells[k].imag, done ? cim[k] : im[k], done ? 1e-15 : 0)
                << size[0] << "x" << size[1];
        }
    }
}

TEST(Fft, InverseRestoresSignalAndParsevalHolds)
{
    std::mt19937 gen(1965);
    for (int m = 0; m <= 12; m++) {
        const int n = 1 << m;
        const Vec x0 = Noise(gen, n), y0 = Noise(gen, n);
        Vec x = x0, y = y0;
        FFT(1, m, x.data(), y.data());
        double before = 0, after = 0;
        for (int i = 0; i < n; i++)
            before += x0[i] * x0[i] + y0[i] * y0[i], after += x[i] * x[i] + y[i] * y[i];
        EXPECT_NEAR(before, n * after, 1e-13 * before) << n;
        FFT(-1, m, x.data(), y.data());
        // The half-angle recurrence loses digits to the cancellation in
        // 1 - cos(pi / 2^l), and the powers of each root add them up: the
        // error grows like 4^m eps.
        EXPECT_LT(RelError(x, y, x0, y0), kFftTol + std::ldexp(DBL_EPSILON, 2 * m - 4)) << n;
    }
    // Worked by hand: every bin of a unit impulse at 0 is 1/n.
    Vec x(16, 0.0), y(16, 0.0), impulse(16, 0.0);
    x[0] = impulse[0] = 1;
    FFT(1, 4, x.data(), y.data());
    EXPECT_EQ(x, Vec(16, 1.0 / 16));
    EXPECT_EQ(y, Vec(16, 0.0));
    FFT(-1, 4, x.data(), y.data());
    EXPECT_LT(MaxDiff(x, y, impulse, Vec(16, 0.0)), 1e-16);
    // Sizes that hold nothing read nothing.
    EXPECT_EQ(FFT(1, -1, nullptr, nullptr), TRUE);
    EXPECT_EQ(DFT(1, 0, nullptr, nullptr), TRUE);
    EXPECT_EQ(GSolve(nullptr, 0, nullptr), TRUE);
}

TEST(Correlation, MatchesNumPyCorrelateAndRoll)
{
    const Arrays &np = NumPy();
    ASSERT_FALSE(np.empty()) << kNoNumPy;
    const Vec &lags = np.at("lags");
    for (int n : {8, 7}) {
        const std::string s = std::to_string(n);
        const Vec &x = np.at("cx" + s), &y = np.at("cy" + s);
        Vec r(n + 1, -99.0), self(n, -99.0);
        Correlate(x.data(), y.data(), n, r.data());
        Correlate(x.data(), x.data(), n, self.data());
        for (int k = 0; k < n / 2 * 2; k++)
            EXPECT_NEAR(r[k], np.at("corr" + s)[k], 1e-14) << n << " " << k;
        EXPECT_EQ(r[n / 2 * 2], -99.0); // 2 (n / 2) values only
        EXPECT_NEAR(self[n / 2], 1.0, 1e-15);
        for (size_t k = 0; k < lags.size(); k++) {
            const int lag = int(lags[k]);
            EXPECT_NEAR(AutoCorr(x.data(), n, lag), np.at("auto" + s)[k], 1e-13) << n << " " << lag;
            EXPECT_NEAR(CrossCorr(x.data(), y.data(), n, lag), np.at("cross" + s)[k], 1e-13)
                << n << " " << lag;
        }
    }
    EXPECT_EQ(AutoCorr(nullptr, 0, 1), 0);
    EXPECT_EQ(CrossCorr(nullptr, nullptr, -3, 1), 0);
}

TEST(GSolve, SmallResidualsOnRandomSystems)
{
    std::mt19937 gen(1809);
    for (int n = 1; n <= 12; n++) {
        std::vector<Vec> cols(n + 1);
        std::vector<double *> a;
        for (Vec &c : cols)
            c = Noise(gen, n), a.push_back(c.data());
        const std::vector<Vec> orig = cols;
        Vec x(n);
        ASSERT_EQ(GSolve(a.data(), n, x.data()), TRUE) << n;
        for (int j = 0; j < n; j++) {
            double lhs = 0;
            for (int k = 0; k < n; k++)
                lhs += orig[k][j] * x[k];
            EXPECT_NEAR(lhs, orig[n][j], 1e-12) << n << " " << j;
        }
    }
}

TEST(GSolve, PivotingTiesAndSingularThreshold)
{
    // Systems as columns {column 0, column 1, right-hand side}; solutions and
    // eliminated forms worked by hand. A tie for the pivot keeps the first
    // row; a tiny leading entry is swapped away; 1e-5 itself is an
    // acceptable pivot, the next double below is not; a singular system
    // fails with x untouched.
    const double below = std::nextafter(1e-5, 0.0);
    struct {
        double cols[3][2];
        int ok;
        double x[2], eliminated[3][2];
    } cases[] = {
        {{{2, -2}, {1, 3}, {3, 1}}, TRUE, {1, 1}, {{2, 0}, {1, 4}, {3, 4}}},
        {{{1e-6, 1}, {1, 1}, {1, 2}},
         TRUE,
         {1 / (1 - 1e-6), (1 - 2e-6) / (1 - 1e-6)},
         {{1, 0}, {1, 1 - 1e-6}, {2, 1 - 2e-6}}},
        {{{1, 0}, {0, 1e-5}, {2, 3e-5}}, TRUE, {2, 3}, {{1, 0}, {0, 1e-5}, {2, 3e-5}}},
        {{{1, 0}, {0, below}, {2, 3e-5}}, FALSE, {-7, -7}, {{1, 0}, {0, below}, {2, 3e-5}}},
        {{{1.5, 3}, {2.385, 4.77}, {1, 2}}, FALSE, {-7, -7}, {{3, 0}, {4.77, 0}, {2, 0}}},
    };
    for (auto &c : cases) {
        double *a[3] = {c.cols[0], c.cols[1], c.cols[2]}, x[2] = {-7, -7};
        EXPECT_EQ(GSolve(a, 2, x), c.ok);
        for (int k = 0; k < 6; k++)
            EXPECT_NEAR(c.cols[k / 2][k % 2], c.eliminated[k / 2][k % 2], 1e-15) << c.ok << " " << k;
        EXPECT_NEAR(x[0], c.x[0], 1e-15);
        EXPECT_NEAR(x[1], c.x[1], 1e-15);
    }
}
