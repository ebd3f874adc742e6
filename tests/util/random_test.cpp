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

std::vector<double> Draw(int n)
{
    std::vector<double> v(static_cast<size_t>(n));
    for (auto &x : v)
        x = RandomUniform();
    return v;
}

// Mean and (population) variance of n values of f.
std::pair<double, double> Moments(int n, const std::function<double()> &f)
{
    double s = 0, ss = 0;
    for (int i = 0; i < n; i++) {
        const double x = f();
        s += x;
        ss += x * x;
    }
    return {s / n, ss / n - (s / n) * (s / n)};
}

// Run in a fresh process: 0 when the first call of f (and the draw after it)
// gives what the same calls give after seeding with 1802 and 9373.
int FirstCallMatchesDefaultSeeds(const std::function<double()> &f)
{
    const double a = f(), b = RandomUniform();
    RandomInitialise(1802, 9373);
    const double c = f(), d = RandomUniform();
    return a == c && b == d ? 0 : 1;
}

} // namespace

// The check published with the generator by F. James, "A review of
// pseudorandom number generators", Comput. Phys. Commun. 60 (1990): seeds
// 1802 and 9373, 20000 draws, then six values times 4096 x 4096.
TEST(Random, PublishedCheckAfter20000Draws)
{
    const unsigned int expected[6] = {6533892, 14220222, 7275067, 6172232, 8354498, 10633180};
    RandomInitialise(1802, 9373);
    Draw(20000);
    for (unsigned int e : expected)
        EXPECT_EQ(RandomUniform() * 4096.0 * 4096.0, e);
    RandomInitialise(1802, 9373);
    ForwardRandomUniform(20000);
    for (unsigned int e : expected)
        EXPECT_EQ(rand24(), e);
}

// Each drawing entry point seeds the stream with the defaults when it is the
// first call of a process: the threadsafe death-test style runs each check
// in a freshly started copy of this program, where the stream is unseeded.
TEST(Random, FirstDrawSeedsWithDefaults)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::function<double()> entries[] = {
        [] { return RandomUniform(); },
        [] { return RandomDouble(-2.385, 7.5); },
        [] { return static_cast<double>(RandomInt(-1000, 1000)); },
        [] { return RandomGaussian(2.385, 0.75); },
        [] { return static_cast<double>(rand24()); },
        [] { ForwardRandomUniform(20000); return 0.0; },
    };
    for (const auto &f : entries)
        EXPECT_EXIT(std::exit(FirstCallMatchesDefaultSeeds(f)), ::testing::ExitedWithCode(0), "");
}

TEST(Random, InvalidSeedsAreReplacedByDefaults)
{
    RandomInitialise(1802, 9373);
    const std::vector<double> reference = Draw(200);
    const std::pair<int, int> invalid[] = {{31329, 0}, {-1, 9373}, {1802, 30082}, {0, -1}, {INT_MIN, INT_MAX}};
    for (const auto &s : invalid) {
        RandomInitialise(s.first, s.second);
        EXPECT_EQ(Draw(200), reference) << s.first << ", " << s.second;
    }
    // The extreme valid seeds are kept, each giving its own stream.
    for (const auto &s : {std::pair<int, int>{31328, 30081}, {0, 0}}) {
        RandomInitialise(s.first, s.second);
        EXPECT_NE(Draw(200), reference) << s.first << ", " << s.second;
    }
}

// Fixed seeds make these exact repeatable runs; tolerances are several
// standard errors wide.
TEST(Random, UniformsAre24BitFractionsWithTheRightMoments)
{
    RandomInitialise(1234, 5678);
    for (double x : Draw(100000)) {
        ASSERT_TRUE(x >= 0.0 && x < 1.0) << x;
        ASSERT_EQ(x * 16777216.0, std::floor(x * 16777216.0)) << x;
    }
    const auto m = Moments(1000000, [] { return RandomUniform(); });
    EXPECT_NEAR(m.first, 0.5, 0.0015);
    EXPECT_NEAR(m.second, 1.0 / 12.0, 0.0005);
    const auto d = Moments(100000, [] { return RandomDouble(-2.5, 7.25); });
    EXPECT_NEAR(d.first, 2.375, 0.03);
    EXPECT_NEAR(d.second, 9.75 * 9.75 / 12, 0.1);
}

TEST(Random, GaussianHasTheRequestedMeanAndSpread)
{
    RandomInitialise(2385, 1101);
    int within1 = 0;
    const auto m = Moments(400000, [&] {
        const double g = RandomGaussian(2.385, 0.75);
        within1 += std::fabs(g - 2.385) < 0.75;
        return g;
    });
    EXPECT_NEAR(m.first, 2.385, 0.005);
    EXPECT_NEAR(std::sqrt(m.second), 0.75, 0.005);
    EXPECT_NEAR(within1 / 400000.0, 0.6827, 0.003); // normal: 68.27 % within 1 sd
}

// lower + trunc(uniform x (upper - lower + 1)): each value of a closed range
// equally often; reversed bounds truncate toward zero into [upper + 1,
// lower]; the extreme int range must not overflow.
TEST(Random, RandomIntAndRand24Ranges)
{
    RandomInitialise(99, 77);
    std::vector<int> count(7, 0);
    for (int i = 0; i < 60000; i++) {
        const int r = RandomInt(1, 6);
        ASSERT_TRUE(r >= 1 && r <= 6) << r;
        count[static_cast<size_t>(r)]++;
    }
    for (int face = 1; face <= 6; face++)
        EXPECT_NEAR(count[static_cast<size_t>(face)], 10000, 400) << face;
    for (int i = 0; i < 3000; i++) {
        const int r = RandomInt(5, 1);
        ASSERT_TRUE(r >= 3 && r <= 5) << r;
        RandomInt(INT_MIN, INT_MAX);
        ASSERT_EQ(RandomInt(-3, -3), -3);
    }
    unsigned int largest = 0;
    for (int i = 0; i < 200000; i++)
        largest = std::max(largest, rand24());
    EXPECT_LE(largest, 16777215u);
    EXPECT_GT(largest, 16777215u - 2000u);
}

// A recorded stretch of the stream, walked forwards and backwards in random
// strides with every stepping form, across many turns of the 97-entry table:
// the value at each position must come back exactly, whatever the route.
TEST(Random, BackAndForthWalkReproducesEveryValue)
{
    std::mt19937 walk(20240611u);
    for (const auto &seed : {std::pair<int, int>{1802, 9373}, {0, 0}, {31328, 30081}}) {
        RandomInitialise(seed.first, seed.second);
        ForwardRandomUniform(777);
        const int n = 5000;
        const std::vector<double> v = Draw(n);
        auto at = [&](int pos) { return v[static_cast<size_t>(pos)]; };
        for (int pos = n; pos > 0; pos--)
            ASSERT_EQ(UnRandomUniform(), at(pos - 1)) << pos;
        ASSERT_EQ(Draw(3), std::vector<double>(v.begin(), v.begin() + 3));
        int pos = 3;
        for (int step = 0; step < 20000; step++) {
            const int k = std::uniform_int_distribution<int>(0, 300)(walk);
            switch (std::uniform_int_distribution<int>(0, 4)(walk)) {
            case 0:
                for (int i = 0; i < k && pos < n; i++, pos++)
                    ASSERT_EQ(RandomUniform(), at(pos)) << pos;
                break;
            case 1:
                for (int i = 0; i < k && pos > 0; i++, pos--)
                    ASSERT_EQ(UnRandomUniform(), at(pos - 1)) << pos;
                break;
            case 2:
                ForwardRandomUniform(std::min(k, n - pos));
                pos += std::min(k, n - pos);
                break;
            case 3:
                BackupRandomUniform(std::min(k, pos));
                pos -= std::min(k, pos);
                break;
            default:
                if (pos > 0 && pos < n) {
                    ASSERT_EQ(unRand24(), at(pos - 1) * 16777216.0);
                    ASSERT_EQ(rand24(), at(pos - 1) * 16777216.0);
                }
            }
        }
        // The whole state is restored: back to the start, the stretch and
        // what follows it match the untouched stream.
        BackupRandomUniform(pos);
        ASSERT_EQ(Draw(n), v);
        const std::vector<double> beyond = Draw(300);
        RandomInitialise(seed.first, seed.second);
        ForwardRandomUniform(777 + n);
        EXPECT_EQ(Draw(300), beyond);
    }
}

// Hash values t (PrimeNoise1 is 1 - t / 2^30) worked out with
// arbitrary-precision integers reduced modulo 2^32, the mixing done as x
// literal multiplications by x (by modular power for INT_MAX).
TEST(Random, PrimeNoise1MatchesWrapping32BitHash)
{
    const std::pair<int, double> cases[] = {
        {0, 1376312589},      {1, 1399160077},   {2, 1559092493},       {3, 1079475469},
        {7, 983399693},       {999, 1256029453}, {12345, 1801157901},   {-1, 1353465101},
        {-12345, 644431117},  {INT_MAX, 1399160077}, {INT_MIN, 1376312589},
    };
    for (const auto &cs : cases)
        EXPECT_EQ(PrimeNoise1(cs.first), 1.0 - cs.second / 1073741824.0) << cs.first;
    // Enough factors of two in (x << 13) x^x wrap the product to zero.
    for (int x : {8, 24, 1000})
        EXPECT_EQ(PrimeNoise1(x), PrimeNoise1(0)) << x;
    for (int x = -3000; x <= 3000; x++)
        ASSERT_TRUE(PrimeNoise1(x) > -1.0 && PrimeNoise1(x) <= 1.0) << x;
}
