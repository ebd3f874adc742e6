// Image intake: loading TGA files in both modes, the blank image, the black
// rule in bytes and in bits, the "no black" warning and the region reset;
// and quiet runs, which read files straight into bits, against the window's
// path through the colour picture, on every TGA file of the fuzz corpus.
#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "blackbits.h"
#include "intake.h"
#include "settings.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

std::string StderrOf(const std::function<void()> &f)
{
    testing::internal::CaptureStderr();
    f();
    return testing::internal::GetCapturedStderr();
}

bool BitAt(int x, int y)
{
    return (BlackBitsRow(y)[x / 64] >> (x % 64)) & 1;
}

// The pixel rows of the bits.
std::vector<uint64_t> Bits()
{
    return blackbits.block ? std::vector<uint64_t>(BlackBitsRow(0), BlackBitsRow(blackbits.height))
                           : std::vector<uint64_t>();
}

} // namespace

TEST(LoadTGA, ResultsMessagesAndSizes)
{
    testutil::TempDir dir;
    // 3 x 2, 24 bits: the pixel bytes 1 .. 18.
    Bytes good{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 24, 0};
    for (unsigned char i = 1; i <= 18; i++)
        good.push_back(i);
    testutil::WriteBytes(dir.file("good.tga"), good);
    testutil::WriteBytes(dir.file("cut.tga"), Bytes(good.begin(), good.end() - 4));
    struct Case {
        std::string file;
        int quiet, result;
        std::string err;
    };
    const std::string head = "   Image dimensions: 3 x 2 x 24\n";
    const Case cases[] = {
        {"good.tga", 0, 1, "Reading file \"" + dir.file("good.tga") + "\"\n" + head},
        {"good.tga", 1, 1, ""},
        {"missing.tga", 1, 0, "Failed to open file \"" + dir.file("missing.tga") + "\"\n"},
        {"cut.tga", 0, 0, "Reading file \"" + dir.file("cut.tga") + "\"\n" + head + "   Image read failed\n"},
        {"cut.tga", 1, 0, "   Image read failed\n"},
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        options.quiet = c.quiet;
        int result = -1;
        EXPECT_EQ(StderrOf([&] { result = LoadTGA(dir.file(c.file).c_str()); }), c.err) << c.file;
        EXPECT_EQ(result, c.result) << c.file;
        EXPECT_EQ(options.imagename, c.result ? dir.file(c.file) : std::string("no image")) << c.file;
        if (c.file != "missing.tga") {
            EXPECT_EQ(options.width * 100 + options.height * 10 + options.depth / 8, 323) << "header sizes kept";
        }
    }
    options.depth = 17;
    MakeTestImage();
    EXPECT_EQ(options.width * 1000 + options.height, 400300);
    EXPECT_EQ(options.depth, 17);
    EXPECT_STREQ(options.imagename, "No Image");
    EXPECT_TRUE(std::all_of(image, image + 400 * 300, [](BitmapPixel p) { return Same_BitmapPixel(p, {255, 255, 255, 255}); }));
}

TEST(UpdateImages, BlackIsASumOfSquaresBelow128SquaredInBytesAndBits)
{
    // 73^2 * 3 = 15987 is black, 74^2 * 3 = 16428 white; 127^2 = 16129
    // black, 128^2 = 16384 white; alpha plays no part. 70 pixels: the bits
    // take two words.
    std::vector<BitmapPixel> px{{73, 73, 73, 255}, {74, 74, 74, 255}, {128, 128, 128, 255}, {127, 0, 0, 255},
                                {128, 0, 0, 255},  {0, 127, 0, 0},    {0, 0, 128, 0},       {0, 0, 0, 0},
                                {255, 255, 255, 0}, {72, 73, 74, 9},  {100, 100, 0, 7}};
    const std::vector<int> black{1, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0};
    while (px.size() < 70)
        px.push_back(px[px.size() % 11]);
    for (int invert : {0, 1}) {
        SetDefaultOptions();
        options.quiet = 1;
        options.invert = invert;
        Destroy_Bitmap(image);
        options.width = 70;
        options.height = 1;
        image = Create_Bitmap(70, 1);
        std::copy(px.begin(), px.end(), image);
        StderrOf([] { UpdateImages(); });
        for (int x = 0; x < 70; x++) {
            EXPECT_EQ(bwimage[x], (black[x % 11] ^ invert) ? 0 : 255) << x;
            EXPECT_EQ(BitAt(x, 0), black[x % 11] ^ invert) << x;
        }
    }
    // The same rule from grey and from red-green-blue rows.
    uint64_t row[2];
    std::vector<unsigned char> rgb, grey;
    for (const BitmapPixel &p : px) {
        rgb.insert(rgb.end(), {p.r, p.g, p.b});
        grey.push_back(p.g);
    }
    ThresholdRow(rgb.data(), 3, 70, row);
    for (int x = 0; x < 70; x++)
        EXPECT_EQ((row[x / 64] >> (x % 64)) & 1, black[x % 11]) << x;
    ThresholdRow(grey.data(), 1, 70, row);
    for (int x = 0; x < 70; x++)
        EXPECT_EQ((row[x / 64] >> (x % 64)) & 1, px[x].g <= 73) << x;
    EXPECT_EQ(row[1] >> 6, 0u) << "nothing beyond the width";
}

TEST(UpdateImages, NoBlackWarningAndRegionReset)
{
    SetDefaultOptions();
    options.quiet = 1;
    MakeTestImage();
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "Warning, image contains no black\n");
    image[7] = {0, 0, 0, 255};
    options.left = 7;
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "");
    // Reset to 0 .. 100000, then clamped to the image by the counter's start.
    EXPECT_EQ(options.left + options.right + options.top + options.bottom, 700);
    options.useregion = 1;
    options.left = 7;
    options.right = 9;
    StderrOf([] { UpdateImages(); });
    EXPECT_EQ(options.left * 100 + options.right, 709) << "a given region stays";
    // All black and inverted: no black, also in the bits past a word's end.
    Erase_Bitmap(image, 400, 300, BitmapPixel{0, 0, 0, 255});
    options.invert = 1;
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "Warning, image contains no black\n");
    options.width = 0;
    EXPECT_EQ(StderrOf([] { UpdateImages(); }), "Warning, image contains no black\n") << "no pixels at all";
}

TEST(LoadTGA, QuietRunsReadStraightIntoTheSameBits)
{
    // Every file of the TGA fuzz corpus, valid or hostile: a quiet load
    // reads rows straight into bits, the window's load reads the colour
    // picture first. Same outcome, same errors, same bits, also inverted.
    const std::string src = testutil::Env("TALVOR_SRC");
    int files = 0, read = 0;
    for (const std::string folder : {"/fuzz/corpus/", "/fuzz/found/"}) {
        DIR *d = opendir((src + folder).c_str());
        ASSERT_NE(d, nullptr) << folder;
        while (dirent *e = readdir(d)) {
            if (e->d_name[0] == '.')
                continue;
            const std::string path = src + folder + e->d_name;
            for (int invert : {0, 1}) {
                SetDefaultOptions();
                options.invert = invert;
                int viaimage = 0;
                std::string err = StderrOf([&] { viaimage = LoadTGA(path.c_str()); });
                // Only the window's progress lines differ.
                err = err.substr(err.find('\n') + 1);
                err = err.substr(err.find('\n') + 1);
                options.quiet = 1;
                if (viaimage)
                    err += StderrOf([] { UpdateImages(); });
                const std::vector<uint64_t> expected = Bits();
                int direct = 0;
                std::string quieterr = StderrOf([&] { direct = LoadTGA(path.c_str()); });
                if (direct)
                    quieterr += StderrOf([] { UpdateImages(); });
                ASSERT_EQ(direct, viaimage) << path;
                ASSERT_EQ(quieterr, err) << path;
                if (direct) {
                    ASSERT_EQ(Bits(), expected) << path << " invert " << invert;
                }
                read += direct;
            }
            files++;
        }
        closedir(d);
    }
    EXPECT_GT(files, 100);
    EXPECT_GT(read, 20);
}
