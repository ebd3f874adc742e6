// Settings record defaults, the command-line rules and their quirks, the
// usage text and banner, and exit statuses of the built program.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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

} // namespace

TEST(Settings, DefaultsOfAllFields)
{
    Parse({});
    EXPECT_EQ(options.quiet, 0);
    EXPECT_EQ(options.debug, 0);
    EXPECT_EQ(options.screenwidth, 400);
    EXPECT_EQ(options.screenheight, 300);
    EXPECT_EQ(options.width, 0);
    EXPECT_EQ(options.height, 0);
    EXPECT_EQ(options.depth, 0);
    EXPECT_EQ(options.scale, 1);
    EXPECT_STREQ(options.imagename, "no image");
    EXPECT_EQ(options.writerequest, 0);
    EXPECT_EQ(options.mousebutton, -1);
    EXPECT_EQ(options.invert, 0);
    EXPECT_EQ(options.noffsets, 10);
    EXPECT_EQ(options.processing, 0);
    EXPECT_EQ(options.boxstart, -1);
    EXPECT_EQ(options.boxend, 6);
    EXPECT_EQ(options.boxfactor, 1.2f);
    EXPECT_EQ(options.useregion, 0);
    EXPECT_EQ(options.left, 0);
    EXPECT_EQ(options.right, 100000);
    EXPECT_EQ(options.top, 100000);
    EXPECT_EQ(options.bottom, 0);
    EXPECT_EQ(versionnumber, 101);
}

TEST(CommandLine, FlagsAndValuedOptions)
{
    Parse({"-d", "-q", "-p", "-bw", "-i", "pic.tga", "-n", "4", "-b1", "50", "-b2", "3", "-bf", "1.5"});
    EXPECT_EQ(options.debug, 1);
    EXPECT_EQ(options.quiet, 1);
    EXPECT_EQ(options.processing, 1);
    EXPECT_EQ(options.invert, 1);
    EXPECT_STREQ(inputname, "pic.tga");
    EXPECT_EQ(options.noffsets, 4);
    EXPECT_EQ(options.boxstart, 50);
    EXPECT_EQ(options.boxend, 3);
    EXPECT_EQ(options.boxfactor, 1.5f);
    EXPECT_EQ(options.useregion, 0);
}

TEST(CommandLine, CorrectionRules)
{
    struct Case {
        std::vector<std::string> args;
        int boxstart, boxend, noffsets;
        float boxfactor;
    };
    const Case cases[] = {
        {{"-b1", "1"}, -1, 6, 10, 1.2f},
        {{"-b1", "2"}, 2, 6, 10, 1.2f},
        {{"-b1", "-7"}, -1, 6, 10, 1.2f},
        {{"-b2", "0"}, -1, 1, 10, 1.2f},
        {{"-b2", "1"}, -1, 1, 10, 1.2f},
        {{"-n", "0"}, -1, 6, 1, 1.2f},
        {{"-n", "-5"}, -1, 6, 1, 1.2f},
        {{"-n", "abc"}, -1, 6, 1, 1.2f},
        {{"-n", "12xyz"}, -1, 6, 12, 1.2f},
        {{"-bf", "1"}, -1, 6, 10, 1.1f},
        {{"-bf", "0.5"}, -1, 6, 10, 1.1f},
        {{"-bf", "junk"}, -1, 6, 10, 1.1f},
        {{"-bf", "1.0001"}, -1, 6, 10, 1.0001f},
    };
    for (const auto &c : cases) {
        Parse(c.args);
        EXPECT_EQ(options.boxstart, c.boxstart) << c.args[0] << " " << c.args[1];
        EXPECT_EQ(options.boxend, c.boxend) << c.args[0] << " " << c.args[1];
        EXPECT_EQ(options.noffsets, c.noffsets) << c.args[0] << " " << c.args[1];
        EXPECT_EQ(options.boxfactor, c.boxfactor) << c.args[0] << " " << c.args[1];
    }
    // A factor that reads as NaN is kept as it is.
    Parse({"-bf", "nan"});
    EXPECT_TRUE(std::isnan(options.boxfactor));
}

TEST(CommandLine, RegionOptionsDoNotStepOverTheirValue)
{
    Parse({"-sl", "10", "-sr", "200"});
    EXPECT_EQ(options.left, 10);
    EXPECT_EQ(options.right, 200);
    EXPECT_EQ(options.useregion, 1);
    EXPECT_EQ(regionargs.left, 10);
    EXPECT_EQ(regionargs.right, 200);
    EXPECT_EQ(regionargs.top, 100000);
    EXPECT_EQ(regionargs.bottom, 0);

    // A value that spells an option reads as 0 and then acts as that option.
    Parse({"-sl", "-q"});
    EXPECT_EQ(options.left, 0);
    EXPECT_EQ(options.quiet, 1);
    Parse({"-st", "-sb", "7"});
    EXPECT_EQ(options.top, 0);
    EXPECT_EQ(options.bottom, 7);
    EXPECT_EQ(regionargs.top, 0);
    EXPECT_EQ(regionargs.bottom, 7);
}

TEST(CommandLine, ValuedOptionGivenLastReadsEmptyValue)
{
    Parse({"-n"});
    EXPECT_EQ(options.noffsets, 1);
    Parse({"-b1"});
    EXPECT_EQ(options.boxstart, -1);
    Parse({"-bf"});
    EXPECT_EQ(options.boxfactor, 1.1f);
    Parse({"-st"});
    EXPECT_EQ(options.top, 0);
    EXPECT_EQ(options.useregion, 1);
    Parse({"-i", "x.tga", "-i"});
    EXPECT_STREQ(inputname, "");
}

TEST(CommandLine, UnknownWordsAndCaseAreIgnored)
{
    Parse({"-Q", "--quiet", "-qq", "q", "-N", "3", "-I", "f"});
    EXPECT_EQ(options.quiet, 0);
    EXPECT_EQ(options.noffsets, 10);
    EXPECT_STREQ(inputname, "");
}

TEST(CommandLine, LongInputNameIsTruncatedNotOverflowed)
{
    const std::string name(1000, 'x');
    Parse({"-i", name});
    EXPECT_EQ(std::strlen(inputname), 255u);
    EXPECT_EQ(std::string(inputname), name.substr(0, 255));
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
