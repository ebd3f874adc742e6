#include "writer.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// Format codes, by absolute value.
enum Format {
    kTga24 = 1,
    kPpm = 2,
    kSgi = 3,
    kRawGrey = 4,
    kTiff = 5,
    kEpsColour = 6,
    kEpsGrey = 7,
    kRawRgb = 8,
    kBmp = 9,
    kTga32 = 11,
    kTgaRle24 = 12,
    kTgaRle32 = 13,
};

const int kMaxPacket = 128; // pixels in one TGA run-length packet

void PutByte(FILE *fp, unsigned v)
{
    std::fputc(static_cast<int>(v & 0xFFu), fp);
}

void PutLE16(FILE *fp, uint32_t v)
{
    PutByte(fp, v);
    PutByte(fp, v >> 8);
}

void PutLE32(FILE *fp, uint32_t v)
{
    PutLE16(fp, v);
    PutLE16(fp, v >> 16);
}

void PutBE16(FILE *fp, uint32_t v)
{
    PutByte(fp, v >> 8);
    PutByte(fp, v);
}

// Sizes are stored as the 32-bit value of width * height * 3, wrapping as a
// 32-bit product does; unsigned arithmetic makes that well defined.
uint32_t SampleBytes(int width, int height)
{
    return static_cast<uint32_t>(width) * static_cast<uint32_t>(height) * 3u;
}

unsigned GreyLevel(BitmapPixel p)
{
    return (static_cast<unsigned>(p.r) + p.g + p.b) / 3;
}

void PutBgr(FILE *fp, BitmapPixel p)
{
    PutByte(fp, p.b);
    PutByte(fp, p.g);
    PutByte(fp, p.r);
}

void PutRgb(FILE *fp, BitmapPixel p)
{
    PutByte(fp, p.r);
    PutByte(fp, p.g);
    PutByte(fp, p.b);
}

void PutTgaPixel(FILE *fp, BitmapPixel p, int bytes)
{
    PutBgr(fp, p);
    if (bytes == 4)
        PutByte(fp, p.a);
}

void WriteTgaHeader(FILE *fp, int format, int width, int height)
{
    const bool rle = format == kTgaRle24 || format == kTgaRle32;
    const bool alpha = format == kTga32 || format == kTgaRle32;
    PutByte(fp, 0);             // no image ID field
    PutByte(fp, 0);             // no colour map
    PutByte(fp, rle ? 10 : 2);  // true colour, run-length or plain
    for (int i = 0; i < 9; i++) // colour map fields, x and y origin
        PutByte(fp, 0);
    PutLE16(fp, static_cast<uint32_t>(width));
    PutLE16(fp, static_cast<uint32_t>(height));
    PutByte(fp, alpha ? 32 : 24);
    PutByte(fp, alpha ? 8 : 0); // alpha bits; bit 5 clear: bottom row first
}

void WriteSgiHeader(FILE *fp, int width, int height)
{
    PutBE16(fp, 474); // magic
    PutByte(fp, 0);   // storage: verbatim
    PutByte(fp, 1);   // bytes per sample
    PutBE16(fp, 3);   // dimensions
    PutBE16(fp, static_cast<uint32_t>(width));
    PutBE16(fp, static_cast<uint32_t>(height));
    // Channels 3, minimum 0, maximum 255, four reserved bytes.
    BM_WriteHexString(fp, "000300000000000000ff00000000");
    std::fputs("WriteBitmap, qrn", fp); // image name, deliberately unterminated
    for (int i = 0; i < 8; i++)
        PutByte(fp, 0);
    // The header ends here, at 48 bytes, and the samples follow interleaved.
}

void WriteTiffHeader(FILE *fp, int width, int height)
{
    char buf[4];
    BM_WriteHexString(fp, "4d4d002a"); // big-endian, TIFF magic 42
    BM_WriteLongInt(fp, buf, static_cast<int>(SampleBytes(width, height) + 8));
}

// The image file directory and the values it points at, after the samples.
void WriteTiffDirectory(FILE *fp, int width, int height)
{
    char buf[4];
    const uint32_t n = SampleBytes(width, height);
    const uint32_t w = static_cast<uint32_t>(width);
    const uint32_t h = static_cast<uint32_t>(height);
    auto offset = [&](uint32_t at) { BM_WriteLongInt(fp, buf, static_cast<int>(n + at)); };

    BM_WriteHexString(fp, "000e");             // 14 entries
    BM_WriteHexString(fp, "0100000300000001"); // ImageWidth, short
    PutBE16(fp, w);
    PutBE16(fp, 0);
    BM_WriteHexString(fp, "0101000300000001"); // ImageLength, short
    PutBE16(fp, h);
    PutBE16(fp, 0);
    BM_WriteHexString(fp, "0102000300000003"); // BitsPerSample, 3 shorts
    offset(182);
    BM_WriteHexString(fp, "010300030000000100010000"); // Compression: none
    BM_WriteHexString(fp, "010600030000000100020000"); // Photometric: RGB
    BM_WriteHexString(fp, "011100040000000100000008"); // StripOffsets: 8
    BM_WriteHexString(fp, "011200030000000100010000"); // Orientation: top left
    BM_WriteHexString(fp, "011500030000000100030000"); // SamplesPerPixel: 3
    BM_WriteHexString(fp, "0116000300000001");         // RowsPerStrip: the whole image
    PutBE16(fp, h);
    PutBE16(fp, 0);
    BM_WriteHexString(fp, "0117000400000001"); // StripByteCounts
    BM_WriteLongInt(fp, buf, static_cast<int>(n));
    BM_WriteHexString(fp, "0118000300000003"); // MinSampleValue, 3 shorts
    offset(188);
    BM_WriteHexString(fp, "0119000300000003"); // MaxSampleValue, 3 shorts
    offset(194);
    BM_WriteHexString(fp, "011c00030000000100010000"); // PlanarConfiguration: interleaved
    BM_WriteHexString(fp, "0153000300000003");         // SampleFormat, 3 shorts
    offset(200);
    BM_WriteHexString(fp, "00000000");     // no further directory
    BM_WriteHexString(fp, "000800080008"); // bits per sample
    BM_WriteHexString(fp, "000000000000"); // minimum sample values
    BM_WriteHexString(fp, "00ff00ff00ff"); // maximum sample values
    BM_WriteHexString(fp, "000100010001"); // sample format: unsigned integer
}

void WriteEpsPrologue(FILE *fp, int width, int height, bool colour)
{
    std::fprintf(fp, "%%!PS-Adobe-3.0 EPSF-3.0\n");
    std::fprintf(fp, "%%%%Creator: Created from pixmill by Ostrander\n");
    std::fprintf(fp, "%%%%BoundingBox: %d %d %d %d\n", 0, 0, width, height);
    std::fprintf(fp, "%%%%LanguageLevel: 2\n");
    std::fprintf(fp, "%%%%Pages: 1\n");
    std::fprintf(fp, "%%%%DocumentData: Clean7Bit\n");
    std::fprintf(fp, "%d %d scale\n", width, height);
    // Unit square, first sample row at the top.
    std::fprintf(fp, "%d %d 8 [%d 0 0 -%d 0 %d]\n", width, height, width, height, height);
    if (colour) {
        std::fprintf(fp, "{currentfile 3 %d mul string readhexstring pop} bind\n", width);
        std::fputs("false 3 colorimage\n", fp);
    } else {
        std::fprintf(fp, "{currentfile %d string readhexstring pop} bind\n", width);
        std::fputs("false 1 colorimage\n", fp);
    }
}

void WriteBmpHeader(FILE *fp, int width, int height)
{
    const uint32_t n = SampleBytes(width, height);
    PutByte(fp, 'B');
    PutByte(fp, 'M');
    PutLE32(fp, n + 54); // file size
    PutLE32(fp, 0);      // reserved
    PutLE32(fp, 54);     // offset of the pixel data
    PutLE32(fp, 40);     // information header size
    PutLE32(fp, static_cast<uint32_t>(width));
    PutLE32(fp, static_cast<uint32_t>(height));
    PutLE16(fp, 1);  // planes
    PutLE16(fp, 24); // bits per pixel
    PutLE32(fp, 0);  // no compression
    PutLE32(fp, n);  // image size: 3 bytes per pixel, no row padding
    PutLE32(fp, 1);  // pixels per metre, horizontally
    PutLE32(fp, 1);  // and vertically
    PutLE32(fp, 0);  // colours used
    PutLE32(fp, 0);  // important colours
}

// EPS sample lines. The counter runs on across rows, and it counts hex digits
// while the limit it is also held against is the width in pixels: a quirk of
// the format's original writer that its files keep.
struct EpsLines {
    int width;
    int count = 0;

    void Colour(FILE *fp, BitmapPixel p)
    {
        std::fprintf(fp, "%02x%02x%02x", p.r, p.g, p.b);
        count += 6;
        EndLineIf(fp, count >= 72);
    }

    void Grey(FILE *fp, BitmapPixel p)
    {
        std::fprintf(fp, "%02x", GreyLevel(p));
        count += 2;
        EndLineIf(fp, count > 71);
    }

    void EndLineIf(FILE *fp, bool full)
    {
        if (full || count >= width) {
            std::fputc('\n', fp);
            count = 0;
        }
    }
};

void WritePixel(FILE *fp, int format, BitmapPixel p, EpsLines &eps)
{
    switch (format) {
    case kTga24:
    case kBmp:
        PutBgr(fp, p);
        break;
    case kTga32:
        PutTgaPixel(fp, p, 4);
        break;
    case kPpm:
    case kSgi:
    case kTiff:
    case kRawRgb:
        PutRgb(fp, p);
        break;
    case kRawGrey:
        PutByte(fp, GreyLevel(p));
        break;
    case kEpsColour:
        eps.Colour(fp, p);
        break;
    case kEpsGrey:
        eps.Grey(fp, p);
        break;
    default:
        break;
    }
}

bool KnownFormat(int format)
{
    return (format >= kTga24 && format <= kBmp) || (format >= kTga32 && format <= kTgaRle32);
}

} // namespace

void WriteTGACompressedRow(FILE *fptr, const BitmapPixel *row, int width, int bytes)
{
    if (width < 1)
        return;
    // The reference pixel is set once per row and then carried from packet to
    // packet. After a packet that closed at 128 pixels it is still that
    // packet's last pixel when the next packet is examined, so the pixel
    // starting the new packet is never compared; for long runs or raw
    // stretches this can write a row that does not decode back to itself.
    // That is the encoder's established output and is kept.
    BitmapPixel ref = row[0];
    int s = 0;
    while (s < width) {
        int count = 1;
        bool raw = false;
        while (s + count < width) {
            const BitmapPixel p = row[s + count];
            if (Same_BitmapPixel(p, ref)) {
                if (raw) {
                    // The last raw pixel starts the run that follows.
                    count--;
                    break;
                }
                if (++count == kMaxPacket)
                    break;
            } else {
                ref = p;
                if (!raw && count >= 2)
                    break; // p starts the next packet
                raw = true;
                if (++count == kMaxPacket)
                    break;
            }
        }
        if (count > width - s)
            count = width - s;
        if (raw) {
            PutByte(fptr, static_cast<unsigned>(count - 1));
            for (int i = 0; i < count; i++)
                PutTgaPixel(fptr, row[s + i], bytes);
        } else {
            PutByte(fptr, static_cast<unsigned>(128 + count - 1));
            PutTgaPixel(fptr, row[s], bytes);
        }
        s += count;
    }
}

int BM_WriteLongInt(FILE *fptr, char *buf, int value)
{
    const uint32_t v = static_cast<uint32_t>(value);
    char local[4];
    if (buf == nullptr)
        buf = local;
    for (int i = 0; i < 4; i++)
        buf[i] = static_cast<char>(static_cast<unsigned char>(v >> (24 - 8 * i)));
    int rc = 0;
    for (int i = 0; i < 4; i++)
        rc = std::fputc(static_cast<unsigned char>(buf[i]), fptr);
    return rc;
}

void BM_WriteHexString(FILE *fptr, const char *s)
{
    const size_t len = std::strlen(s);
    for (size_t i = 0; i < len; i += 2) {
        // Each pair is scanned on its own; a pair that is not hexadecimal
        // gives a zero byte.
        char pair[3] = {s[i], i + 1 < len ? s[i + 1] : '\0', '\0'};
        unsigned int v = 0;
        if (std::sscanf(pair, "%X", &v) != 1)
            v = 0;
        PutByte(fptr, v);
    }
}

void Write_Bitmap(FILE *fptr, const BitmapPixel *bitmap, int width, int height, int format)
{
    if (format == INT_MIN)
        return;
    const int fmt = format < 0 ? -format : format;
    if (!KnownFormat(fmt))
        return;

    switch (fmt) {
    case kTga24:
    case kTga32:
    case kTgaRle24:
    case kTgaRle32:
        WriteTgaHeader(fptr, fmt, width, height);
        break;
    case kPpm:
        std::fprintf(fptr, "P6\n%d %d\n255\n", width, height);
        break;
    case kSgi:
        WriteSgiHeader(fptr, width, height);
        break;
    case kTiff:
        WriteTiffHeader(fptr, width, height);
        break;
    case kEpsColour:
    case kEpsGrey:
        WriteEpsPrologue(fptr, width, height, fmt == kEpsColour);
        break;
    case kBmp:
        WriteBmpHeader(fptr, width, height);
        break;
    default:
        break; // raw forms have no header
    }

    EpsLines eps{width};
    for (int k = 0; k < height; k++) {
        const int j = format > 0 ? k : height - 1 - k;
        if (fmt == kTgaRle24 || fmt == kTgaRle32) {
            // The encoder is called for every row; with a width below 1 it
            // writes nothing and does not look at the row.
            const BitmapPixel *row =
                width < 1 ? bitmap : bitmap + static_cast<size_t>(j) * static_cast<size_t>(width);
            WriteTGACompressedRow(fptr, row, width, fmt == kTgaRle32 ? 4 : 3);
            continue;
        }
        if (width < 1)
            continue;
        const BitmapPixel *row = bitmap + static_cast<size_t>(j) * static_cast<size_t>(width);
        for (int i = 0; i < width; i++)
            WritePixel(fptr, fmt, row[i], eps);
    }

    if (fmt == kTiff)
        WriteTiffDirectory(fptr, width, height);
    else if (fmt == kEpsColour || fmt == kEpsGrey)
        std::fprintf(fptr, "\n%%%%EOF\n");
}
