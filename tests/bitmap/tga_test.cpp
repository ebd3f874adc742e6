// TGA reader: hand-made files of every type and depth, every error code,
// hostile packets, and files written by ImageMagick.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "bitmap.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Header {
    int idlength = 0, cmaptype = 0, type = 2, cmaporigin = 0, cmaplength = 0, cmapdepth = 0;
    int width = 1, height = 1, bpp = 24, descriptor = 0;
};

Bytes HeaderBytes(const Header &h)
{
    auto lo = [](int v) { return static_cast<unsigned char>(v & 0xFF); };
    auto hi = [](int v) { return static_cast<unsigned char>((v >> 8) & 0xFF); };
    return Bytes{lo(h.idlength), lo(h.cmaptype), lo(h.type),
                 lo(h.cmaporigin), hi(h.cmaporigin), lo(h.cmaplength), hi(h.cmaplength), lo(h.cmapdepth),
                 0, 0, 0, 0, // x and y origin
                 lo(h.width), hi(h.width), lo(h.height), hi(h.height), lo(h.bpp), lo(h.descriptor)};
}

Bytes Cat(Bytes a, const Bytes &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct Decoded {
    int rc = -1, width = 0, height = 0;
    std::vector<BitmapPixel> px;
};

// Reads through the calls the program makes: TGA_Info, an exactly sized
// bitmap, TGA_Read. AddressSanitizer catches any write past it.
Decoded Read(const Bytes &file)
{
    Decoded d;
    FILE *f = testutil::MemoryStream(file);
    int w, h, depth;
    TGA_Info(f, &w, &h, &depth);
    BitmapPixel *bm = Create_Bitmap(w, h);
    const size_t n = Bitmap_PixelCount(w, h);
    for (size_t i = 0; i < n; i++)
        bm[i] = BitmapPixel{1, 2, 3, 4}; // marks pixels the reader never reached
    d.rc = TGA_Read(f, bm, &d.width, &d.height);
    d.px.assign(bm, bm + n);
    Destroy_Bitmap(bm);
    std::fclose(f);
    return d;
}

std::string Str(const BitmapPixel &p)
{
    return std::to_string(p.r) + "," + std::to_string(p.g) + "," + std::to_string(p.b) + "," +
           std::to_string(p.a);
}

std::vector<std::string> Strs(const std::vector<BitmapPixel> &v)
{
    std::vector<std::string> s;
    for (const auto &p : v)
        s.push_back(Str(p));
    return s;
}

const char *kUntouched = "1,2,3,4";

} // namespace

TEST(TgaMerge, EachPixelSize)
{
    struct Case {
        Bytes in;
        int n;
        std::string out;
    };
    const Case cases[] = {
        {{10, 20, 30, 40}, 4, "30,20,10,40"},
        {{10, 20, 30}, 3, "30,20,10,255"},
        // 16 bits: 1-5-5-5 widened by a shift of three, attribute bit -> alpha 128.
        {{0xFF, 0xFF}, 2, "248,248,248,128"},
        {{0x1F, 0x00}, 2, "0,0,248,0"},
        {{0xE0, 0x03}, 2, "0,248,0,0"},
        {{0x00, 0x7C}, 2, "248,0,0,0"},
        {{77}, 1, "77,77,77,255"},
        {{1, 2, 3, 4, 5}, 5, kUntouched},
        {{1}, 0, kUntouched},
    };
    for (const auto &c : cases) {
        BitmapPixel p{1, 2, 3, 4};
        TGA_MergeBytes(&p, c.in.data(), c.n);
        EXPECT_EQ(Str(p), c.out) << "n=" << c.n;
    }
}

TEST(TgaInfo, ReadsSignedSizesAndRewinds)
{
    Header h;
    h.width = 0xFFFF; // -1 as a signed 16-bit value
    h.height = 300;
    h.bpp = 32;
    FILE *f = testutil::MemoryStream(Cat(HeaderBytes(h), Bytes(10, 0)));
    int w = 0, ht = 0, d = 0;
    TGA_Info(f, &w, &ht, &d);
    EXPECT_EQ(w, -1);
    EXPECT_EQ(ht, 300);
    EXPECT_EQ(d, 32);
    EXPECT_EQ(std::ftell(f), 0);
    std::fclose(f);

    // A short file leaves zeros for the fields it lacks; nothing fails.
    f = testutil::MemoryStream(Bytes{0, 0, 2});
    TGA_Info(f, &w, &ht, &d);
    EXPECT_EQ(w, 0);
    EXPECT_EQ(ht, 0);
    EXPECT_EQ(d, 0);
    std::fclose(f);
}

TEST(TgaRead, UncompressedTrueColourAndGreyAtEveryDepth)
{
    struct Case {
        int type, bpp;
        Bytes pixels;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {2, 24, {10, 20, 30, 1, 2, 3}, {"30,20,10,255", "3,2,1,255"}},
        {2, 32, {10, 20, 30, 40, 1, 2, 3, 4}, {"30,20,10,40", "3,2,1,4"}},
        {2, 16, {0xFF, 0xFF, 0x1F, 0x00}, {"248,248,248,128", "0,0,248,0"}},
        {2, 8, {9, 250}, {"9,9,9,255", "250,250,250,255"}},
        {3, 8, {9, 250}, {"9,9,9,255", "250,250,250,255"}},
        // The pixel rule follows the byte count, not the type: a 16-bit grey
        // file is decoded as 16-bit colour.
        {3, 16, {0xFF, 0xFF, 0x1F, 0x00}, {"248,248,248,128", "0,0,248,0"}},
    };
    for (const auto &c : cases) {
        Header h;
        h.type = c.type;
        h.bpp = c.bpp;
        h.width = 2;
        const Decoded d = Read(Cat(HeaderBytes(h), c.pixels));
        EXPECT_EQ(d.rc, 0) << "type " << c.type << " bpp " << c.bpp;
        EXPECT_EQ(Strs(d.px), c.expected) << "type " << c.type << " bpp " << c.bpp;
    }
}

TEST(TgaRead, IdFieldAndColourMapAreSkippedInTrueColourFiles)
{
    Header h;
    h.idlength = 3;
    h.cmaptype = 1;
    h.cmaplength = 2;
    h.cmapdepth = 24;
    const Bytes file = Cat(Cat(HeaderBytes(h), Bytes{'a', 'b', 'c', 1, 1, 1, 2, 2, 2}), Bytes{10, 20, 30});
    const Decoded d = Read(file);
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), std::vector<std::string>{"30,20,10,255"});
}

TEST(TgaRead, TopLeftOriginIsTurnedBottomRowFirst)
{
    Header h;
    h.type = 3;
    h.bpp = 8;
    h.width = 2;
    h.height = 3;
    const Bytes rows{1, 1, 2, 2, 3, 3}; // rows A, B, C in file order
    EXPECT_EQ(Strs(Read(Cat(HeaderBytes(h), rows)).px),
              (std::vector<std::string>{"1,1,1,255", "1,1,1,255", "2,2,2,255", "2,2,2,255",
                                        "3,3,3,255", "3,3,3,255"}));
    h.descriptor = 32 | 16; // top-left origin; the right-to-left bit is ignored
    EXPECT_EQ(Strs(Read(Cat(HeaderBytes(h), rows)).px),
              (std::vector<std::string>{"3,3,3,255", "3,3,3,255", "2,2,2,255", "2,2,2,255",
                                        "1,1,1,255", "1,1,1,255"}));
}

TEST(TgaRead, RunLengthPacketsAndRowCrossing)
{
    Header h;
    h.type = 10;
    h.bpp = 24;
    h.width = 4;
    // A run packet of four and a raw packet of four fill one row each.
    Decoded d = Read(Cat(HeaderBytes(h), Bytes{0x83, 1, 2, 3}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), std::vector<std::string>(4, "3,2,1,255"));
    d = Read(Cat(HeaderBytes(h), Bytes{0x03, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), (std::vector<std::string>{"1,1,1,255", "2,2,2,255", "3,3,3,255", "4,4,4,255"}));

    // 3 x 2 grey (type 11): a run of 4 crosses the row end, then a raw 2.
    h.type = 11;
    h.bpp = 8;
    h.width = 3;
    h.height = 2;
    d = Read(Cat(HeaderBytes(h), Bytes{0x83, 7, 0x01, 8, 9}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), (std::vector<std::string>{"7,7,7,255", "7,7,7,255", "7,7,7,255",
                                                    "7,7,7,255", "8,8,8,255", "9,9,9,255"}));
}

TEST(TgaRead, PacketsThatClaimTooMuchAreCutAtTheLastPixel)
{
    Header h;
    h.type = 10;
    h.bpp = 32;
    h.width = 2;
    h.height = 1;
    // A run of 128 into a two-pixel image.
    Decoded d = Read(Cat(HeaderBytes(h), Bytes{0xFF, 1, 2, 3, 4}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), std::vector<std::string>(2, "3,2,1,4"));
    // A raw packet of 5 into the same image: its surplus pixels are read, not stored.
    Bytes raw{0x04};
    for (int i = 0; i < 5; i++)
        raw.insert(raw.end(), {static_cast<unsigned char>(i), 0, 0, 255});
    d = Read(Cat(HeaderBytes(h), raw));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), (std::vector<std::string>{"0,0,0,255", "0,0,1,255"}));
    // ... and a truncated surplus is still reported as a short raw packet.
    raw.resize(raw.size() - 2);
    EXPECT_EQ(Read(Cat(HeaderBytes(h), raw)).rc, 6);
}

TEST(TgaRead, ColourMappedFiles)
{
    Header h;
    h.type = 1;
    h.bpp = 8;
    h.cmaptype = 1;
    h.cmaplength = 3;
    h.cmapdepth = 24;
    h.width = 4;
    const Bytes palette{10, 20, 30, 40, 50, 60, 70, 80, 90};
    // Index 200 lies beyond the palette and takes the last entry.
    Decoded d = Read(Cat(Cat(HeaderBytes(h), palette), Bytes{0, 1, 2, 200}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px),
              (std::vector<std::string>{"30,20,10,255", "60,50,40,255", "90,80,70,255", "90,80,70,255"}));

    // 16-bit palette entries use the 16-bit pixel rule.
    h.cmapdepth = 16;
    h.cmaplength = 2;
    h.width = 2;
    d = Read(Cat(Cat(HeaderBytes(h), Bytes{0xFF, 0xFF, 0x1F, 0x00}), Bytes{1, 0}));
    EXPECT_EQ(Strs(d.px), (std::vector<std::string>{"0,0,248,0", "248,248,248,128"}));

    // With an ID field, the palette is still read from right after the
    // header: the ID bytes become the first palette bytes, and the pixel
    // data is found after ID and palette.
    h.cmapdepth = 24;
    h.idlength = 3;
    d = Read(Cat(Cat(Cat(HeaderBytes(h), Bytes{'I', 'D', '!'}), Bytes{1, 2, 3, 4, 5, 6}), Bytes{0, 1}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), (std::vector<std::string>{"33,68,73,255", "3,2,1,255"}));
}

TEST(TgaRead, ColourMappedWithoutEntriesProducesNoPaletteRead)
{
    Header h;
    h.type = 1;
    h.bpp = 8;
    h.cmaptype = 1;
    h.cmaplength = 0;
    h.cmapdepth = 24;
    const Decoded d = Read(Cat(HeaderBytes(h), Bytes{5}));
    EXPECT_EQ(d.rc, 0);
    EXPECT_EQ(Strs(d.px), std::vector<std::string>{"0,0,0,0"});
}

TEST(TgaRead, EveryErrorCode)
{
    struct Case {
        const char *what;
        Header h;
        Bytes body;
        int rc;
    };
    Header type9;
    type9.type = 9;
    Header bpp15;
    bpp15.bpp = 15;
    Header cmap2;
    cmap2.cmaptype = 2;
    Header rle;
    rle.type = 10;
    rle.width = 4;
    Header mapped;
    mapped.type = 1;
    mapped.bpp = 8;
    mapped.cmaptype = 1;
    mapped.cmaplength = 4;
    mapped.cmapdepth = 24;
    Header wide;
    wide.width = 3;
    const Case cases[] = {
        {"colour-mapped run-length (type 9)", type9, {0, 0, 0}, 1},
        {"15 bits per pixel", bpp15, {0, 0}, 2},
        {"colour map type 2", cmap2, {0, 0, 0}, 3},
        {"uncompressed file cut short", wide, {1, 2, 3, 4, 5, 6, 7}, 4},
        {"colour map cut short", mapped, {1, 2, 3, 4, 5}, 5},
        {"colour index missing", mapped, Bytes(12, 0), 4},
        {"packet header missing", rle, {0x81, 1, 2, 3}, 4},
        {"raw packet cut short", rle, {0x03, 1, 2, 3, 4, 5, 6}, 6},
        {"empty file", Header{}, {}, 1},
    };
    for (const auto &c : cases) {
        const Bytes file = c.h.type == 2 && c.body.empty() && c.rc == 1 ? Bytes{} : Cat(HeaderBytes(c.h), c.body);
        EXPECT_EQ(Read(file).rc, c.rc) << c.what;
    }
    // What was decoded before the end stays; sizes are set before any check.
    const Decoded d = Read(Cat(HeaderBytes(wide), Bytes{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(d.width, 3);
    EXPECT_EQ(d.height, 1);
    EXPECT_EQ(Strs(d.px), (std::vector<std::string>{"3,2,1,255", "6,5,4,255", kUntouched}));
}

TEST(TgaRead, RandomHostileFilesNeverWritePastTheImage)
{
    // Valid headers with random bodies: under AddressSanitizer any write past
    // the exactly sized bitmap or read of a missing palette entry aborts.
    std::mt19937 gen(2024);
    const int types[] = {1, 2, 3, 10, 11};
    const int depths[] = {8, 16, 24, 32};
    for (int iter = 0; iter < 3000; iter++) {
        Header h;
        h.type = types[gen() % 5];
        h.bpp = depths[gen() % 4];
        h.width = static_cast<int>(gen() % 9);
        h.height = static_cast<int>(gen() % 9);
        h.idlength = static_cast<int>(gen() % 4);
        h.cmaptype = static_cast<int>(gen() % 2);
        h.cmaplength = static_cast<int>(gen() % 6);
        h.cmapdepth = static_cast<int>(gen() % 40);
        h.descriptor = static_cast<int>(gen() % 256);
        Bytes body(gen() % 300);
        for (auto &b : body)
            b = static_cast<unsigned char>(gen());
        const Decoded d = Read(Cat(HeaderBytes(h), body));
        EXPECT_GE(d.rc, 0);
        EXPECT_LE(d.rc, 6);
    }
}

// ImageMagick writes the files here; our reader must give back the pixels
// ImageMagick itself reports for them.
TEST(TgaRead, FilesWrittenByImageMagick)
{
    ASSERT_TRUE(testutil::HaveCommand("/usr/bin/convert")) << "ImageMagick missing: run scripts/install-deps";
    testutil::TempDir dir;
    // A 5 x 3 source with distinct colours and alphas, as raw RGBA, top row first.
    const int w = 5, h = 3;
    Bytes rgba;
    for (int i = 0; i < w * h; i++)
        rgba.insert(rgba.end(), {static_cast<unsigned char>(17 * i), static_cast<unsigned char>(255 - 13 * i),
                                 static_cast<unsigned char>(i % 2 ? 200 : 40),
                                 static_cast<unsigned char>(255 - 16 * i)});
    // Two equal neighbours so that run-length files carry a run packet.
    for (int k = 0; k < 4; k++)
        rgba[4 + k] = rgba[k];
    testutil::WriteBytes(dir.file("src.rgba"), rgba);

    struct Case {
        const char *name;
        const char *options;
        bool alpha;
        bool grey;
    };
    const Case cases[] = {
        {"rgb24.tga", "-alpha off -type TrueColor", false, false},
        {"rgba32.tga", "-type TrueColorAlpha", true, false},
        {"grey8.tga", "-alpha off -colorspace Gray -type Grayscale", false, true},
        {"rle24.tga", "-alpha off -type TrueColor -compress RLE", false, false},
        {"rle32.tga", "-type TrueColorAlpha -compress RLE", true, false},
        {"rlegrey.tga", "-alpha off -colorspace Gray -type Grayscale -compress RLE", false, true},
    };
    for (const auto &c : cases) {
        const std::string tga = dir.file(c.name);
        auto r = testutil::Shell("/usr/bin/convert -size 5x3 -depth 8 rgba:" + dir.file("src.rgba") + " " +
                                 c.options + " " + tga);
        ASSERT_EQ(r.status, 0) << r.err;
        // What ImageMagick says the picture is, upright, top row first.
        // ImageMagick keeps a TGA's rows in file order and records the origin
        // as an orientation; -auto-orient applies it.
        r = testutil::Shell("/usr/bin/convert " + tga + " -auto-orient -depth 8 rgba:" + dir.file("back.rgba"));
        ASSERT_EQ(r.status, 0) << r.err;
        const Bytes want = testutil::ReadBytes(dir.file("back.rgba"));
        ASSERT_EQ(want.size(), static_cast<size_t>(w * h * 4));

        const Decoded d = Read(testutil::ReadBytes(tga));
        ASSERT_EQ(d.rc, 0) << c.name;
        ASSERT_EQ(d.width, w);
        ASSERT_EQ(d.height, h);
        for (int y = 0; y < h; y++)
            for (int x = 0; x < w; x++) {
                const BitmapPixel p = d.px[x + y * w];         // ours: bottom row first
                const unsigned char *q = &want[4 * (x + (h - 1 - y) * w)];
                const std::string at = std::string(c.name) + " at " + std::to_string(x) + "," + std::to_string(y);
                EXPECT_EQ(p.r, q[0]) << at;
                EXPECT_EQ(p.g, q[1]) << at;
                EXPECT_EQ(p.b, q[2]) << at;
                EXPECT_EQ(p.a, c.alpha ? q[3] : 255) << at;
                if (c.grey) {
                    EXPECT_TRUE(p.r == p.g && p.g == p.b) << at;
                }
            }
    }
}
