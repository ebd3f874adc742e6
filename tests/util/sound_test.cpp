// Sound file writers: exact header bytes and lengths, and SoX reading every
// file back with the sample values the conversion rules give.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

#include "sound.h"
#include "testutil.h"

enum Format { AIFF, AU, WAVE };

// Writes the first n samples (as floats for WAVE) to path and returns the
// file's bytes.
static std::vector<unsigned char> Written(Format fmt, const std::vector<double> &s, int n, int rate, const std::string &path) {
    FILE *f = std::fopen(path.c_str(), "wb");
    if (fmt == WAVE) Write_WAVE(f, std::vector<float>(s.begin(), s.end()).data(), n, rate);
    else (fmt == AIFF ? Write_AIFF : Write_AU)(f, s.data(), n, rate);
    std::fclose(f);
    return testutil::ReadBytes(path);
}

// Ten samples at 22050 (AIFF), 8000 (AU) and 44100 (WAVE): the header, then
// 20 bytes of samples.
TEST(Sound, HeaderBytesAndLengths) {
    const std::vector<unsigned char> golden[] = {
        {'F', 'O', 'R', 'M', 0, 0, 0, 66, 'A', 'I', 'F', 'F',         // form size 2n + 46
         'C', 'O', 'M', 'M', 0, 0, 0, 18, 0, 1, 0, 0, 0, 10, 0, 16,   // COMM size; channels, frames, bits
         0x40, 0x0D, 0xAC, 0x44, 0, 0, 0, 0, 0, 0,                    // 22050 as 80-bit extended
         'S', 'S', 'N', 'D', 0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 0},    // size 2n + 8, offset, block size
        {'.', 's', 'n', 'd', 0, 0, 0, 24, 0, 0, 0, 20, // header size (Sun's layout asks for 28; SoX reads it), data size 2n
         0, 0, 0, 3, 0, 0, 0x1F, 0x40, 0, 0, 0, 1},    // 16-bit linear, 8000 samples per second, channels
        {'R', 'I', 'F', 'F', 56, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', // size 2n + 36
         16, 0, 0, 0, 1, 0, 1, 0, 0x44, 0xAC, 0, 0, 0x88, 0x58, 0x01, 0,          // size, PCM, channels, 44100, 88200/s
         2, 0, 16, 0, 'd', 'a', 't', 'a', 20, 0, 0, 0}};                           // align, bits, data size 2n
    testutil::TempDir dir;
    for (Format f : {AIFF, AU, WAVE}) {
        auto b = Written(f, std::vector<double>(10, 0.25), 10, f == AIFF ? 22050 : f == AU ? 8000 : 44100, dir.file("ten"));
        b.resize(std::max<size_t>(b.size(), 20) - 20); // the header: all but 20 bytes of samples
        EXPECT_EQ(b, golden[f]) << f;
    }
}

// SoX reads each file as one signed 16-bit channel with every sample, at the
// declared rate: AIFF can only express 11025, 22050 and 44100, which it
// writes for any other request. AIFF and AU map the data's range onto
// +/-32760 about its mid-point, truncated toward zero: -3..5 has mid 1 and
// half-width 4, so a unit step is 8190; in 0..11 (mid 5.5) 1 and 10 give
// -/+26803.6..., written as -/+26803; constant data is silence; NaN gives no
// undefined conversion. WAVE clamps to [-1, 1] and scales by 32760: -0.7f is
// -0.699999988..., so -22931.9996 gives -22931.
TEST(Sound, SoxReadsBackRateLengthAndSamples) {
    ASSERT_TRUE(testutil::HaveCommand("/usr/bin/sox") && testutil::HaveCommand("/usr/bin/soxi")) << "run scripts/install-deps";
    const std::tuple<Format, int, int, std::vector<double>, std::vector<int16_t>> files[] = {
        {AIFF, 8000, 44100, {0, 1, 10, 11, NAN}, {-32760, -26803, 26803, 32760, 0}},
        {AU, 8000, 8000, {-3, -2, -1, 0, 1, 2, 3, 4, 5}, {-32760, -24570, -16380, -8190, 0, 8190, 16380, 24570, 32760}},
        {AIFF, 11025, 11025, {-1, 3, 2}, {-32760, 32760, 16380}},
        {AIFF, 22050, 22050, {2.385, 2.385}, {0, 0}},
        {WAVE, 16000, 16000, {-2, -1, 0.5, 3, -0.7, 0.3, 1, NAN}, {-32760, -32760, 16380, 32760, -22931, 9828, 32760, 0}}};
    testutil::TempDir dir;
    for (const auto &[fmt, asked, declared, in, out] : files) {
        const std::string path = dir.file(fmt == AIFF ? "f.aiff" : fmt == AU ? "f.au" : "f.wav");
        Written(fmt, in, static_cast<int>(in.size()), asked, path);
        EXPECT_EQ(testutil::Shell("for q in -c -b -r -s -e; do /usr/bin/soxi $q '" + path + "'; done").out,
                  "1\n16\n" + std::to_string(declared) + "\n" + std::to_string(in.size()) + "\nSigned Integer PCM\n") << path;
        // Raw signed 16-bit samples in host order (no change of depth, no dither)
        // are the expected values' bytes.
        const auto raw = testutil::Run({"/usr/bin/sox", "-V1", path, "-t", "raw", "-e", "signed", "-b", "16", "-"});
        EXPECT_EQ(raw.out, std::string(reinterpret_cast<const char *>(out.data()), 2 * out.size())) << path << raw.err;
    }
}
