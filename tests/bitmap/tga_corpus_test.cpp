// Replays the fuzzer's seed corpus, the inputs it found that reach new code
// (fuzz/found) and every file that once made the reader misbehave
// (tests/data/tga/bad) through the same entry the fuzzer uses, so each
// build, not only the fuzzing one, checks them.
#include <gtest/gtest.h>

#include <dirent.h>

#include <string>
#include <vector>

#include "../../fuzz/tga_entry.h"
#include "testutil.h"

namespace {

std::vector<std::string> FilesIn(const std::string &dir)
{
    std::vector<std::string> files;
    if (DIR *d = opendir(dir.c_str())) {
        while (const dirent *e = readdir(d))
            if (e->d_name[0] != '.')
                files.push_back(dir + "/" + e->d_name);
        closedir(d);
    }
    return files;
}

} // namespace

TEST(TgaCorpus, SeedFilesAllDecode)
{
    const auto files = FilesIn(testutil::Env("TALVOR_SRC") + "/fuzz/corpus");
    ASSERT_GE(files.size(), 20u);
    for (const auto &f : files) {
        const auto bytes = testutil::ReadBytes(f);
        EXPECT_EQ(ReadTgaBytes(bytes.data(), bytes.size()), 0) << f;
    }
}

TEST(TgaCorpus, FoundAndKnownBadFilesAreHandled)
{
    const std::string src = testutil::Env("TALVOR_SRC");
    auto files = FilesIn(src + "/tests/data/tga/bad");
    const auto found = FilesIn(src + "/fuzz/found");
    EXPECT_GE(found.size(), 100u);
    files.insert(files.end(), found.begin(), found.end());
    for (const auto &f : files) {
        const auto bytes = testutil::ReadBytes(f);
        const int rc = ReadTgaBytes(bytes.data(), bytes.size());
        EXPECT_GE(rc, -1) << f;
        EXPECT_LE(rc, 6) << f;
    }
}
