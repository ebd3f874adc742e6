// The program end to end in quiet mode: known fractals, reproducible runs,
// regions, bad input and unwritable output.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "testutil.h"

namespace {

class QuietRun : public ::testing::Test {
protected:
    std::string bin = testutil::Env("TALVOR_BIN");
    std::string make = testutil::Env("MAKEFRACTAL_BIN");
    testutil::TempDir dir;

    std::string Fractal(const std::string &kind, int size)
    {
        const std::string path = dir.file(kind + std::to_string(size) + ".tga");
        const auto r = testutil::Run({make, kind, std::to_string(size), path});
        EXPECT_EQ(r.status, 0) << r.err;
        return path;
    }

    static double Estimate(const std::string &out)
    {
        const size_t pos = out.find("Estimated fractal dimension: ");
        if (pos == std::string::npos)
            return NAN;
        return std::atof(out.c_str() + pos + 29);
    }
};

} // namespace

TEST_F(QuietRun, KnownFractalsLandNearTheirDimension)
{
    // Theoretical box-counting dimensions. Offset grids whose sizes are not
    // powers of the fractal's ratio, and boxes cut by the image edge, pull
    // the estimate down by up to a tenth (a filled square reads about 1.9).
    struct Case {
        const char *kind;
        int size;
        double dimension;
    };
    const Case cases[] = {
        {"carpet", 729, std::log(8.0) / std::log(3.0)},
        {"triangle", 1024, std::log(3.0) / std::log(2.0)},
        {"koch", 729, std::log(4.0) / std::log(3.0)},
        {"square", 1024, 2.0},
        {"line", 512, 1.0},
    };
    for (const auto &c : cases) {
        const auto r = testutil::Run({bin, "-q", "-i", Fractal(c.kind, c.size)});
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.err, "");
        EXPECT_NEAR(Estimate(r.out), c.dimension, 0.12) << c.kind << "\n" << r.out;
        // The table comes first, one line per size, then the estimate line.
        EXPECT_EQ(r.out.back(), '\n');
        int size, prev = 1 << 30;
        double n, lx, ly;
        for (size_t pos = 0; pos < r.out.size() && std::sscanf(r.out.c_str() + pos, "%d %lf %lf %lf", &size, &n, &lx, &ly) == 4;
             pos = r.out.find('\n', pos) + 1) {
            EXPECT_LT(size, prev);
            // Printed with %g: six significant digits.
            EXPECT_NEAR(lx, std::log(1.0 / size), 1e-5 * std::fabs(lx));
            EXPECT_NEAR(ly, std::log(n), 1e-5 * std::fabs(ly) + 1e-9);
            prev = size;
        }
    }
}

// libfaketime's preloaded clock and AddressSanitizer's start-up deadlock,
// so sanitized builds use the real clock instead.
#if defined(__SANITIZE_ADDRESS__)
#define TALVOR_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TALVOR_SANITIZED 1
#endif
#endif

TEST_F(QuietRun, SameClockSecondSameOutput)
{
    const std::string tga = Fractal("dust", 300);
#ifndef TALVOR_SANITIZED
    // With the clock frozen by faketime, runs repeat byte for byte.
    ASSERT_TRUE(testutil::HaveCommand("faketime")) << "faketime missing: run scripts/install-deps";
    const std::vector<std::string> cmd{"/usr/bin/faketime", "-f", "2026-01-01 00:00:00", bin, "-q", "-n", "4", "-i", tga};
    const auto a = testutil::Run(cmd);
    const auto b = testutil::Run(cmd);
    ASSERT_EQ(a.status, 0) << a.err;
    EXPECT_EQ(a.out, b.out);
    EXPECT_FALSE(a.out.empty());
    // Another second draws other offsets: the table may change, and the
    // interactive-only messages never appear.
    auto c = cmd;
    c[2] = "2026-01-01 00:00:07";
    const auto d = testutil::Run(c);
    EXPECT_EQ(d.status, 0);
    EXPECT_EQ(d.err, "");
#else
    // Two runs that start and end within one second of the real clock.
    const std::vector<std::string> cmd{bin, "-q", "-n", "4", "-i", tga};
    bool compared = false;
    for (int attempt = 0; attempt < 10 && !compared; attempt++) {
        const time_t t0 = time(nullptr);
        const auto a = testutil::Run(cmd);
        const auto b = testutil::Run(cmd);
        if (time(nullptr) != t0)
            continue;
        ASSERT_EQ(a.status, 0) << a.err;
        EXPECT_EQ(a.out, b.out);
        EXPECT_FALSE(a.out.empty());
        compared = true;
    }
    EXPECT_TRUE(compared) << "no two runs fitted in one second";
#endif
}

TEST_F(QuietRun, BlankImageWithoutInputFile)
{
    const auto r = testutil::Run({bin, "-q"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "Warning, image contains no black\n");
    EXPECT_EQ(r.out, "Estimated fractal dimension:  0.000\n");
}

TEST_F(QuietRun, RegionSuffixUsesTheValuesAsWritten)
{
    const std::string tga = Fractal("carpet", 243);
    auto r = testutil::Run({bin, "-q", "-sl", "10", "-i", tga});
    EXPECT_EQ(r.status, 0);
    const std::string tail = " in region: 10 0 to 100000 100000\n\n";
    ASSERT_GE(r.out.size(), tail.size());
    EXPECT_EQ(r.out.substr(r.out.size() - tail.size()), tail);
    r = testutil::Run({bin, "-q", "-sb", "5", "-st", "200", "-sr", "-3", "-i", tga, "-b1", "20"});
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find(" in region: 0 5 to -3 200\n\n"), std::string::npos) << r.out;
}

TEST_F(QuietRun, RegionsTooSmallToCountAreRefused)
{
    const std::string tiny = Fractal("square", 4);
    const std::string tga = Fractal("carpet", 81);
    const std::vector<std::vector<std::string>> runs{
        {bin, "-q", "-i", tiny},
        {bin, "-q", "-i", tga, "-sl", "20", "-sr", "24"},
        {bin, "-q", "-i", tga, "-sb", "50", "-st", "50"},
        {bin, "-q", "-i", tga, "-sl", "70", "-sr", "10"}, // left beyond right
    };
    for (const auto &cmd : runs) {
        const auto r = testutil::Run(cmd);
        EXPECT_EQ(r.status, 255);
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(r.err, "Region too small for box counting\n");
    }
    // With an explicit first size the same misplaced region counts nothing
    // and ends normally.
    const auto r = testutil::Run({bin, "-q", "-i", tga, "-sl", "70", "-sr", "10", "-b1", "8"});
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("Estimated fractal dimension:"), std::string::npos);
}

TEST_F(QuietRun, FactorThatIsNotANumberStillEnds)
{
    const auto r = testutil::Run({bin, "-q", "-bf", "nan", "-i", Fractal("carpet", 81)});
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("Estimated fractal dimension:"), std::string::npos);
}

TEST_F(QuietRun, FilesTheReaderRefusesEndWithStatus255)
{
    // Type 9 (colour-mapped run-length) is refused by the reader.
    const std::string path = dir.file("type9.tga");
    testutil::WriteBytes(path, {0, 1, 9, 0, 0, 2, 0, 24, 0, 0, 0, 0, 1, 0, 1, 0, 8, 0, 1, 2, 3, 4, 5, 6, 0});
    auto r = testutil::Run({bin, "-q", "-i", path});
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "   Image read failed\n");
    const std::string longname = dir.file(std::string(300, 'n') + ".tga");
    r = testutil::Run({bin, "-q", "-i", longname});
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err.rfind("Failed to open file \"", 0), 0u);
}

TEST_F(QuietRun, UnwritableOutputIsReported)
{
    const std::string tga = Fractal("carpet", 81);
    const auto r = testutil::Shell("'" + bin + "' -q -i '" + tga + "' > /dev/full");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "Failed to write the results to standard output\n");
}
