// The program end to end in quiet mode: known fractals, reproducible runs,
// regions, bad input and unwritable output.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
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
    testutil::TempDir dir;

    std::string Fractal(const std::string &kind, int size)
    {
        const std::string path = dir.file(kind + std::to_string(size) + ".tga");
        EXPECT_EQ(testutil::Run({testutil::Env("MAKEFRACTAL_BIN"), kind, std::to_string(size), path}).status, 0);
        return path;
    }
    testutil::RunResult Talvor(std::vector<std::string> args)
    {
        args.insert(args.begin(), bin);
        return testutil::Run(args);
    }
};

} // namespace

TEST_F(QuietRun, KnownFractalsLandNearTheirDimension)
{
    // Offset grids whose sizes are not powers of the fractal's ratio, and
    // boxes cut by the image edge, pull the estimate down by up to a tenth.
    const std::tuple<const char *, int, double> cases[] = {
        {"carpet", 729, std::log(8.0) / std::log(3.0)}, {"triangle", 1024, std::log(3.0) / std::log(2.0)},
        {"koch", 729, std::log(4.0) / std::log(3.0)},  {"square", 1024, 2.0},
        {"line", 512, 1.0}};
    for (const auto &[kind, size, dimension] : cases) {
        const auto r = Talvor({"-q", "-i", Fractal(kind, size)});
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.err, "");
        const size_t at = r.out.find("Estimated fractal dimension: ");
        ASSERT_NE(at, std::string::npos);
        EXPECT_NEAR(std::atof(r.out.c_str() + at + 29), dimension, 0.12) << kind << "\n" << r.out;
        // The table before it: sizes falling, columns 3 and 4 the logarithms
        // of 1/size and of the count, to the six digits %g prints.
        int s, prev = 1 << 30;
        double n, lx, ly;
        for (size_t pos = 0; pos < at && std::sscanf(r.out.c_str() + pos, "%d %lf %lf %lf", &s, &n, &lx, &ly) == 4;
             pos = r.out.find('\n', pos) + 1) {
            EXPECT_LT(s, prev);
            EXPECT_NEAR(lx, std::log(1.0 / s), 1e-5 * std::fabs(lx));
            EXPECT_NEAR(ly, std::log(n), 1e-5 * std::fabs(ly) + 1e-9);
            prev = s;
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

// Real seconds: time() itself is fixed in this test program.
[[maybe_unused]] static time_t RealSeconds()
{
    return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
}

TEST_F(QuietRun, SameClockSecondSameOutputOnAnyNumberOfProcessors)
{
    const std::vector<std::string> cmd{bin, "-q", "-n", "4", "-i", Fractal("dust", 300)};
    std::vector<std::string> onecpu{"/usr/bin/taskset", "-c", "0"};
    onecpu.insert(onecpu.end(), cmd.begin(), cmd.end());
#ifndef TALVOR_SANITIZED
    ASSERT_TRUE(testutil::HaveCommand("faketime")) << "faketime missing: run scripts/install-deps";
    const std::vector<std::string> frozen{"/usr/bin/faketime", "-f", "2026-01-01 00:00:00"};
    auto at = [&](std::vector<std::string> args) {
        args.insert(args.begin(), frozen.begin(), frozen.end());
        return testutil::Run(args);
    };
    const auto a = at(cmd), b = at(onecpu);
    EXPECT_EQ(a.out, b.out);
    EXPECT_NE(a.out.find("Estimated fractal dimension:"), std::string::npos) << a.err;
#else
    bool compared = false; // two runs that start and end within one second
    for (int attempt = 0; attempt < 10 && !compared; attempt++) {
        const time_t t0 = RealSeconds();
        const auto a = testutil::Run(cmd), b = testutil::Run(onecpu);
        if ((compared = RealSeconds() == t0))
            EXPECT_EQ(a.out, b.out);
    }
    EXPECT_TRUE(compared) << "no two runs fitted in one second";
#endif
}

TEST_F(QuietRun, MemoryThatCannotBeHadIsRefused)
{
    // 32767 x 32767 pixels in the header, three in the file: the picture's
    // memory is asked for before the pixels are read.
    const std::string huge = dir.file("huge.tga");
    testutil::WriteBytes(huge, {0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0x7F, 0xFF, 0x7F, 8, 0, 1, 2, 3});
    auto r = Talvor({"-q", "-i", huge});
    EXPECT_EQ(r.err, "   Image read failed\n") << "with room enough";
#ifndef TALVOR_SANITIZED
    r = testutil::Shell("ulimit -v 150000; exec '" + bin + "' -q -i '" + huge + "'");
#else
    // The sanitizer reserves its shadow memory up front, which an address
    // space limit forbids; its own allocation limit does the same job.
    // It warns of the refused allocation on a line of its own; anything
    // worse would be an ERROR.
    r = testutil::Shell("ASAN_OPTIONS=allocator_may_return_null=1:max_allocation_size_mb=100 '" + bin + "' -q -i '" + huge + "'");
    EXPECT_EQ(r.err.find("ERROR"), std::string::npos) << r.err;
    r.err = r.err.substr(std::min(r.err.find("   Failed"), r.err.size()));
#endif
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(r.err, "   Failed to create image\n");
    EXPECT_EQ(r.out, "");
}

TEST_F(QuietRun, OutputsStatusesAndMessages)
{
    const std::string tga = Fractal("carpet", 81), tiny = Fractal("square", 4);
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string out_starts, out_ends, err;
    };
    const std::string refused = "Region too small for box counting\n";
    const Case cases[] = {
        {{"-q"}, 0, "Estimated fractal dimension:  0.000\n", "", "Warning, image contains no black\n"},
        {{"-q", "-sl", "10", "-i", tga}, 0, "", " in region: 10 0 to 100000 100000\n\n", ""},
        {{"-q", "-sb", "5", "-st", "70", "-sr", "-3", "-i", tga, "-b1", "20"}, 0, "", " in region: 0 5 to -3 70\n\n", ""},
        // Regions that give boxes under one pixel are refused, not looped on.
        {{"-q", "-i", tiny}, 255, "", "", refused},
        {{"-q", "-i", tga, "-sl", "20", "-sr", "24"}, 255, "", "", refused},
        {{"-q", "-i", tga, "-sb", "50", "-st", "50"}, 255, "", "", refused},
        {{"-q", "-i", tga, "-sl", "70", "-sr", "10"}, 255, "", "", refused},
        // With an explicit first size, left beyond right counts nothing and ends.
        {{"-q", "-i", tga, "-sl", "70", "-sr", "10", "-b1", "8"}, 0, "Estimated fractal dimension:  0.000 in region", "", ""},
        {{"-q", "-bf", "nan", "-i", tga}, 0, "", "\n", ""},
        {{"-q", "-i", dir.file(std::string(300, 'n') + ".tga")}, 255, "", "",
         "Failed to open file \"" + dir.file(std::string(255 - dir.path().size() - 1, 'n')) + "\"\n"},
    };
    for (const auto &c : cases) {
        const auto r = Talvor(c.args);
        std::string line;
        for (const auto &a : c.args)
            line += a.substr(0, 30) + " ";
        EXPECT_EQ(r.status, c.status) << line;
        EXPECT_EQ(r.out.rfind(c.out_starts, 0), 0u) << line << "\n" << r.out;
        EXPECT_TRUE(r.out.size() >= c.out_ends.size() && r.out.substr(r.out.size() - c.out_ends.size()) == c.out_ends)
            << line << "\n" << r.out;
        EXPECT_EQ(r.err, c.err) << line;
        if (c.status != 0) {
            EXPECT_EQ(r.out, "") << line;
        }
    }
    // Type 9 (colour-mapped run-length) is refused by the reader.
    const std::string type9 = dir.file("type9.tga");
    testutil::WriteBytes(type9, {0, 1, 9, 0, 0, 2, 0, 24, 0, 0, 0, 0, 1, 0, 1, 0, 8, 0, 1, 2, 3, 4, 5, 6, 0});
    const auto r = Talvor({"-q", "-i", type9});
    EXPECT_EQ(r.status * 1000 + static_cast<int>(r.out.size()), 255000);
    EXPECT_EQ(r.err, "   Image read failed\n");
    // A full disk must not pass for a result.
    const auto full = testutil::Shell("'" + bin + "' -q -i '" + tga + "' > /dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "Failed to write the results to standard output\n");
}
