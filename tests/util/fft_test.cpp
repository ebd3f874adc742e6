// Fourier transforms, correlation and the linear solver against NumPy (fft_reference.py, run live),
// hand-worked values and identities on NumPy's fixed-seed noise.
#include "fft.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace
{

using Vec = std::vector<double>;
struct Sig {
    Vec re, im;
};
const double kFftTol = 64 * DBL_EPSILON;

// The script's array called name (it prints lines of name, count, real parts, imaginary parts).
const Sig &NumPy(const std::string &name)
{
    static const auto arrays = [] {
        std::map<std::string, Sig> a;
        FILE *pipe = popen("/usr/bin/python3 \"$TALVOR_SRC\"/tests/util/fft_reference.py", "r");
        char id[64];
        size_t count;
        bool ok = pipe != nullptr;
        while (ok && std::fscanf(pipe, "%63s %zu", id, &count) == 2)
            for (Vec *v : {&a[id].re, &a[id].im}) {
                v->resize(count);
                for (double &e : *v)
                    ok = ok && std::fscanf(pipe, "%lf", &e) == 1;
            }
        EXPECT_TRUE(pipe && pclose(pipe) == 0 && ok) << "fft_reference.py needs TALVOR_SRC and numpy";
        return a;
    }();
    return arrays.at(name);
}

// Largest difference from the reference, in units of its largest component when rel.
double MaxDiff(const Sig &s, const Sig &ref, bool rel = false)
{
    double err = 0, scale = rel ? 1e-300 : 1;
    for (size_t i = 0; i < ref.re.size(); i++) {
        err = std::max({err, std::fabs(s.re.at(i) - ref.re[i]), std::fabs(s.im.at(i) - ref.im[i])});
        if (rel)
            scale = std::max({scale, std::fabs(ref.re[i]), std::fabs(ref.im[i])});
    }
    return err / scale;
}

} // namespace

TEST(Fft, Powerof2FindsLargestPowerWithItsFirstPassQuirk)
{
    // Worked by hand {n, m, accepted}: one doubling always happens, so 2 and 3 land on 4.
    const int cases[][3] = {{INT_MIN, 0, FALSE}, {1, 0, FALSE},    {2, 2, FALSE},       {3, 2, FALSE},
                            {4, 2, TRUE},        {6, 2, FALSE},    {8, 3, TRUE},        {9, 3, FALSE},
                            {1023, 9, FALSE},    {1024, 10, TRUE}, {1 << 30, 30, TRUE}, {INT_MAX, 30, FALSE}};
    for (const auto &c : cases) {
        int m = -7, twopm = -7, ok = Powerof2(c[0], &m, &twopm);
        EXPECT_EQ(std::make_tuple(m, twopm, ok), std::make_tuple(c[1], 1 << c[1], c[2])) << c[0];
    }
}

TEST(Fft, FftAndDftMatchNumPy)
{
    // The DFT's pi, 4.1e-10 short, turns x[i]'s term in bin k by |dir| 8.2e-10 ik/n radians: that
    // bounds its error and keeps it above 1e-10. FFT takes dir 2 as the inverse.
    for (int n : {8, 12, 16, 64}) {
        for (int dir : {1, -1, 2}) {
            const std::string s = std::to_string(n), ref = "dft" + std::to_string(dir) + "_" + s;
            Sig dft = NumPy("sig" + s), fft = dft;
            double bound = 1e-14;
            for (int i = 0; i < n; i++)
                bound += std::abs(dir) * 8.3e-10 * i * (n - 1) / n * std::hypot(fft.re[i], fft.im[i]) /
                         (dir == 1 ? n : 1);
            ASSERT_EQ(DFT(dir, n, dft.re.data(), dft.im.data()), TRUE);
            EXPECT_LT(MaxDiff(dft, NumPy(ref)), bound) << ref;
            EXPECT_GT(MaxDiff(dft, NumPy(ref)), 1e-10) << ref;
            if (n != 12) { // a power of two
                EXPECT_EQ(FFT(dir, std::ilogb(n), fft.re.data(), fft.im.data()), TRUE);
                EXPECT_LT(MaxDiff(fft, NumPy(dir == 1 ? "dft1_" + s : "dft-1_" + s), true), kFftTol) << ref;
            }
        }
    }
}

TEST(Fft, TwoDimensionalMatchesNumPyAndRefusesSizesLikePowerof2)
{
    // {nx, ny, dir}: 4x8 and 8x4 transform their own grid, the refused sizes the 4x8 one.
    const int cases[][3] = {{4, 8, 1}, {4, 8, -1}, {8, 4, 1}, {8, 4, -1}, {2, 4, 1}, {1, 4, 1},
                            {0, 4, 1}, {6, 4, 1},  {4, 2, 1}, {4, 3, 1},  {4, 0, 1}, {4, 6, 1}};
    for (const auto &c : cases) {
        const bool accepted = c[0] * c[1] == 32;
        const std::string size = std::to_string(c[0]) + "x" + std::to_string(c[1]);
        Sig g = NumPy(accepted ? "grid" + size : "grid4x8");
        std::vector<Complex> cells(32);
        std::vector<Complex *> rows;
        for (int k = 0; k < 32; k++)
            cells[k] = {g.re[k], g.im[k]};
        for (int k = 0; k < 32; k += accepted ? c[1] : 8)
            rows.push_back(&cells[k]);
        EXPECT_EQ(FFT2D(rows.data(), c[0], c[1], c[2]), accepted ? TRUE : FALSE) << size;
        for (int k = 0; k < 32; k++)
            g.re[k] = cells[k].real, g.im[k] = cells[k].imag;
        EXPECT_LT(MaxDiff(g, NumPy("fft2d_" + size + "_" + std::to_string(c[2])), true), kFftTol) << size;
    }
}

TEST(Fft, InverseRestoresSignalAndParsevalHolds)
{
    for (int m = 0; m <= 12; m++) {
        const int n = 1 << m;
        Sig s = NumPy("noise"), t;
        s.re.resize(n), s.im.resize(n), t = s;
        FFT(1, m, t.re.data(), t.im.data());
        double before = 0, after = 0; // Parseval
        for (int i = 0; i < n; i++)
            before += s.re[i] * s.re[i] + s.im[i] * s.im[i], after += t.re[i] * t.re[i] + t.im[i] * t.im[i];
        EXPECT_NEAR(before, n * after, 1e-13 * before) << n;
        FFT(-1, m, t.re.data(), t.im.data());
        // The half-angle recurrence loses digits in 1 - cos(pi / 2^l): the error grows like 4^m eps.
        EXPECT_LT(MaxDiff(t, s, true), kFftTol + std::ldexp(DBL_EPSILON, 2 * m - 4)) << n;
    }
    // Sizes that hold nothing read nothing.
    EXPECT_EQ(FFT(1, -1, nullptr, nullptr), TRUE);
    EXPECT_EQ(DFT(1, 0, nullptr, nullptr), TRUE);
    EXPECT_EQ(GSolve(nullptr, 0, nullptr), TRUE);
    EXPECT_EQ(AutoCorr(nullptr, 0, 1), 0);
    EXPECT_EQ(CrossCorr(nullptr, nullptr, -3, 1), 0);
}

TEST(Correlation, MatchesNumPyCorrelateAndRoll)
{
    const Vec &lags = NumPy("lags").re;
    for (const std::string s : {"8", "7"}) {
        const int n = std::stoi(s);
        const Vec &x = NumPy("xy" + s).re, &y = NumPy("xy" + s).im;
        const Sig &circular = NumPy("autocross" + s);
        Vec r(n + 1, -99.0);
        Correlate(x.data(), y.data(), n, r.data());
        for (int k = 0; k <= n / 2 * 2; k++) // 2 (n / 2) values only
            EXPECT_NEAR(r[k], k < n / 2 * 2 ? NumPy("corr" + s).re[k] : -99.0, 1e-14) << n << " " << k;
        for (size_t k = 0; k < lags.size(); k++) {
            EXPECT_NEAR(AutoCorr(x.data(), n, int(lags[k])), circular.re[k], 1e-13) << n << " " << lags[k];
            EXPECT_NEAR(CrossCorr(x.data(), y.data(), n, int(lags[k])), circular.im[k], 1e-13) << lags[k];
        }
    }
}

TEST(GSolve, RandomResidualsPivotingAndSingularThreshold)
{
    const Vec &noise = NumPy("noise").re;
    for (int n = 1; n <= 12; n++) {
        Vec cols(noise.begin(), noise.begin() + n * (n + 1)), x(n), residual(cols.end() - n, cols.end());
        std::vector<double *> a;
        for (int k = 0; k <= n; k++)
            a.push_back(&cols[k * n]);
        ASSERT_EQ(GSolve(a.data(), n, x.data()), TRUE) << n;
        for (int k = 0; k < n * n; k++)
            residual[k % n] -= noise[k] * x[k / n];
        EXPECT_LT(MaxDiff({residual, Vec(n)}, {Vec(n), Vec(n)}), 1e-12) << n;
    }
    // Worked by hand {column 0, column 1, right-hand side, accepted, eliminated columns, solution}: a
    // tie keeps the first row, a tiny leading entry is swapped away, 1e-5 is a pivot but the double
    // below is not, and a singular system leaves x alone.
    const double e = 1e-6, b = std::nextafter(1e-5, 0.0);
    double cases[][15] = {
        {2, -2, 1, 3, 3, 1, TRUE, 2, 0, 1, 4, 3, 4, 1, 1},
        {e, 1, 1, 1, 1, 2, TRUE, 1, 0, 1, 1 - e, 2, 1 - 2 * e, 1 / (1 - e), (1 - 2 * e) / (1 - e)},
        {1, 0, 0, 1e-5, 2, 3e-5, TRUE, 1, 0, 0, 1e-5, 2, 3e-5, 2, 3},
        {1, 0, 0, b, 2, 3e-5, FALSE, 1, 0, 0, b, 2, 3e-5, -7, -7},
        {1.5, 3, 2.385, 4.77, 1, 2, FALSE, 3, 0, 4.77, 0, 2, 0, -7, -7}};
    for (auto &c : cases) {
        double *a[3] = {c, c + 2, c + 4}, x[2] = {-7, -7};
        EXPECT_EQ(GSolve(a, 2, x), int(c[6]));
        for (int k = 0; k < 8; k++)
            EXPECT_NEAR(k < 6 ? c[k] : x[k - 6], c[7 + k], 1e-15) << c[7] << " " << k;
    }
}
