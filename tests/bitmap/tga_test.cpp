// TGA reader: hand-made files of every type and depth, every error code,
// hostile packets, and files written by ImageMagick.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "bitmap.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

// An 18-byte header followed by the body: type, bits per pixel, width,
// height, descriptor, ID length, colour map type, length and depth.
Bytes Tga(int type, int bpp, int w, int h, Bytes body, int desc = 0, int idlen = 0, int cmtype = 0,
          int cmlen = 0, int cmdepth = 0)
{
    auto b = [](int v) { return static_cast<unsigned char>(v & 0xFF); };
    Bytes f{b(idlen), b(cmtype), b(type), 0, 0, b(cmlen), b(cmlen >> 8), b(cmdepth), 0, 0, 0, 0,
            b(w), b(w >> 8), b(h), b(h >> 8), b(bpp), b(desc)};
    for (unsigned char c : body)
        f.push_back(c);
    return f;
}

struct Decoded {
    int rc = -1, width = 0, height = 0;
    std::string pixels; // "r,g,b,a" per pixel, blank-separated; 1,2,3,4 = never written
};

// Reads as the program does: TGA_Info, an exactly sized bitmap, TGA_Read.
// AddressSanitizer catches any write past the bitmap.
Decoded Read(const Bytes &file)
{
    Decoded d;
    FILE *f = testutil::MemoryStream(file);
    int w, h, depth;
    TGA_Info(f, &w, &h, &depth);
    const size_t n = Bitmap_PixelCount(w, h);
    BitmapPixel *bm = Create_Bitmap(w, h);
    std::fill(bm, bm + n, BitmapPixel{1, 2, 3, 4});
    d.rc = TGA_Read(f, bm, &d.width, &d.height);
    for (size_t i = 0; i < n; i++)
        d.pixels += (i ? " " : "") + std::to_string(bm[i].r) + "," + std::to_string(bm[i].g) + "," +
                    std::to_string(bm[i].b) + "," + std::to_string(bm[i].a);
    Destroy_Bitmap(bm);
    std::fclose(f);
    return d;
}

} // namespace

TEST(TgaRead, EveryTypeAndDepthDecodesToKnownPixels)
{
    struct Case {
        const char *what;
        Bytes file;
        const char *pixels;
    };
    const Case cases[] = {
        {"24-bit", Tga(2, 24, 2, 1, {10, 20, 30, 1, 2, 3}), "30,20,10,255 3,2,1,255"},
        {"32-bit", Tga(2, 32, 2, 1, {10, 20, 30, 40, 1, 2, 3, 4}), "30,20,10,40 3,2,1,4"},
        // 16 bits: 5 bits a channel shifted left by three, the top bit as alpha 128.
        {"16-bit", Tga(2, 16, 4, 1, {0xFF, 0xFF, 0x1F, 0, 0xE0, 0x03, 0, 0x7C}),
         "248,248,248,128 0,0,248,0 0,248,0,0 248,0,0,0"},
        {"8-bit grey", Tga(3, 8, 2, 1, {9, 250}), "9,9,9,255 250,250,250,255"},
        {"8-bit true colour is grey", Tga(2, 8, 1, 1, {77}), "77,77,77,255"},
        // The pixel rule follows the byte count, not the type.
        {"16-bit grey is 16-bit colour", Tga(3, 16, 1, 1, {0x1F, 0}), "0,0,248,0"},
        {"ID field and colour map skipped", Tga(2, 24, 1, 1, {'a', 'b', 'c', 1, 1, 1, 2, 2, 2, 10, 20, 30}, 0, 3, 1, 2, 24),
         "30,20,10,255"},
        {"run packet of four", Tga(10, 24, 4, 1, {0x83, 1, 2, 3}), "3,2,1,255 3,2,1,255 3,2,1,255 3,2,1,255"},
        {"raw packet of four", Tga(10, 24, 4, 1, {0x03, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}),
         "1,1,1,255 2,2,2,255 3,3,3,255 4,4,4,255"},
        {"packets crossing a row (type 11)", Tga(11, 8, 3, 2, {0x83, 7, 0x01, 8, 9}),
         "7,7,7,255 7,7,7,255 7,7,7,255 7,7,7,255 8,8,8,255 9,9,9,255"},
        {"bottom-left origin: file rows in order", Tga(3, 8, 1, 3, {1, 2, 3}), "1,1,1,255 2,2,2,255 3,3,3,255"},
        // Bit 5 turns the rows over; the right-to-left bit (16) is ignored.
        {"top-left origin", Tga(3, 8, 1, 3, {1, 2, 3}, 32 | 16), "3,3,3,255 2,2,2,255 1,1,1,255"},
        // A run of 128 and a raw packet of 5 into two pixels: cut at the end;
        // the surplus raw pixels are read but not stored.
        {"run past the end", Tga(10, 32, 2, 1, {0xFF, 1, 2, 3, 4}), "3,2,1,4 3,2,1,4"},
        {"raw packet past the end", Tga(10, 8, 2, 1, {0x04, 5, 6, 7, 8, 9}), "5,5,5,255 6,6,6,255"},
        // Index 200 is beyond the palette: the last entry.
        {"colour map, 24-bit entries", Tga(1, 8, 4, 1, {10, 20, 30, 40, 50, 60, 70, 80, 90, 0, 1, 2, 200}, 0, 0, 1, 3, 24),
         "30,20,10,255 60,50,40,255 90,80,70,255 90,80,70,255"},
        {"colour map, 16-bit entries", Tga(1, 8, 2, 1, {0xFF, 0xFF, 0x1F, 0, 1, 0}, 0, 0, 1, 2, 16),
         "0,0,248,0 248,248,248,128"},
        // The palette is read from just after the header: ID bytes become its
        // first bytes, while the pixels are found after ID and palette.
        {"colour map after an ID field", Tga(1, 8, 2, 1, {'I', 'D', '!', 1, 2, 3, 4, 5, 6, 0, 1}, 0, 3, 1, 2, 24),
         "33,68,73,255 3,2,1,255"},
        {"colour map with no entries", Tga(1, 8, 1, 1, {5}, 0, 0, 1, 0, 24), "0,0,0,0"},
    };
    for (const auto &c : cases) {
        const Decoded d = Read(c.file);
        EXPECT_EQ(d.rc, 0) << c.what;
        EXPECT_EQ(d.pixels, c.pixels) << c.what;
    }
}

TEST(TgaRead, EveryErrorCodeKeepsWhatWasDecoded)
{
    struct Case {
        const char *what;
        Bytes file;
        int rc;
    };
    const Case cases[] = {
        {"colour-mapped run-length (type 9)", Tga(9, 8, 1, 1, {0}), 1},
        {"empty file", {}, 1},
        {"15 bits per pixel", Tga(2, 15, 1, 1, {0, 0}), 2},
        {"colour map type 2", Tga(2, 24, 1, 1, {0, 0, 0}, 0, 0, 2), 3},
        {"uncompressed file cut short", Tga(2, 24, 3, 1, {1, 2, 3, 4, 5, 6, 7}), 4},
        {"colour index missing", Tga(1, 8, 1, 1, Bytes(12, 0), 0, 0, 1, 4, 24), 4},
        {"packet header missing", Tga(10, 24, 4, 1, {0x81, 1, 2, 3}), 4},
        {"colour map cut short", Tga(1, 8, 1, 1, {1, 2, 3, 4, 5}, 0, 0, 1, 4, 24), 5},
        {"raw packet cut short", Tga(10, 24, 4, 1, {0x03, 1, 2, 3, 4, 5, 6}), 6},
        {"raw surplus beyond the image cut short", Tga(10, 8, 2, 1, {0x04, 5, 6, 7}), 6},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Read(c.file).rc, c.rc) << c.what;
    const Decoded d = Read(Tga(2, 24, 3, 1, {1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(d.width, 3);
    EXPECT_EQ(d.pixels, "3,2,1,255 6,5,4,255 1,2,3,4");
}

TEST(TgaInfo, SignedSizesShortHeadersAndRewind)
{
    FILE *f = testutil::MemoryStream(Tga(2, 32, 0xFFFF, 300, Bytes(10, 0)));
    int w = 0, h = 0, d = 0;
    TGA_Info(f, &w, &h, &d);
    EXPECT_EQ(w, -1) << "width is a signed 16-bit value";
    EXPECT_EQ(h, 300);
    EXPECT_EQ(d, 32);
    EXPECT_EQ(std::ftell(f), 0);
    std::fclose(f);
    f = testutil::MemoryStream({0, 0, 2});
    TGA_Info(f, &w, &h, &d);
    EXPECT_EQ(w + h + d, 0) << "missing fields read as zero";
    std::fclose(f);
    // Pixel sizes outside 1 to 4 leave the pixel alone.
    BitmapPixel p{1, 2, 3, 4};
    const unsigned char bytes[5] = {9, 9, 9, 9, 9};
    TGA_MergeBytes(&p, bytes, 5);
    TGA_MergeBytes(&p, bytes, 0);
    EXPECT_TRUE(Same_BitmapPixel(p, {1, 2, 3, 4}));
}

TEST(TgaRead, RandomHostileFilesNeverWritePastTheImage)
{
    std::mt19937 gen(2024);
    const int types[] = {1, 2, 3, 10, 11}, depths[] = {8, 16, 24, 32};
    for (int iter = 0; iter < 3000; iter++) {
        Bytes body(gen() % 300);
        for (auto &b : body)
            b = static_cast<unsigned char>(gen());
        const Decoded d = Read(Tga(types[gen() % 5], depths[gen() % 4], static_cast<int>(gen() % 9),
                                   static_cast<int>(gen() % 9), body, static_cast<int>(gen() % 256),
                                   static_cast<int>(gen() % 4), static_cast<int>(gen() % 2),
                                   static_cast<int>(gen() % 6), static_cast<int>(gen() % 40)));
        EXPECT_TRUE(d.rc >= 0 && d.rc <= 6);
    }
}

// ImageMagick writes the files; our reader must give back the pixels
// ImageMagick itself reports for them.
TEST(TgaRead, FilesWrittenByImageMagick)
{
    ASSERT_TRUE(testutil::HaveCommand("/usr/bin/convert")) << "ImageMagick missing: run scripts/install-deps";
    testutil::TempDir dir;
    const int w = 5, h = 3;
    Bytes rgba; // top row first, distinct colours and alphas, two equal neighbours for a run
    for (int i = 0; i < w * h; i++)
        rgba.insert(rgba.end(), {static_cast<unsigned char>(17 * (i == 1 ? 0 : i)),
                                 static_cast<unsigned char>(255 - 13 * (i == 1 ? 0 : i)),
                                 static_cast<unsigned char>(i % 2 && i != 1 ? 200 : 40),
                                 static_cast<unsigned char>(255 - 16 * (i == 1 ? 0 : i))});
    testutil::WriteBytes(dir.file("src.rgba"), rgba);
    const std::pair<const char *, const char *> cases[] = {
        {"rgb24.tga", "-alpha off -type TrueColor"},
        {"rgba32.tga", "-type TrueColorAlpha"},
        {"grey8.tga", "-alpha off -colorspace Gray -type Grayscale"},
        {"rle24.tga", "-alpha off -type TrueColor -compress RLE"},
        {"rle32.tga", "-type TrueColorAlpha -compress RLE"},
        {"rlegrey.tga", "-alpha off -colorspace Gray -type Grayscale -compress RLE"},
    };
    for (const auto &[name, opts] : cases) {
        const std::string tga = dir.file(name), back = dir.file("back.rgba");
        ASSERT_EQ(testutil::Shell("/usr/bin/convert -size 5x3 -depth 8 rgba:" + dir.file("src.rgba") + " " + opts +
                                  " " + tga).status, 0);
        // ImageMagick keeps a TGA's rows in file order and records the origin
        // as an orientation; -auto-orient gives the upright picture.
        ASSERT_EQ(testutil::Shell("/usr/bin/convert " + tga + " -auto-orient -depth 8 rgba:" + back).status, 0);
        const Bytes want = testutil::ReadBytes(back);
        ASSERT_EQ(want.size(), static_cast<size_t>(w * h * 4));
        std::string expected;
        const bool alpha = std::string(opts).find("Alpha") != std::string::npos;
        for (int y = 0; y < h; y++) // ours: bottom row first
            for (int x = 0; x < w; x++) {
                const unsigned char *q = &want[4 * (x + (h - 1 - y) * w)];
                expected += (expected.empty() ? "" : " ") + std::to_string(q[0]) + "," + std::to_string(q[1]) + "," +
                            std::to_string(q[2]) + "," + std::to_string(alpha ? q[3] : 255);
            }
        const Decoded d = Read(testutil::ReadBytes(tga));
        EXPECT_EQ(d.rc, 0) << name;
        EXPECT_EQ(d.pixels, expected) << name;
    }
}
