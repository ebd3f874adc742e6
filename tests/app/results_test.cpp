// The results table and where it goes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "headless.h"
#include "results.h"
#include "counting_fixture.h"
#include "settings.h"
#include "testutil.h"

namespace {

std::string Table()
{
    FILE *f = std::tmpfile();
    WriteResults(f);
    std::rewind(f);
    std::string s;
    for (int c; (c = std::fgetc(f)) != EOF;)
        s.push_back(static_cast<char>(c));
    std::fclose(f);
    return s;
}

// Sizes 100, 66, 44, 29 over two passes, a zero-count size and a size-0
// record. ln 100 = 4.605170, ln 4 = 1.386294, ln 66 = 4.189655,
// ln 9 = 2.197225, ln 29 = 3.367296, ln 3 = 1.098612.
const std::vector<std::pair<int, int>> kRecords{{100, 5}, {66, 9}, {44, 0}, {29, 3},
                                                {100, 4}, {66, 12}, {44, 0}, {29, 3}, {0, 7}};
const char *kTable = "100 4 -4.60517 1.38629\n"
                     "66 9 -4.18965 2.19722\n"
                     "29 3 -3.3673 1.09861\n";

} // namespace

TEST(Results, OneLinePerSizeWithTheSmallestCount)
{
    counting::SetResults(kRecords);
    EXPECT_EQ(Table(), kTable);
    // The marks are reset on every save: the same table again.
    EXPECT_EQ(Table(), kTable);
}

TEST(Results, QuietModeWritesToStandardOutput)
{
    SetDefaultOptions();
    options.quiet = 1;
    counting::SetResults(kRecords);
    testing::internal::CaptureStdout();
    SaveResults();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), kTable);
}

TEST(Results, TooFewRecordsSaveNothingAndAskNothing)
{
    SetDefaultOptions();
    counting::SetResults({{100, 5}, {66, 9}, {44, 20}});
    headless::lastprompt.clear();
    testutil::TempDir dir;
    const std::string path = dir.file("r.txt");
    headless::filename = path.c_str();
    SaveResults();
    EXPECT_EQ(headless::lastprompt, "");
    EXPECT_EQ(testutil::ReadText(path), "");
    headless::filename = nullptr;
}

TEST(Results, InteractiveSaveGoesToTheChosenFile)
{
    SetDefaultOptions();
    counting::SetResults(kRecords);
    testutil::TempDir dir;
    const std::string path = dir.file("results.txt");
    testutil::WriteText(path, "old contents that must go\n");
    headless::filename = path.c_str();
    SaveResults();
    EXPECT_EQ(headless::lastprompt, "Results file");
    EXPECT_EQ(testutil::ReadText(path), kTable);

    // Cancelled or empty: nothing written, nothing said.
    const std::string other = dir.file("other.txt");
    headless::filename = nullptr;
    testing::internal::CaptureStderr();
    SaveResults();
    headless::filename = "";
    SaveResults();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    // A file that cannot be opened is reported, and nothing crashes.
    const std::string bad = dir.file("no/such/dir/results.txt");
    headless::filename = bad.c_str();
    testing::internal::CaptureStderr();
    SaveResults();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Failed to open file \"" + bad + "\"\n");
    headless::filename = nullptr;
}
