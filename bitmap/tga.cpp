#include "tga.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

// Header fields in file order; multi-byte fields are little-endian.
struct TgaHeader {
    int idlength = 0;
    int colourmaptype = 0;
    int datatypecode = 0;
    int colourmaporigin = 0;
    int colourmaplength = 0;
    int colourmapdepth = 0;
    int xorigin = 0;
    int yorigin = 0;
    int width = 0;
    int height = 0;
    int bitsperpixel = 0;
    int imagedescriptor = 0;
};

const int kHeaderBytes = 18;

int Unsigned16(const unsigned char *p)
{
    return p[0] | (p[1] << 8);
}

int Signed16(const unsigned char *p)
{
    const int v = Unsigned16(p);
    return v >= 0x8000 ? v - 0x10000 : v;
}

TgaHeader ParseHeader(const unsigned char *h)
{
    TgaHeader hd;
    hd.idlength = h[0];
    hd.colourmaptype = h[1];
    hd.datatypecode = h[2];
    hd.colourmaporigin = Unsigned16(h + 3);
    hd.colourmaplength = Unsigned16(h + 5);
    hd.colourmapdepth = h[7];
    hd.xorigin = Unsigned16(h + 8);
    hd.yorigin = Unsigned16(h + 10);
    hd.width = Signed16(h + 12);
    hd.height = Signed16(h + 14);
    hd.bitsperpixel = h[16];
    hd.imagedescriptor = h[17];
    return hd;
}

// Block-buffered reading over a stdio stream. Decoding a large image one
// fread per pixel costs more than the decoding itself; this reads 64 KiB at a
// time and, when done, puts the stream back where byte-wise reading would
// have left it.
class BlockReader {
public:
    explicit BlockReader(FILE *fp) : fp_(fp), buf_(1 << 16), origin_(std::ftell(fp)) {}

    // Copies up to n bytes into dst; returns how many it got.
    size_t Read(unsigned char *dst, size_t n)
    {
        if (len_ - pos_ >= n) {
            for (size_t i = 0; i < n; i++)
                dst[i] = buf_[pos_ + i];
            pos_ += n;
            consumed_ += static_cast<long>(n);
            return n;
        }
        return ReadSlow(dst, n);
    }

    // The bytes already buffered (refilling when none are), for decoding
    // many pixels in place; Skip consumes them.
    size_t Available()
    {
        if (pos_ == len_)
            Fill();
        return len_ - pos_;
    }
    const unsigned char *Data() const { return buf_.data() + pos_; }
    void Skip(size_t n)
    {
        pos_ += n;
        consumed_ += static_cast<long>(n);
    }

    // Moves to an absolute offset from the start of the file. If the stream
    // cannot seek, reading simply goes on from where it is.
    void SeekFromStart(long offset)
    {
        if (std::fseek(fp_, offset, SEEK_SET) == 0) {
            pos_ = len_ = 0;
            eof_ = false;
            origin_ = offset;
            consumed_ = 0;
        }
    }

    // Leaves the underlying stream just after the last byte handed out.
    void Sync()
    {
        if (origin_ >= 0 && pos_ != len_)
            std::fseek(fp_, origin_ + consumed_, SEEK_SET);
    }

private:
    size_t ReadSlow(unsigned char *dst, size_t n)
    {
        size_t got = 0;
        while (got < n) {
            if (pos_ == len_ && !Fill())
                break;
            const size_t take = std::min(n - got, len_ - pos_);
            std::memcpy(dst + got, buf_.data() + pos_, take);
            pos_ += take;
            got += take;
        }
        consumed_ += static_cast<long>(got);
        return got;
    }

    bool Fill()
    {
        if (eof_)
            return false;
        len_ = std::fread(buf_.data(), 1, buf_.size(), fp_);
        pos_ = 0;
        if (len_ < buf_.size())
            eof_ = true;
        return len_ > 0;
    }

    FILE *fp_;
    std::vector<unsigned char> buf_;
    size_t pos_ = 0;
    size_t len_ = 0;
    bool eof_ = false;
    long origin_;
    long consumed_ = 0;
};

// The pixel rule for n bytes per pixel; TGA_MergeBytes dispatches to it.
template <int N>
inline void Merge(BitmapPixel *pixel, const unsigned char *p)
{
    if constexpr (N == 4) {
        *pixel = BitmapPixel{p[2], p[1], p[0], p[3]};
    } else if constexpr (N == 3) {
        *pixel = BitmapPixel{p[2], p[1], p[0], 255};
    } else if constexpr (N == 2) {
        // Five bits each, shifted left by three without filling the low bits;
        // the attribute bit becomes alpha 128, not 255.
        pixel->r = static_cast<unsigned char>((p[1] & 0x7C) * 2);
        pixel->g = static_cast<unsigned char>(((p[1] * 64) | ((p[0] & 0xE0) / 4)) & 0xFF);
        pixel->b = static_cast<unsigned char>((p[0] * 8) & 0xFF);
        pixel->a = static_cast<unsigned char>(p[1] & 0x80);
    } else {
        *pixel = BitmapPixel{p[0], p[0], p[0], 255};
    }
}

// Where decoded pixels go, in file order. Both kinds hand out a contiguous
// run of writable pixels (Span) and are told how many were written (Advance).

// Straight into the caller's bitmap, element after element.
class BitmapOutput {
public:
    BitmapOutput(BitmapPixel *bitmap, size_t total) : bitmap_(bitmap), total_(total) {}
    size_t Remaining() const { return total_ - done_; }
    BitmapPixel *Span(size_t *n)
    {
        *n = total_ - done_;
        return bitmap_ + done_;
    }
    void Advance(size_t k) { done_ += k; }

private:
    BitmapPixel *bitmap_;
    size_t total_;
    size_t done_ = 0;
};

// Into a buffer of one row, handed over as each row completes.
class RowOutput {
public:
    RowOutput(int width, int height, bool topfirst, TGA_RowFunction row, void *data)
        : buf_(static_cast<size_t>(width)), width_(static_cast<size_t>(width)), height_(height),
          total_(Bitmap_PixelCount(width, height)), topfirst_(topfirst), row_(row), data_(data)
    {
    }
    size_t Remaining() const { return total_ - done_; }
    BitmapPixel *Span(size_t *n)
    {
        *n = width_ - col_;
        return buf_.data() + col_;
    }
    void Advance(size_t k)
    {
        done_ += k;
        col_ += k;
        if (col_ == width_) {
            // Where TGA_Read would leave this row: the file's first row is
            // the bottom one unless the origin is at the top.
            row_(data_, topfirst_ ? height_ - 1 - rows_ : rows_, buf_.data(), static_cast<int>(width_));
            rows_++;
            col_ = 0;
        }
    }

private:
    std::vector<BitmapPixel> buf_;
    size_t width_;
    int height_;
    size_t total_;
    bool topfirst_;
    TGA_RowFunction row_;
    void *data_;
    size_t done_ = 0;
    size_t col_ = 0;
    int rows_ = 0;
};

template <class Out>
inline void Put(Out &out, const BitmapPixel &p)
{
    size_t n;
    *out.Span(&n) = p;
    out.Advance(1);
}

// k copies of one pixel, cut at the end of the image.
template <class Out>
inline void Repeat(Out &out, const BitmapPixel &p, size_t k)
{
    k = std::min(k, out.Remaining());
    while (k > 0) {
        size_t n;
        BitmapPixel *dst = out.Span(&n);
        n = std::min(n, k);
        std::fill(dst, dst + n, p);
        out.Advance(n);
        k -= n;
    }
}

// Uncompressed pixels, decoded straight out of the read buffer; a pixel split
// across two buffer fills goes through the copying read.
template <int N, class Out>
int DecodeUncompressed(BlockReader &in, Out &out)
{
    while (out.Remaining() > 0) {
        const size_t avail = in.Available();
        if (avail >= N) {
            size_t room;
            BitmapPixel *dst = out.Span(&room);
            const size_t k = std::min(avail / N, room);
            const unsigned char *p = in.Data();
            for (size_t i = 0; i < k; i++)
                Merge<N>(&dst[i], p + i * N);
            in.Skip(k * N);
            out.Advance(k);
        } else {
            unsigned char p[N];
            if (in.Read(p, N) != N)
                return 4;
            BitmapPixel px;
            Merge<N>(&px, p);
            Put(out, px);
        }
    }
    return 0;
}

// Checks the header's codes; 0 when the file can be decoded.
int CheckHeader(const TgaHeader &hd)
{
    const int type = hd.datatypecode;
    if (type != 1 && type != 2 && type != 3 && type != 10 && type != 11)
        return 1;
    const int bpp = hd.bitsperpixel;
    if (bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32)
        return 2;
    if (hd.colourmaptype > 1)
        return 3;
    return 0;
}

// Decoding proper, from just after the header; the caller syncs the stream
// afterwards.
template <class Out>
int Decode(BlockReader &in, const TgaHeader &hd, Out &out)
{
    const int type = hd.datatypecode;
    // The palette is read from directly after the header, not after the ID
    // field: files with an ID field get its bytes as their first palette
    // bytes. Entries of unusual sizes stay zero.
    std::vector<BitmapPixel> palette;
    if (type == 1) {
        palette.assign(static_cast<size_t>(hd.colourmaplength), BitmapPixel{0, 0, 0, 0});
        const int entrybytes = hd.colourmapdepth / 8;
        std::vector<unsigned char> entry(static_cast<size_t>(entrybytes) + 1);
        for (BitmapPixel &p : palette) {
            if (in.Read(entry.data(), static_cast<size_t>(entrybytes)) !=
                static_cast<size_t>(entrybytes))
                return 5;
            TGA_MergeBytes(&p, entry.data(), entrybytes);
        }
    }

    in.SeekFromStart(kHeaderBytes + hd.idlength +
                     (hd.colourmaptype * hd.colourmaplength * hd.colourmapdepth) / 8);

    const int n = hd.bitsperpixel / 8;
    unsigned char p[5];

    if (type == 1) {
        const int last = hd.colourmaplength - 1;
        while (out.Remaining() > 0) {
            if (in.Read(p, 1) != 1)
                return 4;
            // With no palette at all there is no entry to take.
            Put(out, last < 0 ? BitmapPixel{0, 0, 0, 0} : palette[std::min<int>(p[0], last)]);
        }
    } else if (type == 2 || type == 3) {
        switch (n) {
        case 1: return DecodeUncompressed<1>(in, out);
        case 2: return DecodeUncompressed<2>(in, out);
        case 3: return DecodeUncompressed<3>(in, out);
        default: return DecodeUncompressed<4>(in, out);
        }
    } else {
        while (out.Remaining() > 0) {
            // Packet header and first pixel in one read.
            if (in.Read(p, static_cast<size_t>(n) + 1) != static_cast<size_t>(n) + 1)
                return 4;
            const int count = p[0] & 127;
            BitmapPixel first;
            TGA_MergeBytes(&first, p + 1, n);
            Put(out, first);
            if (p[0] & 128) {
                // A run that claims more pixels than remain is cut at the end.
                Repeat(out, first, static_cast<size_t>(count));
            } else {
                for (int i = 0; i < count; i++) {
                    if (in.Read(p, static_cast<size_t>(n)) != static_cast<size_t>(n))
                        return 6;
                    // Pixels beyond the image are read, so that a truncated
                    // file is still reported, but not stored.
                    if (out.Remaining() > 0) {
                        BitmapPixel px;
                        TGA_MergeBytes(&px, p, n);
                        Put(out, px);
                    }
                }
            }
        }
    }
    return 0;
}

TgaHeader ReadHeader(BlockReader &in, int *width, int *height)
{
    unsigned char h[kHeaderBytes] = {};
    in.Read(h, kHeaderBytes);
    const TgaHeader hd = ParseHeader(h);
    *width = hd.width;
    *height = hd.height;
    return hd;
}

} // namespace

void TGA_MergeBytes(BitmapPixel *pixel, const unsigned char *p, int bytes)
{
    switch (bytes) {
    case 4: Merge<4>(pixel, p); break;
    case 3: Merge<3>(pixel, p); break;
    case 2: Merge<2>(pixel, p); break;
    case 1: Merge<1>(pixel, p); break;
    default: break;
    }
}

void TGA_Info(FILE *fptr, int *width, int *height, int *depth)
{
    unsigned char h[kHeaderBytes] = {};
    const size_t got = std::fread(h, 1, kHeaderBytes, fptr);
    (void)got; // a short header leaves zeros, as documented
    const TgaHeader hd = ParseHeader(h);
    *width = hd.width;
    *height = hd.height;
    *depth = hd.bitsperpixel;
    std::rewind(fptr);
}

int TGA_Read(FILE *fptr, BitmapPixel *bitmap, int *width, int *height)
{
    BlockReader in(fptr);
    const TgaHeader hd = ReadHeader(in, width, height);
    int rc = CheckHeader(hd);
    if (rc == 0) {
        BitmapOutput out(bitmap, Bitmap_PixelCount(hd.width, hd.height));
        rc = Decode(in, hd, out);
    }
    in.Sync();
    // Top-left origin: turn the rows over so the result is bottom row first.
    // The right-to-left bit is not honoured.
    if (rc == 0 && (hd.imagedescriptor & 32))
        Flip_Bitmap(bitmap, hd.width, hd.height, 0);
    return rc;
}

int TGA_ReadRows(FILE *fptr, int *width, int *height, TGA_RowFunction row, void *data)
{
    BlockReader in(fptr);
    const TgaHeader hd = ReadHeader(in, width, height);
    int rc = CheckHeader(hd);
    if (rc == 0) {
        RowOutput out(Bitmap_PixelCount(hd.width, hd.height) > 0 ? hd.width : 0, hd.height,
                      (hd.imagedescriptor & 32) != 0, row, data);
        rc = Decode(in, hd, out);
    }
    in.Sync();
    return rc;
}
