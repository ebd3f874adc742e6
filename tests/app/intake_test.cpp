// Loading TGA files into the program's image.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "intake.h"
#include "settings.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

// A 3 x 2 uncompressed 24-bit file.
Bytes SmallTga()
{
    return Bytes{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 24, 0,
                 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
}

class LoadTgaTest : public ::testing::Test {
protected:
    void SetUp() override { SetDefaultOptions(); }
    testutil::TempDir dir;
};

} // namespace

TEST_F(LoadTgaTest, ReadsFileSetsSizesAndName)
{
    const std::string path = dir.file("small.tga");
    testutil::WriteBytes(path, SmallTga());
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 1);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err, "Reading file \"" + path + "\"\n   Image dimensions: 3 x 2 x 24\n");
    EXPECT_EQ(options.width, 3);
    EXPECT_EQ(options.height, 2);
    EXPECT_EQ(options.depth, 24);
    EXPECT_EQ(std::string(options.imagename), path);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image[5].r, 18);
    EXPECT_EQ(image[5].b, 16);
}

TEST_F(LoadTgaTest, QuietModePrintsOnlyErrors)
{
    options.quiet = 1;
    const std::string path = dir.file("small.tga");
    testutil::WriteBytes(path, SmallTga());
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(dir.file("missing.tga").c_str()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Failed to open file \"" + dir.file("missing.tga") + "\"\n");
}

TEST_F(LoadTgaTest, ReaderFailureKeepsHeaderSizesAndName)
{
    strcpy(options.imagename, "before");
    Bytes bad = SmallTga();
    bad.resize(bad.size() - 4);
    const std::string path = dir.file("short.tga");
    testutil::WriteBytes(path, bad);
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Reading file \"" + path + "\"\n   Image dimensions: 3 x 2 x 24\n   Image read failed\n");
    EXPECT_EQ(options.width, 3);
    EXPECT_STREQ(options.imagename, "before");
}

TEST_F(LoadTgaTest, UnallocatableSizeTakesTheFailedToCreatePath)
{
    // 32767 x 32767 pixels: the size is computed without overflow. Whether
    // the allocation succeeds or not, nothing may crash and a truncated file
    // must fail.
    Bytes huge{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0x7F, 0xFF, 0x7F, 24, 0, 1, 2, 3};
    const std::string path = dir.file("huge.tga");
    testutil::WriteBytes(path, huge);
    options.quiet = 1;
    testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(path.c_str()), 0);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(err == "   Failed to create image\n" || err == "   Image read failed\n") << err;
}

TEST_F(LoadTgaTest, BlankImageIsWhite400By300)
{
    options.depth = 17;
    MakeTestImage();
    EXPECT_EQ(options.width, 400);
    EXPECT_EQ(options.height, 300);
    EXPECT_EQ(options.depth, 17);
    EXPECT_STREQ(options.imagename, "No Image");
    for (int i = 0; i < 400 * 300; i += 997) {
        EXPECT_EQ(image[i].r, 255);
        EXPECT_EQ(image[i].a, 255);
    }
}
