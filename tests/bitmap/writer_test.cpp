// Image writer: golden bytes worked out by hand for every format code, the
// run-length encoder's packets (its carry-over quirk included), round trips
// through our TGA reader, and the files opened by the tools people use:
// ImageMagick, libtiff's tiffinfo/tiffdump and Ghostscript.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "testutil.h"
#include "tga.h"
#include "writer.h"

using Image = std::vector<BitmapPixel>;

// The 3 x 2 fixture: no two pixels alike and r, g, b, a apart in most of
// them, so a swapped channel, a swapped row or a dropped alpha shows; the
// grey levels of C and the first pixel of the top row truncate. Row 0 (the
// bottom of the picture) is A B C. Z is A with another alpha.
const BitmapPixel A{200, 16, 33, 255}, B{7, 250, 100, 0}, C{1, 2, 4, 128}, Z{200, 16, 33, 254};
const Image kFixture{A, B, C, {255, 255, 254, 10}, {0, 0, 0, 255}, {90, 91, 95, 77}};
const std::map<char, BitmapPixel> kLetters{{'A', A}, {'B', B}, {'C', C}, {'Z', Z}};

// The bytes of pairs of hex digits; blanks between pairs are ignored.
static std::string Hex(const std::string &digits)
{
    std::string out;
    for (size_t i = 0; (i = digits.find_first_not_of(' ', i)) != std::string::npos; i += 2)
        out += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return out;
}

static std::string Capture(const std::function<void(FILE *)> &fn)
{
    FILE *f = std::tmpfile();
    fn(f);
    std::string out(static_cast<size_t>(std::ftell(f)), '\0');
    std::rewind(f);
    out.resize(std::fread(&out[0], 1, out.size(), f));
    std::fclose(f);
    return out;
}

static std::string Written(const Image &img, int w, int h, int code)
{
    return Capture([&](FILE *f) { Write_Bitmap(f, img.data(), w, h, code); });
}

static Image Flipped(const Image &img, int w)
{
    Image out;
    for (auto row = img.end(); row != img.begin(); row -= w)
        out.insert(out.end(), row - w, row);
    return out;
}

// What ImageMagick prints: "w h\n", then the picture top row first as r, g, b,
// a (as 'a') or r, g, b, 255 (as '1'), or one (r + g + b) / 3 byte a pixel (as 'g').
static std::string Seen(const Image &img, int w, char as)
{
    std::string out = std::to_string(w) + " " + std::to_string(img.size() / static_cast<size_t>(w)) + "\n";
    for (const BitmapPixel &p : Flipped(img, w)) {
        const unsigned char grey = static_cast<unsigned char>((p.r + p.g + p.b) / 3);
        const unsigned char rgba[] = {p.r, p.g, p.b, as == 'a' ? p.a : static_cast<unsigned char>(255)};
        out.append(reinterpret_cast<const char *>(as == 'g' ? &grey : rgba), as == 'g' ? 1 : 4);
    }
    return out;
}

TEST(WriteBitmap, GoldenBytesForEveryCodeInBothRowOrders)
{
    // The fixture's rows in each format's sample order, from the values above.
    const std::string rgb = "c81021 07fa64 010204 fffffe 000000 5a5b5f ", bgr0 = "2110c8 64fa07 040201 ";
    const std::string bgr1 = "feffff 000000 5f5b5a ", bgra0 = "2110c8ff 64fa0700 04020180 ";
    const std::string bgra1 = "feffff0a 000000ff 5f5b5a4d ";
    // TGA: no ID, no colour map, type 2 (10 run-length), colour map fields and
    // origin zero, width 3, height 2, then 24 bits and descriptor 0 or 32 bits
    // and 8 alpha bits, bottom row first.
    const std::string tga = "000002 000000000000000000 0300 0200 ", rle = "00000a 000000000000000000 0300 0200 ";
    // SGI-style: magic 474, verbatim, 1 byte a sample, 3 dimensions, 3 x 2,
    // 3 channels, minimum 0, maximum 255, four reserved, the name
    // "WriteBitmap, qrn" unterminated, eight zeros: 48 bytes.
    const std::string sgi = "01da 00 01 0003 0003 0002 0003 00000000 000000ff 00000000 "
                            "5772697465426974 6d61702c2071726e 0000000000000000 ";
    // BMP of 3 x 1, 63 bytes: "BM", file size 63, reserved, data at 54, info
    // header 40, width 3, height 1, 1 plane, 24 bits, uncompressed, image size
    // 9 (the row not padded to 12), 1 pixel a metre each way, colours used and important.
    const std::string bmp = "424d 3f000000 00000000 36000000 28000000 03000000 01000000 0100 1800 00000000 "
                            "09000000 01000000 01000000 00000000 00000000 ";
    // TIFF of 1 x 1, 209 bytes: "MM", 42, directory at N + 8 = 11, the pixel,
    // 14 entries of tag, type (3 short, 4 long), count, value or offset:
    // ImageWidth 1, ImageLength 1, BitsPerSample at 185, Compression none;
    // Photometric RGB, StripOffsets 8, Orientation top left, SamplesPerPixel 3;
    // RowsPerStrip 1, StripByteCounts 3, MinSampleValue at 191, MaxSampleValue at 197;
    // PlanarConfiguration 1, SampleFormat at 203; no next directory; at 185
    // the bits per sample, minima, maxima, sample formats (unsigned).
    const std::string tiff =
        "4d4d002a 0000000b c81021 000e 010000030000000100010000 010100030000000100010000 0102000300000003000000b9 "
        "010300030000000100010000 010600030000000100020000 011100040000000100000008 011200030000000100010000 "
        "011500030000000100030000 011600030000000100010000 011700040000000100000003 0118000300000003000000bf "
        "0119000300000003000000c5 011c00030000000100010000 0153000300000003000000cb 00000000 "
        "000800080008 000000000000 00ff00ff00ff 000100010001";
    const std::string eps = "%!PS-Adobe-3.0 EPSF-3.0\n%%Creator: Created from pixmill by Ostrander\n"
                            "%%BoundingBox: 0 0 3 2\n%%LanguageLevel: 2\n%%Pages: 1\n%%DocumentData: Clean7Bit\n"
                            "3 2 scale\n3 2 8 [3 0 0 -2 0 2]\n{currentfile 3 ";
    // Codes 12 and 13: each row is one raw packet of three, the encoder
    // restarting per row. Code 4: (r + g + b) / 3 truncated: 249/3, 357/3,
    // 7/3, 764/3, 0, 276/3. Code 6: six digits already reach the width of 3,
    // so every pixel ends a line; code 7: lines of four digits run on across
    // the row end.
    const std::tuple<Image, int, int, int, std::string> cases[] = {
        {kFixture, 3, 2, 1, Hex(tga + "1800" + bgr0 + bgr1)}, {kFixture, 3, 2, 11, Hex(tga + "2008" + bgra0 + bgra1)},
        {kFixture, 3, 2, 12, Hex(rle + "1800 02" + bgr0 + "02" + bgr1)}, {kFixture, 3, 2, 3, Hex(sgi + rgb)},
        {kFixture, 3, 2, 13, Hex(rle + "2008 02" + bgra0 + "02" + bgra1)}, {kFixture, 3, 2, 8, Hex(rgb)},
        {kFixture, 3, 2, 2, "P6\n3 2\n255\n" + Hex(rgb)}, {kFixture, 3, 2, 4, Hex("53 77 02 fe 00 5c")},
        {{{255, 0, 0, 255}, {0, 0, 255, 255}}, 2, 1, 2, "P6\n2 1\n255\n" + Hex("ff0000 0000ff")},
        {{A, B, C}, 3, 1, 9, Hex(bmp + bgr0)}, {{A}, 1, 1, 5, Hex(tiff)},
        {kFixture, 3, 2, -6, eps + "3 mul string readhexstring pop} bind\nfalse 3 colorimage\n"
                                   "fffffe\n000000\n5a5b5f\nc81021\n07fa64\n010204\n\n%%EOF\n"},
        {kFixture, 3, 2, 7, eps + "string readhexstring pop} bind\nfalse 1 colorimage\n"
                                  "5377\n02fe\n005c\n\n%%EOF\n"}};
    for (const auto &[img, w, h, code, want] : cases) {
        EXPECT_EQ(Written(img, w, h, code), want) << "code " << code;
        // The sign of the code picks the row order: the flipped picture gives the same file.
        EXPECT_EQ(Written(Flipped(img, w), w, h, -code), want) << "code " << -code;
    }
}

TEST(WriteBitmap, EpsLineBreaksCompareTheDigitCountWithTheWidth)
{
    // The samples come as `lines` lines of `digits` hex digits, then `rest`
    // digits and "\n%%EOF\n". Grey at width 8: 4 pixels a line; colour at
    // width 8: 2 pixels, at 4: every pixel; grey at 5: ceil(5 / 2) pixels,
    // the lines running across rows; colour at 30: 5 pixels, 30 digits reach
    // the width; at 100, wider than 72 digits: 12 colour or 36 grey pixels.
    const std::tuple<int, int, int, int, int, int> cases[] = {
        {7, 8, 2, 4, 8, 0},    {6, 8, 2, 8, 12, 0},     {6, 4, 2, 8, 6, 0},    {7, 5, 2, 3, 6, 2},
        {6, 30, 2, 12, 30, 0}, {6, 100, 2, 16, 72, 48}, {7, 100, 1, 2, 72, 56}};
    for (const auto &[code, w, h, lines, digits, rest] : cases) {
        std::string got = Written(Image(static_cast<size_t>(w * h), A), w, h, code), want;
        got.erase(0, got.find("colorimage\n") + 11);
        std::replace_if(got.begin(), got.end(), [](char ch) { return std::isxdigit(ch) && !std::isupper(ch); }, '.');
        for (int i = 0; i < lines; i++)
            want += std::string(static_cast<size_t>(digits), '.') + "\n";
        EXPECT_EQ(got, want + std::string(static_cast<size_t>(rest), '.') + "\n%%EOF\n") << code << ", width " << w;
    }
}

TEST(WriteBitmap, UnknownCodesWriteNothingAndHeaderFieldsTakeAnyValue)
{
    for (int code : {0, 10, -10, 14, -14, 100, INT_MAX, INT_MIN, INT_MIN + 1})
        EXPECT_EQ(Written(kFixture, 3, 2, code), "") << "code " << code;
    // A side below one leaves the headers (and TIFF's directory and values):
    // TGA 18 bytes, SGI 48, TIFF 206, BMP 54, raw nothing. The TIFF of -2 x 5
    // claims N = -30 sample bytes, its directory at N + 8 = -22. 70000 =
    // 0x11170 is 0x1170 in 16 bits, -1 is 0xffff; BMP keeps all 32 bits.
    const std::pair<int, size_t> sizes[] = {{1, 18}, {11, 18}, {12, 18}, {13, 18}, {3, 48},
                                            {5, 206}, {9, 54}, {4, 0}, {8, 0}};
    for (const auto &[code, size] : sizes)
        EXPECT_EQ(Written({}, -2, 5, code).size(), size) << "code " << code;
    EXPECT_EQ(Written({}, -2, 5, 5).substr(4, 4), Hex("ffffffea"));
    EXPECT_EQ(Written({}, 70000, -1, 1).substr(12, 4) + Written({}, 70000, -1, 3).substr(6, 4),
              Hex("7011ffff 1170ffff"));
    EXPECT_EQ(Written({}, 70000, -1, 9).substr(18, 8), Hex("70110100 ffffffff"));
    // The field writers: BM_WriteLongInt is big-endian, -0x01020305 being
    // 0xfefdfcfb, and returns the last fputc's result, 0xfb = 251;
    // BM_WriteHexString takes digit pairs in either case, a last single digit alone.
    char buf[4] = {};
    int rc = 0;
    EXPECT_EQ(Capture([&](FILE *f) { rc = BM_WriteLongInt(f, buf, -0x01020305); }), Hex("fefdfcfb"));
    EXPECT_EQ(std::string(buf, 4) + std::to_string(rc), Hex("fefdfcfb") + "251");
    EXPECT_EQ(Capture([&](FILE *f) { BM_WriteHexString(f, "00FFaB4d123"); }), Hex("00ffab4d1203"));
}

TEST(TgaRunLength, PacketsOfHandWorkedRows)
{
    // Rows of A, B, C and Z, one letter a pixel; a, b, c are A, B, C as
    // stored. Packet header 0x80 + n - 1 for a run of n, n - 1 before n raw
    // pixels. AZ: alpha differs, so two raw pixels though alpha is not
    // written. ABBB: the raw pixel before a run stands alone. 128 A, B, A:
    // after the full packet the reference is still A and the new first pixel
    // B is never compared, so the last A counts as a second B. 128 A, B, B:
    // B differs from the old reference, so the packet goes raw with two equal pixels.
    const std::string a = " 2110c8 ", b = " 64fa07 ", c = " 040201 ", a128(128, 'A');
    const std::tuple<std::string, int, std::string> cases[] = {
        {"A", 12, "80" + a}, {a128, 12, "ff" + a}, {a128 + "A", 12, "ff" + a + "80" + a},
        {a128 + "AA", 12, "ff" + a + "81" + a}, {a128 + a128, 12, "ff" + a + "ff" + a},
        {"ABBB", 12, "00" + a + "82" + b}, {"AZ", 12, "01" + a + a}, {"AZ", 13, "01 2110c8ff 2110c8fe"},
        {"AAB", 12, "81" + a + "80" + b}, {"AABC", 12, "81" + a + "01" + b + c}, {"ABAB", 12, "03" + a + b + a + b},
        {"ABCC", 12, "01" + a + b + "81" + c}, {a128 + "BA", 12, "ff" + a + "81" + b},
        {a128 + "BA", 13, "ff 2110c8ff 81 64fa0700"}, {a128 + "BB", 12, "ff" + a + "01" + b + b},
        {a128 + "BC", 12, "ff" + a + "01" + b + c}};
    for (const auto &[letters, code, hex] : cases) {
        Image row;
        for (char letter : letters)
            row.push_back(kLetters.at(letter));
        EXPECT_EQ(Written(row, static_cast<int>(row.size()), 1, code).substr(18), Hex(hex)) << letters << ", " << code;
    }
}

// w x h pixels in runs of 1 to maxrun, from A, B, C, Z (Z differs from A in
// alpha only) or random colours, each run unlike the one before. Half the
// runs are one pixel long, the rest mostly longer, so 128 single pixels in a
// row (a full raw packet) come with odds below 2^-100.
static Image RunImage(std::mt19937 &rng, int w, int h, int maxrun)
{
    const auto byte = [&rng] { return static_cast<unsigned char>(rng()); };
    Image img;
    for (const size_t n = static_cast<size_t>(w * h); img.size() < n;) {
        BitmapPixel p = rng() % 2 ? kLetters.at("ABCZ"[rng() % 4]) : BitmapPixel{byte(), byte(), byte(), byte()};
        p.r = static_cast<unsigned char>(p.r ^ (!img.empty() && Same_BitmapPixel(p, img.back()))); // a new run
        const size_t len = rng() % 2 ? 1 : 1 + rng() % static_cast<unsigned>(maxrun);
        img.insert(img.end(), std::min(len, n - img.size()), p);
    }
    return img;
}

// Writes img with the code and reads it back with our TGA reader, expecting
// want: by default the picture itself, with alpha if the code writes it.
static void ExpectReadBack(const Image &img, int w, int h, int code, Image want = {})
{
    const bool alpha = std::abs(code) == 11 || std::abs(code) == 13;
    const std::string file = Written(img, w, h, code);
    FILE *f = testutil::MemoryStream(std::vector<unsigned char>(file.begin(), file.end()));
    int fw = 0, fh = 0, depth = 0;
    TGA_Info(f, &fw, &fh, &depth);
    Image got(Bitmap_PixelCount(fw, fh));
    const int rc = TGA_Read(f, got.data(), &fw, &fh);
    std::fclose(f);
    ASSERT_EQ(std::vector<int>({rc, fw, fh, depth}), std::vector<int>({0, w, h, alpha ? 32 : 24}));
    // The files have a bottom-left origin: a negative code stores the picture upside down.
    want = want.empty() ? code > 0 ? img : Flipped(img, w) : want;
    EXPECT_EQ(Seen(got, w, 'a'), Seen(want, w, alpha ? 'a' : '1')) << "code " << code << ", width " << w;
}

TEST(RoundTrip, EveryTgaCodeReadsBackThroughOurReader)
{
    // Every code both ways up at widths 1, 7, 128, 129, then random widths:
    // exact when rows are at most 128 wide, or when no run reaches 128 pixels.
    std::mt19937 rng(1);
    const int codes[] = {1, 11, 12, 13, -1, -11, -12, -13}, widths[] = {1, 7, 128, 129};
    for (int i = 0; i < 800; i++) {
        const int w = i < 32 ? widths[i / 8] : 1 + static_cast<int>(rng() % (i % 16 < 8 ? 128 : 1000));
        ExpectReadBack(RunImage(rng, w, 3, w <= 128 ? w : 127), w, 3, codes[i % 8]);
    }
    // Distinct neighbours fill raw packets of 128. After the first its last
    // pixel stays the reference, so B and then the 128th pixel again decode
    // as B twice (the run packets' carry-over has its golden bytes above).
    Image row;
    for (unsigned i = 0; i < 1000; i++)
        row.push_back(i == 128 ? B : i == 129 ? row[127] : BitmapPixel{static_cast<unsigned char>(i), 5, 9, 200});
    Image want = row;
    want[129] = B;
    ExpectReadBack(row, 1000, 1, 13, want);
}

TEST(RealReaders, ImageMagickGhostscriptAndLibtiffReadTheFiles)
{
    // Random pictures, 301 x 6 unless said (odd width, runs up to 127, EPS
    // lines out of step with rows), read by ImageMagick (as in Seen).
    // ImageMagick 6 keeps a bottom-up TGA's rows in file order and records
    // Orientation BottomLeft: -auto-orient turns the picture upright.
    // Ghostscript renders the EPS at 72 dpi, one image pixel to one device
    // pixel, the page cropped to the BoundingBox. Our BMP rows are 3 x width
    // bytes, as the header's size fields say; readers expect rows padded to
    // four bytes, so for an odd width ImageMagick wants more data than there
    // is and refuses the file. Code 3's header stops at 48 bytes and its
    // samples are interleaved; a real SGI image has a 512-byte header and
    // planar samples. The TIFF has N = 301 x 6 x 3 = 5418 sample bytes and
    // its directory at N + 8.
    const std::tuple<int, std::string, char, int, std::string> cases[] = {
        {1, "tga", '1', 301, ""},   {11, "tga", 'a', 301, ""}, {12, "tga", '1', 301, ""}, {13, "tga", 'a', 301, ""},
        {-2, "ppm", '1', 301, ""},  {-5, "tiff", '1', 301, ""}, {-8, "rgb", '1', 301, ""}, {-4, "gray", 'g', 301, ""},
        {-6, "eps", '1', 301, ""},  {-7, "eps", 'g', 301, ""}, {9, "bmp", '1', 4, ""},
        {9, "bmp", '1', 301, "insufficient image data"}, {3, "sgi", '1', 301, "improper image header"}};
    for (const char *tool : {"/usr/bin/convert", "/usr/bin/gs", "/usr/bin/tiffinfo", "/usr/bin/tiffdump"})
        ASSERT_EQ(access(tool, X_OK), 0) << tool << " is missing: run scripts/install-deps";
    const testutil::TempDir dir;
    std::mt19937 rng(7);
    for (const auto &[code, in, as, w, refusal] : cases) {
        const Image img = RunImage(rng, w, 6, 127);
        const std::string file = dir.file(in);
        testutil::WriteText(file, Written(img, w, 6, code));
        if (in == "eps")
            testutil::Run({"/usr/bin/gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=ppmraw", "-r72",
                           "-dEPSCrop", "-sOutputFile=" + file + ".ppm", file});
        const auto r = testutil::Run({"/usr/bin/convert", "-size", std::to_string(w) + "x6", "-depth", "8",
                                      in == "eps" ? "ppm:" + file + ".ppm" : in + ":" + file, "-auto-orient",
                                      "-depth", "8", "-print", "%w %h\n", as == 'g' ? "gray:-" : "rgba:-"});
        EXPECT_EQ(r.status != 0 && r.err.find(refusal) != std::string::npos, !refusal.empty()) << r.err;
        EXPECT_EQ(r.out, refusal.empty() ? Seen(img, w, as) : r.out) << "code " << code;
    }
    const auto info = testutil::Run({"/usr/bin/tiffinfo", dir.file("tiff")});
    const auto dump = testutil::Run({"/usr/bin/tiffdump", dir.file("tiff")});
    EXPECT_EQ(std::to_string(info.status + dump.status) + info.err + dump.err, "0"); // no failure, no warning
    for (const char *line : {"Image Width: 301 Image Length: 6", "Rows/Strip: 6", "Directory 0: offset 5426 ",
                             "BitsPerSample (258) SHORT (3) 3<8 8 8>", "StripByteCounts (279) LONG (4) 1<5418>"})
        EXPECT_NE((info.out + dump.out).find(line), std::string::npos) << line << " not in\n" << info.out << dump.out;
}
