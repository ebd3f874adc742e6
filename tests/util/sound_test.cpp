// Sound file writers: exact header bytes and lengths, the sample conversion
// rules, and SoX reading every file back.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "sound.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

enum Format { AIFF, AU, WAVE };
const size_t kHeader[] = {54, 24, 44};

constexpr int kAll = INT_MIN;

// The whole file a writer produces for the samples (floats for WAVE), all of
// them unless a count n is given.
Bytes Written(Format fmt, const std::vector<double> &s, int rate, int n = kAll)
{
    const std::vector<float> fs(s.begin(), s.end());
    if (n == kAll)
        n = static_cast<int>(s.size());
    FILE *f = std::tmpfile();
    if (fmt == AIFF)
        Write_AIFF(f, s.data(), n, rate);
    else if (fmt == AU)
        Write_AU(f, s.data(), n, rate);
    else
        Write_WAVE(f, fs.data(), n, rate);
    Bytes b(static_cast<size_t>(std::ftell(f)));
    std::rewind(f);
    EXPECT_EQ(std::fread(b.data(), 1, b.size(), f), b.size());
    std::fclose(f);
    return b;
}

// The 16-bit two's-complement samples after the header, in the format's
// byte order (AIFF and AU big-endian, WAVE little-endian).
std::vector<int> Samples(Format fmt, const Bytes &b, size_t offset)
{
    std::vector<int> s;
    for (size_t i = offset; i + 1 < b.size(); i += 2) {
        const unsigned hi = fmt == WAVE ? b[i + 1] : b[i], lo = fmt == WAVE ? b[i] : b[i + 1];
        s.push_back(static_cast<int16_t>(static_cast<uint16_t>(hi << 8 | lo)));
    }
    return s;
}

} // namespace

TEST(Sound, HeaderBytesAndLengths)
{
    const std::vector<double> ten(10, 0.25);
    const Bytes aiff = {
        'F', 'O', 'R', 'M', 0, 0, 0, 66,          // form size 2n + 46
        'A', 'I', 'F', 'F', 'C', 'O', 'M', 'M',   //
        0, 0, 0, 18,                              // COMM chunk size
        0, 1, 0, 0, 0, 10, 0, 16,                 // channels, frames, bits
        0x40, 0x0D, 0xAC, 0x44, 0, 0, 0, 0, 0, 0, // 22050 as 80-bit extended
        'S', 'S', 'N', 'D', 0, 0, 0, 28,          // SSND chunk size 2n + 8
        0, 0, 0, 0, 0, 0, 0, 0,                   // offset, block size
    };
    const Bytes au = {
        '.', 's', 'n', 'd', 0, 0, 0, 24, // header size (SoX notes that Sun's
                                         // layout asks for 28, but reads it)
        0, 0, 0, 20, 0, 0, 0, 3,         // data size 2n, 16-bit linear
        0, 0, 0x1F, 0x40, 0, 0, 0, 1,    // 8000 samples per second, channels
    };
    const Bytes wave = {
        'R', 'I', 'F', 'F', 56, 0, 0, 0,               // size 2n + 36
        'W', 'A', 'V', 'E', 'f', 'm', 't', ' ',        //
        16, 0, 0, 0, 1, 0, 1, 0,                       // chunk size, PCM, channels
        0x44, 0xAC, 0, 0, 0x88, 0x58, 0x01, 0,         // 44100 /s, 88200 bytes/s
        2, 0, 16, 0, 'd', 'a', 't', 'a', 20, 0, 0, 0,  // align, bits, data size 2n
    };
    const Bytes a = Written(AIFF, ten, 22050), u = Written(AU, ten, 8000), w = Written(WAVE, ten, 44100);
    EXPECT_EQ(a.size(), 74u);
    EXPECT_EQ(u.size(), 44u);
    EXPECT_EQ(w.size(), 64u);
    EXPECT_EQ(Bytes(a.begin(), a.begin() + 54), aiff);
    EXPECT_EQ(Bytes(u.begin(), u.begin() + 24), au);
    EXPECT_EQ(Bytes(w.begin(), w.begin() + 44), wave);
    EXPECT_EQ(Samples(WAVE, w, 44), std::vector<int>(10, 8190));

    // No samples: the header alone, declaring none (the AIFF sizes keep
    // their fixed parts, 46 and 8).
    for (Format f : {AIFF, AU, WAVE})
        for (int n : {0, -5})
            EXPECT_EQ(Written(f, {2.385}, 8000, n).size(), kHeader[f]);
    const Bytes empty = Written(AIFF, {1.0}, 8000, 0);
    EXPECT_EQ(empty[7], 46);
    EXPECT_EQ(empty[25], 0);
    EXPECT_EQ(empty[45], 8);
    EXPECT_EQ(Written(WAVE, {1.0}, 8000, 0)[4], 36);
}

// Only three rates can be expressed; every other request says 44100.
TEST(Sound, AiffRateFieldTakesOnlyThreeValues)
{
    const int cases[][2] = {{11025, 0x0C}, {22050, 0x0D}, {44100, 0x0E}, {8000, 0x0E}, {48000, 0x0E}, {0, 0x0E}};
    for (const auto &c : cases) {
        const Bytes b = Written(AIFF, {1.0, 2.0}, c[0]);
        const Bytes want = {0x40, static_cast<unsigned char>(c[1]), 0xAC, 0x44, 0, 0, 0, 0, 0, 0};
        EXPECT_EQ(Bytes(b.begin() + 28, b.begin() + 38), want) << c[0];
    }
}

// The data's range maps onto +/-32760 about its mid-point, truncated toward
// zero: -3..5 has mid 1 and half-width 4, so a unit step is 8190; in 0..11
// (mid 5.5) the values 1 and 10 give -/+26803.6..., written as -/+26803.
TEST(Sound, NormalisationMapsTheRangeOntoPlusMinus32760)
{
    const std::pair<std::vector<double>, std::vector<int>> cases[] = {
        {{-3, -2, -1, 0, 1, 2, 3, 4, 5}, {-32760, -24570, -16380, -8190, 0, 8190, 16380, 24570, 32760}},
        {{0, 1, 10, 11}, {-32760, -26803, 26803, 32760}},
        {{-1, 3, 2}, {-32760, 32760, 16380}},
        {{2.385, 2.385, 2.385}, {0, 0, 0}}, // constant: silence
        {{1e20, 1e20}, {0, 0}},             // constant beyond the +/-1 widening
        {{0, std::nan(""), 1}, {-32760, 0, 32760}},
        {{-INFINITY, INFINITY, 0}, {0, 0, 0}}, // no undefined conversion
    };
    for (const auto &cs : cases)
        for (Format f : {AIFF, AU})
            EXPECT_EQ(Samples(f, Written(f, cs.first, 8000), kHeader[f]), cs.second) << f << " " << cs.first[0];
}

// WAVE clamps to [-1, 1] and scales by 32760 without normalising; a float
// times 32760 is exact in double, then truncated toward zero: -0.7f is
// -0.699999988..., giving -22931.9996 and so -22931.
TEST(Sound, WaveClampsAndTruncates)
{
    const std::vector<double> s = {-2, -1, 0.5, 3, -0.7, 0.3, 1, NAN};
    EXPECT_EQ(Samples(WAVE, Written(WAVE, s, 8000), 44),
              std::vector<int>({-32760, -32760, 16380, 32760, -22931, 9828, 32760, 0}));
}

// SoX reads each file as one 16-bit channel at the declared rate (44100 for
// an AIFF asked for 8000) with the right number of samples, and decodes the
// sample values the conversion rules give.
TEST(Sound, SoxReadsBackRateLengthAndSamples)
{
    const std::string sox = "/usr/bin/sox", soxi = "/usr/bin/soxi";
    ASSERT_TRUE(testutil::HaveCommand(sox) && testutil::HaveCommand(soxi))
        << "sox/soxi not found: run scripts/install-deps";
    testutil::TempDir dir;
    const int n = 1001;
    std::vector<double> sig(n);
    for (int i = 0; i < n; i++) // off-centre, in (-1, 1) for WAVE, +/-1.5 clamped
        sig[static_cast<size_t>(i)] = 0.8 * std::sin(i * 0.1) + 0.15 * std::cos(i * 0.37) - 0.05;
    sig[3] = -1.5;
    sig[4] = 1.5;
    const struct {
        Format fmt;
        const char *name;
        int asked, declared;
    } files[] = {{AIFF, "a.aiff", 8000, 44100}, {AIFF, "b.aiff", 11025, 11025}, {AIFF, "c.aiff", 22050, 22050},
                 {AU, "d.au", 8000, 8000},      {AU, "e.au", 48000, 48000},      {WAVE, "f.wav", 16000, 16000}};
    for (const auto &file : files) {
        SCOPED_TRACE(file.name);
        const std::string path = dir.file(file.name);
        const Bytes bytes = Written(file.fmt, sig, file.asked);
        testutil::WriteBytes(path, bytes);
        for (const auto &q : {std::pair<const char *, std::string>{"-c", "1"}, {"-b", "16"},
                              {"-r", std::to_string(file.declared)}, {"-s", std::to_string(n)},
                              {"-e", "Signed Integer PCM"}}) {
            const testutil::RunResult r = testutil::Run({soxi, q.first, path});
            EXPECT_EQ(r.out, q.second + "\n") << q.first << " " << r.err;
        }
        // Raw signed 16-bit little-endian out: no change of depth, no dither.
        const testutil::RunResult r = testutil::Run({sox, "-V1", path, "-t", "raw", "-e", "signed", "-b", "16", "-L", "-"});
        ASSERT_EQ(r.status, 0) << r.err;
        const std::vector<int> read = Samples(WAVE, Bytes(r.out.begin(), r.out.end()), 0);
        EXPECT_EQ(read, Samples(file.fmt, bytes, kHeader[file.fmt]));
        // The rule itself, from the data: WAVE scales by 32760 (clamped);
        // AIFF and AU map the range [-1.5, 1.5] (mid 0, half 1.5) onto it.
        ASSERT_EQ(read.size(), static_cast<size_t>(n));
        for (int i = 0; i < n; i++) {
            const double v = sig[static_cast<size_t>(i)];
            const double want = file.fmt == WAVE ? std::max(-1.0, std::min(1.0, static_cast<double>(static_cast<float>(v)))) * 32760
                                                 : (v - 0.0) * 32760 / 1.5;
            ASSERT_EQ(read[static_cast<size_t>(i)], static_cast<int>(want)) << i;
        }
    }
}
