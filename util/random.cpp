#include "random.h"

#include <cmath>
#include <cstdint>

#include "types.h"

/* State of the generator, named as in James's publication. The lag table is
 * indexed 1 to 97 by i97 and j97 through Lag(); c runs down an arithmetic
 * sequence of step cd modulo cm. */
static double u[97];      /* lag table, entries in [0, 1) with 24 bits */
static double c;          /* current value of the arithmetic sequence */
static double cd;         /* its decrement, 7654321 / 16777216 */
static double cm;         /* its modulus, 16777213 / 16777216 */
static int i97;           /* first lag index, 1 to 97 */
static int j97;           /* second lag index, 1 to 97 */
static int test = FALSE;  /* TRUE once the state has been seeded */

namespace {

constexpr double kTwo24 = 16777216.0;

double &Lag(int index)
{
    return u[index - 1];
}

void EnsureInitialised()
{
    if (!test)
        RandomInitialise(1802, 9373);
}

/* One forward step of the lagged table and the sequence; returns the new
 * table entry (the draw before the sequence is subtracted). */
double StepForward()
{
    double uni = Lag(i97) - Lag(j97);
    if (uni <= 0.0)
        uni += 1.0;
    Lag(i97) = uni;
    if (--i97 == 0)
        i97 = 97;
    if (--j97 == 0)
        j97 = 97;
    c -= cd;
    if (c < 0.0)
        c += cm;
    return uni;
}

/* Undoes one forward step and returns the value that step drew. */
double StepBack()
{
    /* c is kept lazily reduced: after a backward step it may lie at or
     * above cm, which the next step in either direction accounts for. */
    if (c >= cm)
        c -= cm;
    c += cd;
    if (j97 == 97)
        j97 = 0;
    j97++;
    if (i97 == 97)
        i97 = 0;
    i97++;
    /* The forward step stored a - b (+1 when not positive); all values are
     * multiples of 2^-24 below 2, so these sums are exact. */
    const double a = Lag(i97), b = Lag(j97);
    if (a + b > 0.0 && a + b < 1.0)
        Lag(i97) = a + b;
    else
        Lag(i97) = a - 1.0 + b;
    double prev = c - cd;
    if (prev < 0.0)
        prev += cm;
    double r = a - prev;
    if (r < 0.0)
        r += 1.0;
    return r;
}

/* x^e modulo 2^32 by repeated squaring: the same product as multiplying by
 * x, e times, without e multiplications. */
uint32_t PowMod32(uint32_t x, uint32_t e)
{
    uint32_t result = 1;
    while (e) {
        if (e & 1u)
            result *= x;
        x *= x;
        e >>= 1;
    }
    return result;
}

} // namespace

void RandomInitialise(int ij, int kl)
{
    if (ij < 0 || ij > 31328 || kl < 0 || kl > 30081) {
        ij = 1802;
        kl = 9373;
    }
    int i = (ij / 177) % 177 + 2;
    int j = ij % 177 + 2;
    int k = (kl / 169) % 178 + 1;
    int l = kl % 169;
    for (int ii = 1; ii <= 97; ii++) {
        double s = 0.0, t = 0.5;
        for (int jj = 0; jj < 24; jj++) {
            const int m = (((i * j) % 179) * k) % 179;
            i = j;
            j = k;
            k = m;
            l = (53 * l + 1) % 169;
            if ((l * m) % 64 >= 32)
                s += t;
            t *= 0.5;
        }
        Lag(ii) = s;
    }
    c = 362436.0 / kTwo24;
    cd = 7654321.0 / kTwo24;
    cm = 16777213.0 / kTwo24;
    i97 = 97;
    j97 = 33;
    test = TRUE;
}

double RandomUniform(void)
{
    EnsureInitialised();
    double uni = StepForward() - c;
    if (uni < 0.0)
        uni += 1.0;
    return uni;
}

double RandomDouble(double lower, double upper)
{
    return lower + RandomUniform() * (upper - lower);
}

int RandomInt(int lower, int upper)
{
    /* The width upper - lower + 1 is formed in double, where it is exact,
     * so that no pair of ints overflows; the result then lies between lower
     * and upper (or upper + 1 when they are reversed) and fits an int. */
    const double width = static_cast<double>(upper) - static_cast<double>(lower) + 1.0;
    return static_cast<int>(static_cast<double>(lower) + std::trunc(RandomUniform() * width));
}

double RandomGaussian(double mean, double stddev)
{
    /* Leva, "A fast normal random number generator", ACM TOMS 18 (1992):
     * accept the pair inside the inner bounding quadric at once, reject it
     * outside the outer one, and test the exact boundary only in between. */
    double ru, rv;
    for (;;) {
        ru = RandomUniform();
        rv = RandomUniform();
        if (ru <= 0.0 || rv <= 0.0) {
            ru = 1.0;
            rv = 1.0;
        }
        rv = 1.7156 * (rv - 0.5);
        const double x = ru - 0.449871;
        const double y = std::fabs(rv) + 0.386595;
        const double q = x * x + y * (0.196 * y - 0.25472 * x);
        if (q < 0.27597)
            break;
        if (q > 0.27846)
            continue;
        if (rv * rv <= -4.0 * std::log(ru) * ru * ru)
            break;
    }
    return mean + stddev * rv / ru;
}

unsigned int rand24(void)
{
    return static_cast<unsigned int>(RandomUniform() * 4096.0 * 4096.0);
}

void ForwardRandomUniform(int n)
{
    EnsureInitialised();
    for (int i = 0; i < n; i++)
        StepForward();
}

void BackupRandomUniform(int n)
{
    for (int i = 0; i < n; i++)
        StepBack();
}

double UnRandomUniform(void)
{
    return StepBack();
}

unsigned int unRand24(void)
{
    return static_cast<unsigned int>(StepBack() * 4096.0 * 4096.0);
}

double PrimeNoise1(int x)
{
    /* Wrapping 32-bit arithmetic on unsigned values: the signed original
     * overflows by design. The mixing step multiplies by x, x times. */
    const uint32_t ux = static_cast<uint32_t>(x);
    uint32_t n = ux << 13;
    if (x > 0)
        n *= PowMod32(ux, ux);
    const uint32_t t = (n * (n * n * 15731u + 789221u) + 1376312589u) & 0x7FFFFFFFu;
    return 1.0 - static_cast<double>(t) / 1073741824.0;
}
