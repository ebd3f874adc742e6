// Random number generators: the Marsaglia-Zaman stream, its backward steps,
// the derived deviates and the integer hash.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <utility>
#include <vector>

#include "random.h"

namespace {

constexpr double kTwo24 = 16777216.0;

std::vector<double> Draw(int n)
{
    std::vector<double> v(static_cast<size_t>(n));
    for (auto &x : v)
        x = RandomUniform();
    return v;
}

struct Moments {
    double mean, variance;
};

Moments MomentsOf(const std::vector<double> &v)
{
    double s = 0, ss = 0;
    for (double x : v)
        s += x;
    const double mean = s / static_cast<double>(v.size());
    for (double x : v)
        ss += (x - mean) * (x - mean);
    return {mean, ss / static_cast<double>(v.size() - 1)};
}

// Run in a fresh process: 0 when the first call of f (and the draw after it)
// gives what the same calls give after seeding with 1802 and 9373.
int FirstCallMatchesExplicitSeeding(const std::function<double()> &f)
{
    const double a = f(), b = RandomUniform();
    RandomInitialise(1802, 9373);
    const double c = f(), d = RandomUniform();
    return a == c && b == d ? 0 : 1;
}

} // namespace

// The check printed with the generator by F. James, "A review of pseudorandom
// number generators", Comput. Phys. Commun. 60 (1990): seeds 1802 and 9373,
// 20000 draws discarded, then six values times 4096 x 4096.
TEST(Random, PublishedCheckAfter20000Draws)
{
    const double expected[6] = {6533892.0, 14220222.0, 7275067.0, 6172232.0, 8354498.0, 10633180.0};
    RandomInitialise(1802, 9373);
    for (int i = 0; i < 20000; i++)
        RandomUniform();
    for (double e : expected)
        EXPECT_EQ(RandomUniform() * 4096.0 * 4096.0, e);

    // The same through the skipping and the 24-bit forms, after re-seeding.
    RandomInitialise(1802, 9373);
    ForwardRandomUniform(20000);
    for (double e : expected)
        EXPECT_EQ(rand24(), static_cast<unsigned int>(e));
}

// Each drawing entry point, called first in a fresh process, seeds the stream
// with 1802 and 9373: what it returns, and the draw after it, equal what an
// explicit seeding gives. The children are fresh processes (the threadsafe
// death-test style re-executes this program) so the state is still unseeded.
TEST(Random, FirstDrawSeedsWithDefaults)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::vector<std::pair<const char *, std::function<double()>>> entries = {
        {"RandomUniform", [] { return RandomUniform(); }},
        {"RandomDouble", [] { return RandomDouble(-2.385, 7.5); }},
        {"RandomInt", [] { return static_cast<double>(RandomInt(-1000, 1000)); }},
        {"RandomGaussian", [] { return RandomGaussian(2.385, 0.75); }},
        {"rand24", [] { return static_cast<double>(rand24()); }},
        {"ForwardRandomUniform", [] { ForwardRandomUniform(20000); return 0.0; }},
    };
    for (const auto &entry : entries) {
        EXPECT_EXIT(std::exit(FirstCallMatchesExplicitSeeding(entry.second)),
                    ::testing::ExitedWithCode(0), "")
            << entry.first;
    }
}

TEST(Random, InvalidSeedsAreReplacedByDefaults)
{
    RandomInitialise(1802, 9373);
    const std::vector<double> reference = Draw(200);
    const std::pair<int, int> invalid[] = {{31329, 0},      {-1, 9373},       {1802, 30082},
                                           {0, -1},         {INT_MIN, 5},     {5, INT_MAX},
                                           {100000, 100000}};
    for (const auto &seed : invalid) {
        RandomInitialise(seed.first, seed.second);
        EXPECT_EQ(Draw(200), reference) << seed.first << ", " << seed.second;
    }
    // The largest and smallest valid seeds are kept: each gives its own stream.
    const std::pair<int, int> valid[] = {{31328, 30081}, {0, 0}, {0, 30081}, {31328, 0}};
    for (const auto &seed : valid) {
        RandomInitialise(seed.first, seed.second);
        EXPECT_NE(Draw(200), reference) << seed.first << ", " << seed.second;
    }
}

TEST(Random, ReseedingRestartsTheStream)
{
    RandomInitialise(4711, 2385);
    const std::vector<double> first = Draw(500);
    Draw(1234);
    RandomInitialise(4711, 2385);
    EXPECT_EQ(Draw(500), first);
}

TEST(Random, UniformsAreMultiplesOf2ToMinus24InUnitInterval)
{
    RandomInitialise(17, 29);
    for (double x : Draw(100000)) {
        ASSERT_GE(x, 0.0);
        ASSERT_LT(x, 1.0);
        const double scaled = x * kTwo24;
        ASSERT_EQ(scaled, std::floor(scaled)) << x;
    }
}

// Fixed seeds make these exact repeatable runs; the tolerances are several
// standard errors wide (1e6 uniforms: mean error ~3e-4, variance ~7e-5).
TEST(Random, UniformMeanVarianceAndHistogram)
{
    RandomInitialise(1234, 5678);
    const std::vector<double> v = Draw(1000000);
    const Moments m = MomentsOf(v);
    EXPECT_NEAR(m.mean, 0.5, 0.0015);
    EXPECT_NEAR(m.variance, 1.0 / 12.0, 0.0005);

    // Chi-square over 100 equal bins: 99 degrees of freedom, the 99.9 %
    // point is about 148.2.
    std::vector<double> bins(100, 0.0);
    for (double x : v)
        bins[static_cast<size_t>(x * 100)] += 1;
    double chi2 = 0;
    for (double b : bins)
        chi2 += (b - 10000.0) * (b - 10000.0) / 10000.0;
    EXPECT_LT(chi2, 148.2);

    // Successive pairs are uncorrelated.
    double sxy = 0;
    for (size_t i = 1; i < v.size(); i++)
        sxy += (v[i - 1] - 0.5) * (v[i] - 0.5);
    EXPECT_NEAR(sxy / static_cast<double>(v.size() - 1) * 12.0, 0.0, 0.005);
}

TEST(Random, GaussianMeanSpreadAndTails)
{
    RandomInitialise(2385, 1101);
    const double mean = 2.385, sd = 0.75;
    std::vector<double> v(400000);
    for (auto &x : v)
        x = RandomGaussian(mean, sd);
    const Moments m = MomentsOf(v);
    EXPECT_NEAR(m.mean, mean, 0.005);
    EXPECT_NEAR(std::sqrt(m.variance), sd, 0.005);
    // Fractions within one and two standard deviations: 0.6827 and 0.9545.
    double in1 = 0, in2 = 0;
    for (double x : v) {
        in1 += std::fabs(x - mean) < sd;
        in2 += std::fabs(x - mean) < 2 * sd;
    }
    EXPECT_NEAR(in1 / static_cast<double>(v.size()), 0.6827, 0.003);
    EXPECT_NEAR(in2 / static_cast<double>(v.size()), 0.9545, 0.002);
    // Symmetric: as many above the mean as below.
    double above = 0;
    for (double x : v)
        above += x > mean;
    EXPECT_NEAR(above / static_cast<double>(v.size()), 0.5, 0.003);
}

TEST(Random, RandomIntCoversTheClosedRangeEvenly)
{
    RandomInitialise(99, 77);
    std::vector<int> count(7, 0);
    for (int i = 0; i < 60000; i++) {
        const int r = RandomInt(1, 6);
        ASSERT_GE(r, 1);
        ASSERT_LE(r, 6);
        count[static_cast<size_t>(r)]++;
    }
    for (int face = 1; face <= 6; face++)
        EXPECT_NEAR(count[static_cast<size_t>(face)], 10000, 400) << face;

    for (int i = 0; i < 1000; i++)
        ASSERT_EQ(RandomInt(-3, -3), -3);
}

// lower + trunc(uniform x (upper - lower + 1)): with the bounds reversed the
// width is negative and truncation toward zero keeps the values in
// [upper + 1, lower]; the extreme int range must not overflow.
TEST(Random, RandomIntEdgeRanges)
{
    RandomInitialise(5, 6);
    std::vector<int> seen(6, 0);
    for (int i = 0; i < 3000; i++) {
        const int r = RandomInt(5, 1);
        ASSERT_GE(r, 2);
        ASSERT_LE(r, 5);
        seen[static_cast<size_t>(r)]++;
    }
    EXPECT_EQ(seen[2], 0);
    EXPECT_GT(seen[3], 0);
    EXPECT_GT(seen[5], 0);

    double negative = 0;
    for (int i = 0; i < 10000; i++)
        negative += RandomInt(INT_MIN, INT_MAX) < 0;
    EXPECT_NEAR(negative / 10000, 0.5, 0.03);

    // Each value is exactly lower + trunc(u x width) for the draw behind it.
    for (int i = 0; i < 1000; i++) {
        const int r = RandomInt(-7, 12);
        const double uni = UnRandomUniform();
        RandomUniform();
        ASSERT_EQ(r, -7 + static_cast<int>(uni * 20));
    }
}

TEST(Random, RandomDoubleScalesTheUniform)
{
    RandomInitialise(31, 41);
    double s = 0;
    for (int i = 0; i < 100000; i++) {
        const double d = RandomDouble(-2.5, 7.25);
        ASSERT_GE(d, -2.5);
        ASSERT_LT(d, 7.25);
        ASSERT_EQ(d, -2.5 + UnRandomUniform() * 9.75);
        RandomUniform();
        s += d;
    }
    EXPECT_NEAR(s / 100000, 2.375, 0.03);
}

TEST(Random, Rand24IsTheUniformScaledTo24Bits)
{
    RandomInitialise(11, 13);
    unsigned int largest = 0;
    for (int i = 0; i < 200000; i++) {
        const unsigned int r = rand24();
        ASSERT_LE(r, 16777215u);
        largest = std::max(largest, r);
        ASSERT_EQ(unRand24(), r);
        ASSERT_EQ(RandomUniform() * kTwo24, static_cast<double>(r));
    }
    EXPECT_GT(largest, 16777215u - 2000u);
}

TEST(Random, BackupRepeatsTheLastDraws)
{
    RandomInitialise(1802, 9373);
    ForwardRandomUniform(100);
    const std::vector<double> three = Draw(3);
    BackupRandomUniform(3);
    EXPECT_EQ(Draw(3), three);

    const double last = RandomUniform();
    EXPECT_EQ(UnRandomUniform(), last);
    EXPECT_EQ(RandomUniform(), last);

    // n of 0 changes nothing in either direction.
    const double next = RandomUniform();
    BackupRandomUniform(1);
    BackupRandomUniform(0);
    ForwardRandomUniform(0);
    EXPECT_EQ(RandomUniform(), next);
}

// A long walk over a recorded stretch of the stream, forwards and backwards
// in random strides (every backward form, also across many turns of the
// 97-entry table and of the lazily reduced sequence value): the value at
// every position must be reproduced exactly, whatever the route.
TEST(Random, BackAndForthWalkReproducesEveryValue)
{
    const std::pair<int, int> seeds[] = {{1802, 9373}, {0, 0}, {31328, 30081}, {12345, 6789}};
    std::mt19937 walk(20240611u);
    for (const auto &seed : seeds) {
        RandomInitialise(seed.first, seed.second);
        ForwardRandomUniform(777);
        const int n = 5000;
        const std::vector<double> v = Draw(n);
        // Back to the start value by value, then forward again.
        for (int pos = n; pos > 0; pos--)
            ASSERT_EQ(UnRandomUniform(), v[static_cast<size_t>(pos - 1)]) << pos;
        ASSERT_EQ(Draw(n), v);

        int pos = n;
        for (int step = 0; step < 20000; step++) {
            const int k = std::uniform_int_distribution<int>(0, 300)(walk);
            switch (std::uniform_int_distribution<int>(0, 5)(walk)) {
            case 0: /* draw forwards */
                for (int i = 0; i < k && pos < n; i++, pos++)
                    ASSERT_EQ(RandomUniform(), v[static_cast<size_t>(pos)]) << pos;
                break;
            case 1: { /* skip forwards */
                const int m = std::min(k, n - pos);
                ForwardRandomUniform(m);
                pos += m;
                break;
            }
            case 2: /* undo value by value */
                for (int i = 0; i < k && pos > 0; i++, pos--)
                    ASSERT_EQ(UnRandomUniform(), v[static_cast<size_t>(pos - 1)]) << pos;
                break;
            case 3: { /* skip backwards */
                const int m = std::min(k, pos);
                BackupRandomUniform(m);
                pos -= m;
                break;
            }
            case 4: /* the 24-bit forms */
                if (pos > 0) {
                    ASSERT_EQ(static_cast<double>(unRand24()), v[static_cast<size_t>(pos - 1)] * kTwo24);
                    pos--;
                }
                if (pos < n) {
                    ASSERT_EQ(static_cast<double>(rand24()), v[static_cast<size_t>(pos)] * kTwo24);
                    pos++;
                }
                break;
            default: /* one step each way */
                if (pos < n) {
                    ASSERT_EQ(RandomUniform(), v[static_cast<size_t>(pos)]);
                    ASSERT_EQ(UnRandomUniform(), v[static_cast<size_t>(pos)]);
                }
                break;
            }
        }
        // The state itself is restored, not only the values: from wherever the
        // walk ended, return to the start and redraw the whole stretch, then
        // continue past it as the untouched stream does.
        BackupRandomUniform(pos);
        ASSERT_EQ(Draw(n), v);
        const std::vector<double> beyond = Draw(300);
        RandomInitialise(seed.first, seed.second);
        ForwardRandomUniform(777 + n);
        EXPECT_EQ(Draw(300), beyond);
    }
}

// Expected t values (the hash before scaling, 1 - t / 2^30) worked out with
// arbitrary-precision integers reduced modulo 2^32, the mixing done as x
// literal multiplications by x (by modular power for 2^31 - 1).
TEST(Random, PrimeNoise1MatchesWrapping32BitHash)
{
    const std::pair<int, double> cases[] = {
        {0, 1376312589},     {1, 1399160077},   {2, 1559092493},   {3, 1079475469},
        {7, 983399693},      {999, 1256029453}, {12345, 1801157901}, {65537, 325418253},
        {-1, 1353465101},    {-12345, 644431117}, {INT_MAX, 1399160077}, {INT_MIN, 1376312589},
    };
    for (const auto &cs : cases)
        EXPECT_EQ(PrimeNoise1(cs.first), 1.0 - cs.second / 1073741824.0) << cs.first;
    EXPECT_NEAR(PrimeNoise1(0), -0.2818, 1e-4);
}

TEST(Random, PrimeNoise1IsStatelessAndInHalfOpenRange)
{
    RandomInitialise(1, 2);
    const double before = RandomUniform();
    for (int x = -3000; x <= 3000; x++) {
        const double a = PrimeNoise1(x);
        ASSERT_GT(a, -1.0) << x;
        ASSERT_LE(a, 1.0) << x;
        ASSERT_EQ(PrimeNoise1(x), a);
    }
    // It does not touch the stream.
    BackupRandomUniform(1);
    EXPECT_EQ(RandomUniform(), before);
    // Enough factors of two in x << 13 times x^x wrap the product to zero,
    // so such x give PrimeNoise1(0).
    for (int x : {8, 16, 24, 1000, 4096})
        EXPECT_EQ(PrimeNoise1(x), PrimeNoise1(0)) << x;
}
