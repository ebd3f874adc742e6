// Image writer: golden bytes worked out by hand for every format code, the
// run-length encoder's packets (its carry-over quirk included), round trips
// through our TGA reader, and the files opened by the tools people use:
// ImageMagick, libtiff's tiffinfo/tiffdump and Ghostscript.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "testutil.h"
#include "tga.h"
#include "writer.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Image = std::vector<BitmapPixel>;

// The 3 x 2 fixture: no two pixels alike and r, g, b, a apart in most of
// them, so a swapped channel, a swapped row or a dropped alpha shows; the
// grey levels of C and D truncate. Row 0 (the bottom of the picture) is
// A B C, row 1 is D E F. Z is A with another alpha.
const BitmapPixel A{200, 16, 33, 255}, B{7, 250, 100, 0}, C{1, 2, 4, 128};
const BitmapPixel D{255, 255, 254, 10}, E{0, 0, 0, 255}, F{90, 91, 95, 77};
const BitmapPixel Z{200, 16, 33, 254};
const Image kFixture{A, B, C, D, E, F};

// The fixture's samples in each format's order, worked out from the values above.
const Bytes kRgb0{0xc8, 0x10, 0x21, 0x07, 0xfa, 0x64, 0x01, 0x02, 0x04};
const Bytes kRgb1{0xff, 0xff, 0xfe, 0x00, 0x00, 0x00, 0x5a, 0x5b, 0x5f};
const Bytes kBgr0{0x21, 0x10, 0xc8, 0x64, 0xfa, 0x07, 0x04, 0x02, 0x01};
const Bytes kBgr1{0xfe, 0xff, 0xff, 0x00, 0x00, 0x00, 0x5f, 0x5b, 0x5a};
const Bytes kBgra0{0x21, 0x10, 0xc8, 0xff, 0x64, 0xfa, 0x07, 0x00, 0x04, 0x02, 0x01, 0x80};
const Bytes kBgra1{0xfe, 0xff, 0xff, 0x0a, 0x00, 0x00, 0x00, 0xff, 0x5f, 0x5b, 0x5a, 0x4d};

// A pixel from the low eight bits of each value.
BitmapPixel Px(unsigned r, unsigned g, unsigned b, unsigned a)
{
    auto u8 = [](unsigned v) { return static_cast<unsigned char>(v & 255); };
    return BitmapPixel{u8(r), u8(g), u8(b), u8(a)};
}

Bytes Cat(std::initializer_list<Bytes> parts)
{
    Bytes out;
    for (const Bytes &p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

Bytes Text(const std::string &s)
{
    return Bytes(s.begin(), s.end());
}

// Everything fn writes to a fresh stream.
Bytes Capture(const std::function<void(FILE *)> &fn)
{
    FILE *f = std::tmpfile();
    if (f == nullptr)
        throw std::runtime_error("tmpfile failed");
    fn(f);
    Bytes out(static_cast<size_t>(std::ftell(f)));
    std::rewind(f);
    const size_t got = std::fread(out.data(), 1, out.size(), f);
    std::fclose(f);
    out.resize(got);
    return out;
}

Bytes Written(const Image &img, int w, int h, int code)
{
    return Capture([&](FILE *f) { Write_Bitmap(f, img.data(), w, h, code); });
}

::testing::AssertionResult SameBytes(const Bytes &got, const Bytes &want)
{
    size_t i = 0;
    while (i < got.size() && i < want.size() && got[i] == want[i])
        i++;
    if (i == got.size() && i == want.size())
        return ::testing::AssertionSuccess();
    auto at = [i](const Bytes &b) {
        return i < b.size() ? std::to_string(b[i]) : std::string("end of data");
    };
    return ::testing::AssertionFailure() << "first difference at offset " << i << ": got " << at(got)
                                         << ", want " << at(want) << " (sizes " << got.size() << " and "
                                         << want.size() << ")";
}

Image Flipped(const Image &img, int w, int h)
{
    Image out(img.size());
    for (int y = 0; y < h; y++)
        std::copy_n(img.begin() + y * w, w, out.begin() + (h - 1 - y) * w);
    return out;
}

struct Decoded {
    int rc = -1, width = 0, height = 0, depth = 0;
    Image px;
};

Decoded ReadTga(const Bytes &file)
{
    Decoded d;
    FILE *f = testutil::MemoryStream(file);
    int w, h;
    TGA_Info(f, &w, &h, &d.depth);
    d.px.assign(Bitmap_PixelCount(w, h), BitmapPixel{1, 2, 3, 4});
    d.rc = TGA_Read(f, d.px.data(), &d.width, &d.height);
    std::fclose(f);
    return d;
}

bool SamePixels(const Image &a, const Image &b)
{
    auto same = [](BitmapPixel p, BitmapPixel q) { return Same_BitmapPixel(p, q) != 0; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), same);
}

Image Opaque(Image img)
{
    for (BitmapPixel &p : img)
        p.a = 255;
    return img;
}

// ---------------------------------------------------------------- golden bytes

TEST(WriteBitmap, GoldenBytesOfTheFixtureForEveryBinaryCode)
{
    const Bytes tga24{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, // no ID, no map, true colour, zeros
                      3, 0, 2, 0,                         // width, height
                      24, 0};                             // bits, descriptor: bottom-left
    const Bytes tga32{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0,
                      32, 8}; // eight alpha bits
    const Bytes rle24{0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 24, 0};
    const Bytes rle32{0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 32, 8};
    const Bytes sgi = Cat({{0x01, 0xda,   // magic 474
                            0x00, 0x01,   // verbatim, 1 byte per sample
                            0x00, 0x03,   // 3 dimensions
                            0x00, 0x03,   // width
                            0x00, 0x02,   // height
                            0x00, 0x03,   // 3 channels
                            0, 0, 0, 0,   // minimum 0
                            0, 0, 0, 255, // maximum 255
                            0, 0, 0, 0},
                           Text("WriteBitmap, qrn"), // name, unterminated
                           Bytes(8, 0)});
    const Bytes bmp{'B', 'M', 72, 0, 0, 0, // file size 54 + 18
                    0, 0, 0, 0,           // reserved
                    54, 0, 0, 0,          // pixel data offset
                    40, 0, 0, 0,          // information header size
                    3, 0, 0, 0,           // width
                    2, 0, 0, 0,           // height
                    1, 0, 24, 0,          // planes, bits per pixel
                    0, 0, 0, 0,           // uncompressed
                    18, 0, 0, 0,          // image size, 3 bytes per pixel
                    1, 0, 0, 0, 1, 0, 0, 0, // 1 pixel per metre each way
                    0, 0, 0, 0, 0, 0, 0, 0}; // colours used, important
    const struct {
        int code;
        Bytes want;
    } cases[] = {
        {1, Cat({tga24, kBgr0, kBgr1})},
        {11, Cat({tga32, kBgra0, kBgra1})},
        // Each row is one raw packet of three: the encoder restarts per row.
        {12, Cat({rle24, {0x02}, kBgr0, {0x02}, kBgr1})},
        {13, Cat({rle32, {0x02}, kBgra0, {0x02}, kBgra1})},
        {2, Cat({Text("P6\n3 2\n255\n"), kRgb0, kRgb1})},
        {3, Cat({sgi, kRgb0, kRgb1})},
        // (r + g + b) / 3 truncated: 249/3, 357/3, 7/3, 764/3, 0, 276/3.
        {4, {83, 119, 2, 254, 0, 92}},
        {8, Cat({kRgb0, kRgb1})},
        {9, Cat({bmp, kBgr0, kBgr1})}, // 9-byte rows, not padded to 12
    };
    for (const auto &c : cases)
        EXPECT_TRUE(SameBytes(Written(kFixture, 3, 2, c.code), c.want)) << "code " << c.code;
}

TEST(WriteBitmap, PpmOfRedAndBlue)
{
    const Image img{{255, 0, 0, 255}, {0, 0, 255, 255}};
    EXPECT_TRUE(SameBytes(Written(img, 2, 1, 2), Cat({Text("P6\n2 1\n255\n"), {255, 0, 0, 0, 0, 255}})));
}

TEST(WriteBitmap, BmpOfThreeByOneIs63BytesWithAnUnpaddedRow)
{
    const Bytes want = Cat({{'B', 'M', 63, 0, 0, 0,                   // file size 63
                             0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0,   // reserved, data offset, info size
                             3, 0, 0, 0, 1, 0, 0, 0,                 // width 3, height 1
                             1, 0, 24, 0, 0, 0, 0, 0,                // 1 plane, 24 bits, uncompressed
                             9, 0, 0, 0,                             // image size: 9, not padded to 12
                             1, 0, 0, 0, 1, 0, 0, 0,                 // pixels per metre
                             0, 0, 0, 0, 0, 0, 0, 0},                // colours used, important
                            kBgr0});
    const Bytes got = Written(kFixture, 3, 1, 9);
    EXPECT_EQ(got.size(), 63u);
    EXPECT_TRUE(SameBytes(got, want));
}

TEST(WriteBitmap, TiffOfOnePixelIs209BytesWithItsDirectoryAfterTheData)
{
    const Bytes want{
        0x4d, 0x4d, 0x00, 0x2a,                                     // "MM", 42
        0x00, 0x00, 0x00, 0x0b,                                     // directory at N + 8 = 11
        0xc8, 0x10, 0x21,                                           // the pixel, r g b
        0x00, 0x0e,                                                 // 14 entries
        0x01, 0x00, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x01, 0x00, 0x00, // ImageWidth 1
        0x01, 0x01, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x01, 0x00, 0x00, // ImageLength 1
        0x01, 0x02, 0x00, 0x03, 0, 0, 0, 3, 0x00, 0x00, 0x00, 0xb9, // BitsPerSample at 185
        0x01, 0x03, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x01, 0x00, 0x00, // Compression none
        0x01, 0x06, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x02, 0x00, 0x00, // Photometric RGB
        0x01, 0x11, 0x00, 0x04, 0, 0, 0, 1, 0x00, 0x00, 0x00, 0x08, // StripOffsets 8
        0x01, 0x12, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x01, 0x00, 0x00, // Orientation top left
        0x01, 0x15, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x03, 0x00, 0x00, // SamplesPerPixel 3
        0x01, 0x16, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x01, 0x00, 0x00, // RowsPerStrip 1
        0x01, 0x17, 0x00, 0x04, 0, 0, 0, 1, 0x00, 0x00, 0x00, 0x03, // StripByteCounts 3
        0x01, 0x18, 0x00, 0x03, 0, 0, 0, 3, 0x00, 0x00, 0x00, 0xbf, // MinSampleValue at 191
        0x01, 0x19, 0x00, 0x03, 0, 0, 0, 3, 0x00, 0x00, 0x00, 0xc5, // MaxSampleValue at 197
        0x01, 0x1c, 0x00, 0x03, 0, 0, 0, 1, 0x00, 0x01, 0x00, 0x00, // PlanarConfiguration 1
        0x01, 0x53, 0x00, 0x03, 0, 0, 0, 3, 0x00, 0x00, 0x00, 0xcb, // SampleFormat at 203
        0, 0, 0, 0,                                                 // no next directory
        0, 8, 0, 8, 0, 8,                                           // 185: bits per sample
        0, 0, 0, 0, 0, 0,                                           // 191: minima
        0, 255, 0, 255, 0, 255,                                     // 197: maxima
        0, 1, 0, 1, 0, 1};                                          // 203: unsigned
    ASSERT_EQ(want.size(), 209u);
    EXPECT_TRUE(SameBytes(Written(kFixture, 1, 1, 5), want));
}

TEST(WriteBitmap, EpsTextOfTheFixture)
{
    // Colour, top row first: six digits already reach the width of 3, so
    // every pixel ends a line.
    const std::string colour = "%!PS-Adobe-3.0 EPSF-3.0\n"
                               "%%Creator: Created from pixmill by Ostrander\n"
                               "%%BoundingBox: 0 0 3 2\n"
                               "%%LanguageLevel: 2\n"
                               "%%Pages: 1\n"
                               "%%DocumentData: Clean7Bit\n"
                               "3 2 scale\n"
                               "3 2 8 [3 0 0 -2 0 2]\n"
                               "{currentfile 3 3 mul string readhexstring pop} bind\n"
                               "false 3 colorimage\n"
                               "fffffe\n000000\n5a5b5f\nc81021\n07fa64\n010204\n"
                               "\n%%EOF\n";
    EXPECT_TRUE(SameBytes(Written(kFixture, 3, 2, -6), Text(colour)));

    // Grey, bottom row first: lines of four digits run on across the row end.
    const std::string grey = "%!PS-Adobe-3.0 EPSF-3.0\n"
                             "%%Creator: Created from pixmill by Ostrander\n"
                             "%%BoundingBox: 0 0 3 2\n"
                             "%%LanguageLevel: 2\n"
                             "%%Pages: 1\n"
                             "%%DocumentData: Clean7Bit\n"
                             "3 2 scale\n"
                             "3 2 8 [3 0 0 -2 0 2]\n"
                             "{currentfile 3 string readhexstring pop} bind\n"
                             "false 1 colorimage\n"
                             "5377\n02fe\n005c\n"
                             "\n%%EOF\n";
    EXPECT_TRUE(SameBytes(Written(kFixture, 3, 2, 7), Text(grey)));
}

TEST(WriteBitmap, EpsLineBreaksCompareTheDigitCountWithTheWidth)
{
    // The samples come as `lines` lines of `digits` hex digits, then `rest`
    // digits without a newline, before "\n%%EOF\n".
    const struct {
        int code, width, height, lines, digits, rest;
    } cases[] = {
        {7, 8, 2, 4, 8, 0},      // grey, 4 pixels a line
        {6, 8, 2, 8, 12, 0},     // colour, 2 pixels a line
        {6, 4, 2, 8, 6, 0},      // colour, every pixel
        {7, 5, 2, 3, 6, 2},      // ceil(5 / 2) pixels, lines run across rows
        {6, 13, 1, 4, 18, 6},    // ceil(13 / 6) pixels
        {6, 30, 2, 12, 30, 0},   // 5 pixels: 30 digits reach the width
        {6, 100, 2, 16, 72, 48}, // wider than 72: 12 pixels, across rows
        {7, 100, 1, 2, 72, 56},  // 36 pixels
    };
    for (const auto &c : cases) {
        std::vector<size_t> want(static_cast<size_t>(c.lines), static_cast<size_t>(c.digits));
        want.push_back(static_cast<size_t>(c.rest));
        const Image img(static_cast<size_t>(c.width * c.height), BitmapPixel{18, 52, 86, 255});
        const Bytes out = Written(img, c.width, c.height, c.code);
        const std::string s(out.begin(), out.end());
        const std::string start = c.code == 6 ? "false 3 colorimage\n" : "false 1 colorimage\n";
        const size_t from = s.find(start) + start.size();
        const std::string end = "\n%%EOF\n";
        ASSERT_EQ(s.substr(s.size() - end.size()), end);
        std::vector<size_t> lines;
        std::istringstream samples(s.substr(from, s.size() - end.size() - from) + "\n");
        for (std::string line; std::getline(samples, line);)
            lines.push_back(line.size());
        EXPECT_EQ(lines, want) << "code " << c.code << ", width " << c.width;
    }
}

TEST(WriteBitmap, CodesWithoutAFormatWriteNothing)
{
    for (int code : {0, 10, -10, 14, -14, 15, 100, INT_MAX, INT_MIN, INT_MIN + 1})
        EXPECT_TRUE(Written(kFixture, 3, 2, code).empty()) << "code " << code;
}

TEST(WriteBitmap, NegativeCodeWritesTheRowsTopFirst)
{
    const Image flipped = Flipped(kFixture, 3, 2);
    for (int code : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13}) {
        const Bytes down = Written(kFixture, 3, 2, -code);
        EXPECT_TRUE(SameBytes(down, Written(flipped, 3, 2, code))) << "code " << code;
        EXPECT_FALSE(SameBytes(down, Written(kFixture, 3, 2, code))) << "code " << code;
        EXPECT_TRUE(SameBytes(Written(kFixture, 3, 1, -code), Written(kFixture, 3, 1, code))) << code;
    }
}

TEST(WriteBitmap, EmptyImagesWriteOnlyHeadersAndTrailers)
{
    // Bytes per code for an image without pixels: header (and, for TIFF, the
    // directory and its values) only.
    const struct {
        int code;
        size_t size;
    } fixed[] = {{1, 18}, {11, 18}, {12, 18}, {13, 18}, {3, 48}, {4, 0}, {5, 206}, {8, 0}, {9, 54}};
    const int sizes[][2] = {{0, 0}, {3, 0}, {0, 2}, {-2, 5}, {4, -1}, {-3, -3}};
    for (const auto &wh : sizes) {
        for (const auto &c : fixed)
            EXPECT_EQ(Written({}, wh[0], wh[1], c.code).size(), c.size) << "code " << c.code;
        const std::string dims = std::to_string(wh[0]) + " " + std::to_string(wh[1]);
        EXPECT_TRUE(SameBytes(Written({}, wh[0], wh[1], 2), Text("P6\n" + dims + "\n255\n")));
        for (int code : {6, 7}) {
            const Bytes eps = Written({}, wh[0], wh[1], code);
            const std::string s(eps.begin(), eps.end()), tail = "colorimage\n\n%%EOF\n";
            EXPECT_EQ(s.substr(s.size() - tail.size()), tail) << "code " << code;
            EXPECT_NE(s.find("%%BoundingBox: 0 0 " + dims + "\n"), std::string::npos) << s;
        }
    }
    // Sizes go into the headers as given: the TIFF of -2 x 5 claims
    // N = -30 sample bytes, so its directory is at N + 8 = -22.
    const Bytes tiff = Written({}, -2, 5, 5);
    EXPECT_TRUE(SameBytes(Bytes(tiff.begin() + 4, tiff.begin() + 8), Bytes{0xff, 0xff, 0xff, 0xea}));
}

TEST(WriteBitmap, HeadersKeepTheLow16BitsOfTheSize)
{
    // 70000 = 0x11170 and -1 = 0xffff in 16 bits.
    const Bytes tga = Written({}, 70000, -1, 1);
    EXPECT_TRUE(SameBytes(Bytes(tga.begin() + 12, tga.begin() + 16), Bytes{0x70, 0x11, 0xff, 0xff}));
    const Bytes sgi = Written({}, 70000, -1, 3);
    EXPECT_TRUE(SameBytes(Bytes(sgi.begin() + 6, sgi.begin() + 10), Bytes{0x11, 0x70, 0xff, 0xff}));
    // TIFF with height 0: ImageWidth's value is at 8 + 2 + 8.
    const Bytes tiff = Written({}, 70000, 0, 5);
    EXPECT_TRUE(SameBytes(Bytes(tiff.begin() + 18, tiff.begin() + 22), Bytes{0x11, 0x70, 0, 0}));
    // BMP keeps all 32 bits.
    const Bytes bmp = Written({}, 70000, -1, 9);
    const Bytes bmpsize{0x70, 0x11, 0x01, 0, 0xff, 0xff, 0xff, 0xff};
    EXPECT_TRUE(SameBytes(Bytes(bmp.begin() + 18, bmp.begin() + 26), bmpsize));
}

TEST(ByteWriters, LongIntIsBigEndianAndReturnsTheLastPut)
{
    const struct {
        int value;
        Bytes want;
    } cases[] = {{0x01020304, {1, 2, 3, 4}}, {-2, {0xff, 0xff, 0xff, 0xfe}}, {INT_MIN, {0x80, 0, 0, 0}}};
    for (const auto &c : cases) {
        char buf[4] = {};
        int rc = 0;
        EXPECT_TRUE(SameBytes(Capture([&](FILE *f) { rc = BM_WriteLongInt(f, buf, c.value); }), c.want));
        EXPECT_TRUE(SameBytes(Bytes(buf, buf + 4), c.want));
        EXPECT_EQ(rc, c.want[3]);
    }
    // A stream that cannot be written: fputc's EOF comes back.
    testutil::TempDir dir;
    testutil::WriteText(dir.file("ro"), "");
    FILE *ro = std::fopen(dir.file("ro").c_str(), "rb");
    char buf[4];
    EXPECT_EQ(BM_WriteLongInt(ro, buf, 7), EOF);
    std::fclose(ro);
}

TEST(ByteWriters, HexStringTakesDigitPairsInEitherCase)
{
    const struct {
        const char *text;
        Bytes want;
    } cases[] = {{"4d4d002a", {0x4d, 0x4d, 0x00, 0x2a}}, {"00FFaB", {0x00, 0xff, 0xab}},
                 {"123", {0x12, 0x03}}, {"f", {0x0f}}, {"", {}}};
    for (const auto &c : cases)
        EXPECT_TRUE(SameBytes(Capture([&](FILE *f) { BM_WriteHexString(f, c.text); }), c.want)) << c.text;
}

// ------------------------------------------------------ run-length packets

BitmapPixel Letter(char c)
{
    switch (c) {
    case 'A': return A;
    case 'B': return B;
    case 'C': return C;
    default: return Z;
    }
}

// "128A B A": 128 pixels A, one B, one A.
Image RowOf(const std::string &spec)
{
    Image row;
    std::istringstream in(spec);
    for (std::string tok; in >> tok;) {
        const size_t n = tok.size() > 1 ? std::stoul(tok.substr(0, tok.size() - 1)) : 1;
        row.insert(row.end(), n, Letter(tok.back()));
    }
    return row;
}

// "ff A 81 B": two hex digits are a packet header, a letter is a pixel as
// the file stores it (b, g, r and, with 4 bytes, a).
Bytes PacketsOf(const std::string &spec, int bytes)
{
    Bytes out;
    std::istringstream in(spec);
    for (std::string tok; in >> tok;) {
        if (tok.size() == 2) {
            out.push_back(static_cast<unsigned char>(std::stoul(tok, nullptr, 16)));
            continue;
        }
        const BitmapPixel p = Letter(tok[0]);
        out.insert(out.end(), {p.b, p.g, p.r});
        if (bytes == 4)
            out.push_back(p.a);
    }
    return out;
}

Bytes EncodedRow(const Image &row, int bytes)
{
    const int w = static_cast<int>(row.size());
    return Capture([&](FILE *f) { WriteTGACompressedRow(f, row.data(), w, bytes); });
}

TEST(TgaRunLength, PacketsOfHandWorkedRows)
{
    const struct {
        const char *row;
        int bytes;
        const char *want;
    } cases[] = {
        {"A", 3, "80 A"},
        {"130A", 3, "ff A 81 A"}, // 128 then 2
        {"128A", 3, "ff A"},
        {"129A", 3, "ff A 80 A"},
        {"256A", 3, "ff A ff A"},
        {"A 3B", 3, "00 A 82 B"}, // the raw pixel before a run stands alone
        {"A Z", 3, "01 A Z"},     // alpha differs: two raw pixels, though alpha is not written
        {"A Z", 4, "01 A Z"},
        {"2A B", 3, "81 A 80 B"},
        {"2A B C", 3, "81 A 01 B C"},
        {"A B A B", 3, "03 A B A B"},
        {"A B 2C", 3, "01 A B 81 C"},
        // After the full packet the reference is still A and the new first
        // pixel B is never compared: the final A counts as a second B. The
        // row decodes as 128 A, B, B.
        {"128A B A", 3, "ff A 81 B"},
        {"128A B A", 4, "ff A 81 B"},
        // Same carry-over: B differs from the old reference, so the packet
        // goes raw and holds two equal pixels (it still decodes right).
        {"128A 2B", 3, "ff A 01 B B"},
        {"128A B C", 3, "ff A 01 B C"},
    };
    for (const auto &c : cases)
        EXPECT_TRUE(SameBytes(EncodedRow(RowOf(c.row), c.bytes), PacketsOf(c.want, c.bytes)))
            << c.row << " at " << c.bytes << " bytes";
}

TEST(TgaRunLength, CarryOverAfterAFullPacketDecodesToAnotherRow)
{
    const Image row = RowOf("128A B A");
    const Decoded d = ReadTga(Written(row, 130, 1, 13));
    ASSERT_EQ(d.rc, 0);
    EXPECT_TRUE(SamePixels(d.px, RowOf("128A 2B")));
}

TEST(TgaRunLength, FullRawPacketCarriesItsLastPixelAsReference)
{
    // 128 pixels each unlike its neighbour, then X, then the 128th again.
    Image row;
    for (unsigned i = 0; i < 128; i++)
        row.push_back(Px(i, 255 - i, 7, 255));
    const BitmapPixel x{9, 9, 9, 9};
    row.push_back(x);
    row.push_back(row[127]);
    Bytes want{0x7f};
    for (int i = 0; i < 128; i++)
        want.insert(want.end(), {7, static_cast<unsigned char>(255 - i), static_cast<unsigned char>(i)});
    want.insert(want.end(), {0x81, 9, 9, 9}); // X twice: the last pixel is lost
    EXPECT_TRUE(SameBytes(EncodedRow(row, 3), want));
}

TEST(TgaRunLength, WidthBelowOneWritesNothing)
{
    for (int w : {0, -1, -300})
        EXPECT_TRUE(Capture([&](FILE *f) { WriteTGACompressedRow(f, nullptr, w, 3); }).empty()) << w;
    // Write_Bitmap still calls it per row and writes just the header.
    EXPECT_EQ(Written({}, 0, 4, 12).size(), 18u);
}

// ------------------------------------------------------------ round trips

// Rows made of runs of 1 to maxrun pixels, from a small palette (with an
// alpha-only variant) or random colours. When cap is set, no more than 100
// single-pixel runs come in a row, so no raw packet fills up either.
Image RunImage(std::mt19937 &rng, int w, int h, int maxrun, bool cap)
{
    const BitmapPixel palette[] = {A, B, C, Z};
    Image img;
    for (int y = 0; y < h; y++) {
        BitmapPixel prev{0, 0, 0, 1};
        int singles = 0, x = 0;
        while (x < w) {
            int len = rng() % 2 ? 1 : 1 + static_cast<int>(rng() % static_cast<unsigned>(maxrun));
            if (cap && singles >= 100 && maxrun > 1)
                len = 2;
            len = std::min(len, w - x);
            singles = len == 1 ? singles + 1 : 0;
            BitmapPixel p;
            do {
                const uint32_t v = rng();
                p = rng() % 2 ? palette[rng() % 4] : Px(v, v >> 8, v >> 16, v >> 24);
            } while (Same_BitmapPixel(p, prev));
            img.insert(img.end(), static_cast<size_t>(len), p);
            prev = p;
            x += len;
        }
    }
    return img;
}

void ExpectTgaRoundTrip(const Image &img, int w, int h, int code)
{
    const Decoded d = ReadTga(Written(img, w, h, code));
    const bool alpha = code == 11 || code == 13 || code == -11 || code == -13;
    ASSERT_EQ(d.rc, 0);
    EXPECT_EQ(d.width, w);
    EXPECT_EQ(d.height, h);
    EXPECT_EQ(d.depth, alpha ? 32 : 24);
    // The files have a bottom-left origin: a negative code stores the picture upside down.
    const Image want = code > 0 ? img : Flipped(img, w, h);
    EXPECT_TRUE(SamePixels(d.px, alpha ? want : Opaque(want))) << "code " << code << ", " << w << " x " << h;
}

TEST(RoundTrip, EveryTgaCodeReadsBackThroughOurReader)
{
    std::mt19937 rng(20240501);
    const int sizes[][2] = {{1, 1}, {3, 2}, {7, 5}, {128, 3}, {129, 2}, {300, 4}};
    for (const auto &wh : sizes) {
        const Image img = RunImage(rng, wh[0], wh[1], 127, true);
        for (int code : {1, 11, 12, 13, -1, -11, -12, -13})
            ExpectTgaRoundTrip(img, wh[0], wh[1], code);
    }
    ExpectTgaRoundTrip(kFixture, 3, 2, 13);
}

TEST(RoundTrip, RandomRowsWhosePacketsNeverFillUpAreExact)
{
    std::mt19937 rng(1);
    for (int i = 0; i < 300; i++) {
        const int w = 1 + static_cast<int>(rng() % 1000), h = 1 + static_cast<int>(rng() % 4);
        const Image img = RunImage(rng, w, h, 127, true);
        ExpectTgaRoundTrip(img, w, h, i % 2 ? 12 : 13);
    }
}

TEST(RoundTrip, RandomRowsUpTo128WideAreExactWhateverTheirRuns)
{
    std::mt19937 rng(2);
    for (int i = 0; i < 300; i++) {
        const int w = 1 + static_cast<int>(rng() % 128), h = 1 + static_cast<int>(rng() % 4);
        const Image img = RunImage(rng, w, h, w, false);
        ExpectTgaRoundTrip(img, w, h, i % 2 ? 12 : 13);
    }
    const Image full = RowOf("128A");
    ExpectTgaRoundTrip(full, 128, 1, 13);
}

TEST(RoundTrip, DistinctNeighboursAreExactAcrossFullRawPackets)
{
    Image row;
    for (unsigned i = 0; i < 1000; i++)
        row.push_back(Px(i, i >> 8, 50, 200));
    ExpectTgaRoundTrip(row, 1000, 1, 13);
}

// ------------------------------------------------------------ real readers

::testing::AssertionResult Tool(const char *path)
{
    if (access(path, X_OK) == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << path << " is missing: run scripts/install-deps";
}

// The picture as the tools give it: top row first, r g b (and a).
Bytes TopDown(const Image &img, int w, int h, bool alpha)
{
    Bytes out;
    for (int y = h - 1; y >= 0; y--)
        for (int x = 0; x < w; x++) {
            const BitmapPixel p = img[static_cast<size_t>(x + y * w)];
            out.insert(out.end(), {p.r, p.g, p.b});
            if (alpha)
                out.push_back(p.a);
        }
    return out;
}

Bytes GreyTopDown(const Image &img, int w, int h, int per)
{
    Bytes out;
    for (int y = h - 1; y >= 0; y--)
        for (int x = 0; x < w; x++) {
            const BitmapPixel p = img[static_cast<size_t>(x + y * w)];
            const int grey = (p.r + p.g + p.b) / 3;
            out.insert(out.end(), static_cast<size_t>(per), static_cast<unsigned char>(grey));
        }
    return out;
}

Bytes Out(const testutil::RunResult &r)
{
    return Bytes(r.out.begin(), r.out.end());
}

class RealReaders : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::mt19937 rng(7);
        img_ = RunImage(rng, kW, kH, 20, true);
    }

    std::string Save(int code, const std::string &name)
    {
        const std::string path = dir_.file(name);
        testutil::WriteBytes(path, Written(img_, kW, kH, code));
        return path;
    }

    static constexpr int kW = 37, kH = 5; // odd width, lines and rows out of step
    testutil::TempDir dir_;
    Image img_;
};

TEST_F(RealReaders, ImageMagickReadsTheTgaCodes)
{
    ASSERT_TRUE(Tool("/usr/bin/convert"));
    for (int code : {1, 11, 12, 13}) {
        const bool alpha = code == 11 || code == 13;
        // ImageMagick 6 keeps a bottom-up TGA's rows in file order and records
        // Orientation BottomLeft; -auto-orient turns the picture upright.
        const auto r = testutil::Run({"/usr/bin/convert", Save(code, "t.tga"), "-auto-orient", "-depth", "8",
                                      alpha ? "rgba:-" : "rgb:-"});
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_TRUE(SameBytes(Out(r), TopDown(img_, kW, kH, alpha))) << "code " << code;
    }
}

TEST_F(RealReaders, ImageMagickReadsRandomRunLengthImages)
{
    ASSERT_TRUE(Tool("/usr/bin/convert"));
    std::mt19937 rng(3);
    for (int code : {12, 13}) {
        const int w = 300 + static_cast<int>(rng() % 200), h = 1 + static_cast<int>(rng() % 20);
        const Image img = RunImage(rng, w, h, 127, true);
        const std::string path = dir_.file("r.tga");
        testutil::WriteBytes(path, Written(img, w, h, code));
        const auto r = testutil::Run({"/usr/bin/convert", path, "-auto-orient", "-depth", "8", "rgba:-"});
        ASSERT_EQ(r.status, 0) << r.err;
        const Image want = code == 13 ? img : Opaque(img);
        EXPECT_TRUE(SameBytes(Out(r), TopDown(want, w, h, true))) << "code " << code;
    }
}

TEST_F(RealReaders, ImageMagickReadsPpmRawAndTopDownTiff)
{
    ASSERT_TRUE(Tool("/usr/bin/convert"));
    const std::string size = std::to_string(kW) + "x" + std::to_string(kH);
    const struct {
        int code;
        std::vector<std::string> input;
        bool grey;
    } cases[] = {
        {-2, {Save(-2, "p.ppm")}, false},
        {-5, {Save(-5, "t.tif")}, false},
        {-8, {"-size", size, "-depth", "8", "rgb:" + Save(-8, "p.rgb")}, false},
        {-4, {"-size", size, "-depth", "8", "gray:" + Save(-4, "p.gray")}, true},
    };
    for (const auto &c : cases) {
        std::vector<std::string> argv{"/usr/bin/convert"};
        argv.insert(argv.end(), c.input.begin(), c.input.end());
        argv.insert(argv.end(), {"-depth", "8", c.grey ? "gray:-" : "rgb:-"});
        const auto r = testutil::Run(argv);
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_TRUE(SameBytes(Out(r), c.grey ? GreyTopDown(img_, kW, kH, 1) : TopDown(img_, kW, kH, false)))
            << "code " << c.code;
    }
}

TEST_F(RealReaders, ImageMagickReadsBmpOnlyWhenRowsNeedNoPadding)
{
    ASSERT_TRUE(Tool("/usr/bin/convert"));
    for (int w : {4, 8}) {
        std::mt19937 rng(static_cast<unsigned>(w));
        const Image pic = RunImage(rng, w, 3, 3, true);
        const std::string path = dir_.file("b.bmp");
        testutil::WriteBytes(path, Written(pic, w, 3, 9));
        const auto r = testutil::Run({"/usr/bin/convert", path, "-depth", "8", "rgb:-"});
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_TRUE(SameBytes(Out(r), TopDown(pic, w, 3, false))) << "width " << w;
    }
    // Our rows are 3 x width bytes, as the header's size fields say; BMP
    // readers expect each row padded to a multiple of four bytes, so for an
    // odd width ImageMagick wants more data than there is and refuses the file.
    const auto r = testutil::Run({"/usr/bin/convert", Save(9, "odd.bmp"), "-depth", "8", "rgb:-"});
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("insufficient image data"), std::string::npos) << r.err;
}

TEST_F(RealReaders, ImageMagickRefusesTheSgiStyleImage)
{
    // Code 3's header stops at 48 bytes and its samples are interleaved; a
    // real SGI image has a 512-byte header and planar samples.
    ASSERT_TRUE(Tool("/usr/bin/convert"));
    const auto r = testutil::Run({"/usr/bin/convert", "sgi:" + Save(3, "i.sgi"), "rgb:-"});
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("improper image header"), std::string::npos) << r.err;
}

TEST_F(RealReaders, LibtiffAcceptsTheTiff)
{
    ASSERT_TRUE(Tool("/usr/bin/tiffinfo"));
    ASSERT_TRUE(Tool("/usr/bin/tiffdump"));
    const std::string path = Save(-5, "t.tif");
    const auto info = testutil::Run({"/usr/bin/tiffinfo", path});
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(info.err, "");
    for (const char *line : {"Image Width: 37 Image Length: 5", "Bits/Sample: 8", "Samples/Pixel: 3",
                             "Photometric Interpretation: RGB color", "Rows/Strip: 5"})
        EXPECT_NE(info.out.find(line), std::string::npos) << line << " not in\n" << info.out;
    const auto dump = testutil::Run({"/usr/bin/tiffdump", path});
    ASSERT_EQ(dump.status, 0) << dump.err;
    for (const char *line : {"Directory 0: offset 563 ", "BitsPerSample (258) SHORT (3) 3<8 8 8>",
                             "StripByteCounts (279) LONG (4) 1<555>"})
        EXPECT_NE(dump.out.find(line), std::string::npos) << line << " not in\n" << dump.out;
}

// Pixels of a binary PPM (P6), skipping the comment Ghostscript puts in the header.
Bytes PpmPixels(const std::string &ppm, int *w, int *h)
{
    std::istringstream in(ppm);
    std::string magic;
    in >> magic;
    int vals[3] = {0, 0, 0};
    for (int &v : vals) {
        while ((in >> std::ws).peek() == '#')
            in.ignore(1 << 20, '\n');
        in >> v;
    }
    in.get();
    *w = vals[0];
    *h = vals[1];
    const std::string rest(std::istreambuf_iterator<char>(in), {});
    return magic == "P6" ? Bytes(rest.begin(), rest.end()) : Bytes{};
}

TEST_F(RealReaders, GhostscriptRendersTheEpsUpright)
{
    ASSERT_TRUE(Tool("/usr/bin/gs"));
    // At 72 dpi one image pixel is one point is one device pixel; EPSCrop
    // sizes the page from the BoundingBox.
    for (int code : {-6, -7}) {
        const std::string out = dir_.file("g.ppm");
        const auto r = testutil::Run({"/usr/bin/gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER",
                                      "-sDEVICE=ppmraw", "-r72", "-dEPSCrop", "-sOutputFile=" + out,
                                      Save(code, "g.eps")});
        ASSERT_EQ(r.status, 0) << r.err;
        int w = 0, h = 0;
        const Bytes px = PpmPixels(testutil::ReadText(out), &w, &h);
        EXPECT_EQ(w, kW);
        EXPECT_EQ(h, kH);
        EXPECT_TRUE(SameBytes(px, code == -6 ? TopDown(img_, kW, kH, false) : GreyTopDown(img_, kW, kH, 3)))
            << "code " << code;
    }
}

} // namespace
