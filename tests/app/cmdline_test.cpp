// Settings record defaults, the command-line rules and their quirks, the
// usage text and banner, and exit statuses of the built program.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "cmdline.h"
#include "settings.h"
#include "testutil.h"

namespace {

void Parse(std::vector<std::string> args)
{
    args.insert(args.begin(), "talvor");
    std::vector<char *> argv;
    for (auto &a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr); // the vector's terminating null entry
    SetDefaultOptions();
    ParseCommandLine(static_cast<int>(args.size()), argv.data());
}

std::string Usage(const std::string &prog, int n, int b1, int b2, const char *bf)
{
    return "Usage: " + prog + " [options]\n"
           "General options\n"
           "     -h      this text (help)\n"
           "     -i s    load input TGA file\n"
           "     -bw     invert image\n"
           "     -q      quiet, command line mode\n"
           "     -p      start processing immediately\n"
           "Box options\n"
           "     -n  n   number of offset samples, default: " + std::to_string(n) + "\n"
           "     -b1 n   start box size (default: " + std::to_string(b1) + ")\n"
           "     -b2 n   end box size (default: " + std::to_string(b2) + ")\n"
           "     -bf n   box reduction factor (default: " + bf + ")\n"
           "Region options\n"
           "     -sl     left boundary (default: 0)\n"
           "     -sr     right boundary (default: image width)\n"
           "     -sb     bottom boundary (default: 0)\n"
           "     -st     top boundary (default: image height)\n";
}

OPTIONS Defaults()
{
    // The whole record, field by field in declaration order.
    return OPTIONS{0, 0, 400, 300, 0, 0, 0, 1, "no image", 0, -1, 0, 10, 0, -1, 6, 1.2f, 0, 0, 100000, 100000, 0};
}

} // namespace

TEST(CommandLine, EveryOptionItsCorrectionsAndQuirks)
{
    struct Case {
        std::vector<std::string> args;
        std::function<void(OPTIONS &)> change; // from the defaults
        std::string input = "";
        REGION region = {0, 100000, 100000, 0};
    };
    const Case cases[] = {
        {{}, [](OPTIONS &) {}},
        {{"-d", "-q", "-p", "-bw"}, [](OPTIONS &o) { o.debug = o.quiet = o.processing = o.invert = 1; }},
        {{"-i", "pic.tga", "-n", "4", "-b1", "50", "-b2", "3", "-bf", "1.5"},
         [](OPTIONS &o) { o.noffsets = 4, o.boxstart = 50, o.boxend = 3, o.boxfactor = 1.5f; }, "pic.tga"},
        {{"-b1", "1"}, [](OPTIONS &) {}},
        {{"-b1", "2"}, [](OPTIONS &o) { o.boxstart = 2; }},
        {{"-b2", "0"}, [](OPTIONS &o) { o.boxend = 1; }},
        {{"-n", "-5"}, [](OPTIONS &o) { o.noffsets = 1; }},
        {{"-n", "12xyz"}, [](OPTIONS &o) { o.noffsets = 12; }},
        {{"-bf", "1"}, [](OPTIONS &o) { o.boxfactor = 1.1f; }},
        {{"-bf", "junk"}, [](OPTIONS &o) { o.boxfactor = 1.1f; }},
        {{"-bf", "1.0001"}, [](OPTIONS &o) { o.boxfactor = 1.0001f; }},
        // Region options read their value without stepping over it; the
        // parser keeps its own copy of each edge as written.
        {{"-sl", "10", "-sr", "200"}, [](OPTIONS &o) { o.useregion = 1, o.left = 10, o.right = 200; }, "",
         {10, 200, 100000, 0}},
        // ... so a value that spells an option reads as 0 and then acts.
        {{"-sl", "-q"}, [](OPTIONS &o) { o.useregion = o.quiet = 1, o.left = 0; }, "", {0, 100000, 100000, 0}},
        {{"-st", "-sb", "7"}, [](OPTIONS &o) { o.useregion = 1, o.top = 0, o.bottom = 7; }, "", {0, 100000, 0, 7}},
        // A valued option given last reads an empty value.
        {{"-n"}, [](OPTIONS &o) { o.noffsets = 1; }},
        {{"-bf"}, [](OPTIONS &o) { o.boxfactor = 1.1f; }},
        {{"-st"}, [](OPTIONS &o) { o.useregion = 1, o.top = 0; }, "", {0, 100000, 0, 0}},
        {{"-i", "x.tga", "-i"}, [](OPTIONS &) {}},
        // Unknown words and other cases are ignored.
        {{"-Q", "--quiet", "-qq", "q", "-N", "3", "-I", "f"}, [](OPTIONS &) {}},
        {{"-i", std::string(1000, 'x')}, [](OPTIONS &) {}, std::string(255, 'x')},
    };
    for (const auto &c : cases) {
        OPTIONS want = Defaults();
        c.change(want);
        Parse(c.args);
        std::string line;
        for (const auto &a : c.args)
            line += a.substr(0, 20) + " ";
        EXPECT_EQ(std::memcmp(&options, &want, sizeof want), 0) << line;
        EXPECT_EQ(inputname, c.input) << line;
        EXPECT_EQ(regionargs.left, c.region.left) << line;
        EXPECT_EQ(regionargs.right, c.region.right) << line;
        EXPECT_EQ(regionargs.top, c.region.top) << line;
        EXPECT_EQ(regionargs.bottom, c.region.bottom) << line;
    }
    EXPECT_EQ(versionnumber, 101);
    Parse({"-bf", "nan"});
    EXPECT_TRUE(std::isnan(options.boxfactor)) << "a factor that reads as NaN is kept";
}

TEST(Program, UsageTextExactlyAndExitStatus)
{
    const std::string bin = testutil::Env("TALVOR_BIN");
    auto r = testutil::Run({bin, "-h"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, Usage(bin, 10, -1, 6, "1.2"));

    // Options before -h change the defaults it prints; -h ends parsing.
    r = testutil::Run({bin, "-n", "3", "-b1", "40", "-b2", "0", "-bf", "1.25", "-h", "-i", "/nonexistent"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, Usage(bin, 3, 40, 1, "1.25"));
}

TEST(Program, UnreadableFileInQuietModeExitsWith255)
{
    const std::string bin = testutil::Env("TALVOR_BIN");
    auto r = testutil::Run({bin, "-q", "-i", "/nonexistent/pic.tga"});
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "Failed to open file \"/nonexistent/pic.tga\"\n");
}
