// Sound file writers: exact header bytes and lengths, the sample conversion
// rules, and SoX reading every file back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "sound.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Runs a writer on a scratch stream and returns the bytes it wrote.
Bytes Written(const std::function<void(FILE *)> &write)
{
    FILE *f = std::tmpfile();
    EXPECT_NE(f, nullptr);
    write(f);
    std::fflush(f);
    Bytes b(static_cast<size_t>(std::ftell(f)));
    std::rewind(f);
    EXPECT_EQ(std::fread(b.data(), 1, b.size(), f), b.size());
    std::fclose(f);
    return b;
}

Bytes Aiff(const std::vector<double> &s, int rate)
{
    return Written([&](FILE *f) { Write_AIFF(f, s.data(), static_cast<int>(s.size()), rate); });
}

Bytes Au(const std::vector<double> &s, int rate)
{
    return Written([&](FILE *f) { Write_AU(f, s.data(), static_cast<int>(s.size()), rate); });
}

Bytes Wave(const std::vector<float> &s, int rate)
{
    return Written([&](FILE *f) { Write_WAVE(f, s.data(), static_cast<int>(s.size()), rate); });
}

// 16-bit two's-complement samples from offset on.
std::vector<int> SamplesBE(const Bytes &b, size_t offset)
{
    std::vector<int> s;
    for (size_t i = offset; i + 1 < b.size(); i += 2)
        s.push_back(static_cast<int16_t>(static_cast<uint16_t>(b[i] << 8 | b[i + 1])));
    return s;
}

std::vector<int> SamplesLE(const Bytes &b, size_t offset)
{
    std::vector<int> s;
    for (size_t i = offset; i + 1 < b.size(); i += 2)
        s.push_back(static_cast<int16_t>(static_cast<uint16_t>(b[i + 1] << 8 | b[i])));
    return s;
}

Bytes Head(const Bytes &b, size_t n)
{
    return Bytes(b.begin(), b.begin() + static_cast<long>(std::min(n, b.size())));
}

std::vector<double> Ramp(int n)
{
    std::vector<double> s(static_cast<size_t>(n));
    for (int i = 0; i < n; i++)
        s[static_cast<size_t>(i)] = -3.0 + 8.0 * i / (n - 1);
    return s;
}

} // namespace

TEST(Sound, AiffHeaderBytes)
{
    const Bytes b = Aiff(Ramp(10), 22050);
    ASSERT_EQ(b.size(), 74u); // 54 + 2n
    const Bytes header = {
        'F', 'O', 'R', 'M', //
        0, 0, 0, 66,        // form size 2n + 46
        'A', 'I', 'F', 'F', //
        'C', 'O', 'M', 'M', //
        0, 0, 0, 18,        // chunk size
        0, 1,               // channels
        0, 0, 0, 10,        // sample frames
        0, 16,              // bits per sample
        0x40, 0x0D, 0xAC, 0x44, 0, 0, 0, 0, 0, 0, // 22050 as 80-bit extended
        'S', 'S', 'N', 'D', //
        0, 0, 0, 28,        // chunk size 2n + 8
        0, 0, 0, 0,         // offset
        0, 0, 0, 0,         // block size
    };
    EXPECT_EQ(Head(b, 54), header);
}

// Only three rates can be expressed; every other request says 44100.
TEST(Sound, AiffRateFieldTakesOnlyThreeValues)
{
    const std::pair<int, int> cases[] = {{11025, 0x0C}, {22050, 0x0D}, {44100, 0x0E},
                                         {8000, 0x0E},  {48000, 0x0E}, {0, 0x0E}, {-1, 0x0E}};
    for (const auto &cs : cases) {
        const Bytes b = Aiff({1.0, 2.0}, cs.first);
        const Bytes want = {0x40, static_cast<unsigned char>(cs.second), 0xAC, 0x44, 0, 0, 0, 0, 0, 0};
        EXPECT_EQ(Bytes(b.begin() + 28, b.begin() + 38), want) << cs.first;
    }
}

TEST(Sound, AuHeaderBytes)
{
    const Bytes b = Au(Ramp(10), 8000);
    ASSERT_EQ(b.size(), 44u); // 24 + 2n
    const Bytes header = {
        '.', 's', 'n', 'd', //
        0, 0, 0, 24,        // header size (SoX warns that Sun's layout asks for 28,
                            // with an annotation, but reads the file)
        0, 0, 0, 20,        // data size 2n
        0, 0, 0, 3,         // 16-bit linear
        0, 0, 0x1F, 0x40,   // 8000 samples per second
        0, 0, 0, 1,         // channels
    };
    EXPECT_EQ(Head(b, 24), header);
}

TEST(Sound, WaveHeaderBytes)
{
    const Bytes b = Wave(std::vector<float>(10, 0.25f), 44100);
    ASSERT_EQ(b.size(), 64u); // 44 + 2n
    const Bytes header = {
        'R', 'I', 'F', 'F',   //
        56, 0, 0, 0,          // size 2n + 36
        'W', 'A', 'V', 'E',   //
        'f', 'm', 't', ' ',   //
        16, 0, 0, 0,          // chunk size
        1, 0,                 // PCM
        1, 0,                 // channels
        0x44, 0xAC, 0, 0,     // 44100 samples per second
        0x88, 0x58, 0x01, 0,  // 88200 bytes per second
        2, 0,                 // block align
        16, 0,                // bits per sample
        'd', 'a', 't', 'a',   //
        20, 0, 0, 0,          // data size 2n
    };
    EXPECT_EQ(Head(b, 44), header);
    EXPECT_EQ(SamplesLE(b, 44), std::vector<int>(10, 8190));
}

TEST(Sound, NoSamplesGiveBareHeaders)
{
    const std::vector<double> one = {2.385};
    for (int n : {0, -5}) {
        const Bytes aiff = Written([&](FILE *f) { Write_AIFF(f, one.data(), n, 11025); });
        ASSERT_EQ(aiff.size(), 54u);
        EXPECT_EQ(Bytes(aiff.begin() + 4, aiff.begin() + 8), Bytes({0, 0, 0, 46}));
        EXPECT_EQ(Bytes(aiff.begin() + 22, aiff.begin() + 26), Bytes({0, 0, 0, 0}));
        EXPECT_EQ(Bytes(aiff.begin() + 42, aiff.begin() + 46), Bytes({0, 0, 0, 8}));
        const Bytes au = Written([&](FILE *f) { Write_AU(f, one.data(), n, 8000); });
        ASSERT_EQ(au.size(), 24u);
        EXPECT_EQ(Bytes(au.begin() + 8, au.begin() + 12), Bytes({0, 0, 0, 0}));
        const std::vector<float> fone = {0.5f};
        const Bytes wave = Written([&](FILE *f) { Write_WAVE(f, fone.data(), n, 8000); });
        ASSERT_EQ(wave.size(), 44u);
        EXPECT_EQ(Bytes(wave.begin() + 4, wave.begin() + 8), Bytes({36, 0, 0, 0}));
        EXPECT_EQ(Bytes(wave.begin() + 40, wave.begin() + 44), Bytes({0, 0, 0, 0}));
    }
}

// The range maps onto +/-32760 about its mid-point: -3..5 has mid 1 and
// half-width 4, so each unit step is 8190.
TEST(Sound, NormalisationMapsTheRangeOntoPlusMinus32760)
{
    const std::vector<double> ramp = {-3, -2, -1, 0, 1, 2, 3, 4, 5};
    const std::vector<int> want = {-32760, -24570, -16380, -8190, 0, 8190, 16380, 24570, 32760};
    EXPECT_EQ(SamplesBE(Au(ramp, 8000), 24), want);
    EXPECT_EQ(SamplesBE(Aiff(ramp, 8000), 54), want);

    // Truncation toward zero: 0, 1, 10, 11 have mid 5.5 and half-width 5.5,
    // so 1 and 10 map to -/+26803.6..., written as -/+26803.
    const std::vector<double> odd = {0, 1, 10, 11};
    const std::vector<int> want_odd = {-32760, -26803, 26803, 32760};
    EXPECT_EQ(SamplesBE(Au(odd, 8000), 24), want_odd);
    EXPECT_EQ(SamplesBE(Aiff(odd, 8000), 54), want_odd);

    // The larger side sets the scale: -1..3 about mid 1 is symmetric, but a
    // single sample is a constant and is written as zero.
    EXPECT_EQ(SamplesBE(Au({-1, 3, 2}, 8000), 24), std::vector<int>({-32760, 32760, 16380}));
    EXPECT_EQ(SamplesBE(Au({2.385}, 8000), 24), std::vector<int>({0}));
}

TEST(Sound, ConstantSignalIsWrittenAsZeros)
{
    for (double v : {0.0, 2.385, -1e6, 1e20}) {
        const std::vector<double> flat(7, v);
        EXPECT_EQ(SamplesBE(Au(flat, 8000), 24), std::vector<int>(7, 0)) << v;
        EXPECT_EQ(SamplesBE(Aiff(flat, 8000), 54), std::vector<int>(7, 0)) << v;
    }
}

// Data outside what a double can scale (NaN, infinities) must not produce an
// undefined conversion; NaN is written as silence and nothing leaves the scale.
TEST(Sound, NonFiniteSamplesStayWithinTheScale)
{
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<double> cases[] = {
        {0, std::nan(""), 1}, {std::nan(""), 1, 2}, {0, inf, 1}, {-inf, inf}, {1e308, -1e308, 1.7e308}};
    for (const auto &s : cases) {
        const Bytes b = Au(s, 8000);
        ASSERT_EQ(b.size(), 24 + 2 * s.size());
        for (int v : SamplesBE(b, 24)) {
            EXPECT_GE(v, -32760);
            EXPECT_LE(v, 32760);
        }
    }
    EXPECT_EQ(SamplesBE(Au({0, std::nan(""), 1}, 8000), 24), std::vector<int>({-32760, 0, 32760}));
}

// WAVE clamps to [-1, 1] and scales by 32760 without normalising; the
// product of a float and 32760 is exact, then truncated toward zero
// (-0.7f is -0.699999988..., so -22931.9996 gives -22931).
TEST(Sound, WaveClampsAndTruncates)
{
    const std::vector<float> s = {-2.0f, -1.0f, 0.5f, 3.0f, -0.7f, 0.3f, 1.0f, 0.0f, std::nanf("")};
    const std::vector<int> want = {-32760, -32760, 16380, 32760, -22931, 9828, 32760, 0, 0};
    EXPECT_EQ(SamplesLE(Wave(s, 8000), 44), want);
}

TEST(Sound, LengthsForTenSamples)
{
    EXPECT_EQ(Aiff(Ramp(10), 8000).size(), 74u);
    EXPECT_EQ(Au(Ramp(10), 8000).size(), 44u);
    EXPECT_EQ(Wave(std::vector<float>(10, 0.0f), 8000).size(), 64u);
}

// ---------------------------------------------------------------- SoX

namespace {

const char *const kSox = "/usr/bin/sox";
const char *const kSoxi = "/usr/bin/soxi";

bool HaveSox()
{
    const bool ok = testutil::HaveCommand(kSox) && testutil::HaveCommand(kSoxi);
    if (!ok)
        ADD_FAILURE() << "sox/soxi not found: run scripts/install-deps";
    return ok;
}

std::string Soxi(const std::string &flag, const std::string &path)
{
    const testutil::RunResult r = testutil::Run({kSoxi, flag, path});
    EXPECT_EQ(r.status, 0) << r.err;
    std::string out = r.out;
    while (!out.empty() && (out.back() == '\n' || out.back() == ' '))
        out.pop_back();
    return out;
}

// The samples as SoX decodes them, converted to raw signed 16-bit
// little-endian (no bit-depth change, so no dither).
std::vector<int> SoxSamples(const std::string &path)
{
    const testutil::RunResult r =
        testutil::Run({kSox, "-V1", path, "-t", "raw", "-e", "signed", "-b", "16", "-L", "-"});
    EXPECT_EQ(r.status, 0) << r.err;
    return SamplesLE(Bytes(r.out.begin(), r.out.end()), 0);
}

// A test signal with a high-entropy shape and an off-centre range.
std::vector<double> Signal(int n)
{
    std::vector<double> s(static_cast<size_t>(n));
    for (int i = 0; i < n; i++)
        s[static_cast<size_t>(i)] = 2.385 * std::sin(i * 0.1) + 0.5 * std::cos(i * 0.37) - 1.25;
    return s;
}

// The normalisation rule, stated independently of the writer: the range
// [lo, hi] maps linearly onto [-32760, 32760], truncated toward zero.
std::vector<int> Normalised(const std::vector<double> &s)
{
    double lo = s[0], hi = s[0];
    for (double v : s) {
        lo = std::min(lo, v);
        hi = std::max(hi, v);
    }
    std::vector<int> out;
    for (double v : s)
        out.push_back(static_cast<int>((v - (lo + hi) / 2) * 32760 / ((hi - lo) / 2)));
    return out;
}

struct SoundFile {
    std::string path;
    int rate;
    std::vector<int> samples;
};

} // namespace

TEST(Sound, SoxReadsEveryFormatAsOneChannel16BitAtTheDeclaredRate)
{
    if (!HaveSox())
        return;
    testutil::TempDir dir;
    const int n = 1001;
    const std::vector<double> sig = Signal(n);
    std::vector<float> fsig(sig.size());
    for (size_t i = 0; i < sig.size(); i++)
        fsig[i] = static_cast<float>(sig[i] / 3.0);
    fsig[3] = -1.5f; // clamped
    fsig[4] = 1.5f;

    std::vector<int> wave_want;
    for (float v : fsig)
        wave_want.push_back(v < -1 ? -32760 : v > 1 ? 32760 : static_cast<int>(static_cast<double>(v) * 32760));

    const std::vector<int> norm = Normalised(sig);
    const SoundFile files[] = {
        {"asked8000.aiff", 44100, norm},
        {"rate11025.aiff", 11025, norm},
        {"rate22050.aiff", 22050, norm},
        {"rate8000.au", 8000, norm},
        {"rate48000.au", 48000, norm},
        {"rate16000.wav", 16000, wave_want},
    };
    const int asked[] = {8000, 11025, 22050, 8000, 48000, 16000};
    for (size_t k = 0; k < std::size(files); k++) {
        const std::string path = dir.file(files[k].path);
        FILE *f = std::fopen(path.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        if (path.size() > 4 && path.substr(path.size() - 4) == ".wav")
            Write_WAVE(f, fsig.data(), n, asked[k]);
        else if (path.substr(path.size() - 3) == ".au")
            Write_AU(f, sig.data(), n, asked[k]);
        else
            Write_AIFF(f, sig.data(), n, asked[k]);
        ASSERT_EQ(std::fclose(f), 0);

        SCOPED_TRACE(files[k].path);
        EXPECT_EQ(Soxi("-c", path), "1");
        EXPECT_EQ(Soxi("-b", path), "16");
        EXPECT_EQ(Soxi("-r", path), std::to_string(files[k].rate));
        EXPECT_EQ(Soxi("-s", path), std::to_string(n));
        EXPECT_EQ(Soxi("-e", path), "Signed Integer PCM");
        EXPECT_EQ(SoxSamples(path), files[k].samples);
    }
}
