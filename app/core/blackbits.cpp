#include "blackbits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "memory.h"

BlackBits blackbits;

namespace {

// Number of pyramid levels for a height: level k exists while height >> k
// is at least one row.
int LevelsFor(int height)
{
    int k = 0;
    while (k < 31 && (height >> k) > 0)
        k++;
    return k;
}

// The last word of a row keeps only the bits of pixels inside the width.
uint64_t LastWordMask(int width)
{
    return (width & 63) ? (1ull << (width & 63)) - 1 : ~0ull;
}

// The dyadic pieces of the band [y0, y1): the largest aligned block at each
// step, k being its level and y >> k its row there.
template <class F>
inline bool ForEachPiece(int y0, int y1, F &&piece)
{
    const int top = blackbits.levels - 1;
    for (int y = y0; y < y1;) {
        int k = y == 0 ? top : std::min(__builtin_ctz(static_cast<unsigned>(y)), top);
        while ((1 << k) > y1 - y)
            k--;
        if (piece(blackbits.level[k] + static_cast<size_t>(y >> k) * blackbits.words))
            return true;
        y += 1 << k;
    }
    return false;
}

// Packs 64 bytes of 0 or 1 into one word, byte i to bit i.
inline uint64_t PackBytes(const unsigned char *t)
{
    uint64_t out = 0;
    for (int j = 0; j < 8; j++) {
        uint64_t v;
        std::memcpy(&v, t + 8 * j, 8);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
        v = __builtin_bswap64(v);
#endif
        // Byte i of v lands on bit 56 + i of the product: no two terms meet.
        out |= ((v * 0x0102040810204080ull) >> 56) << (8 * j);
    }
    return out;
}

// r^2 + g^2 + b^2 <= 16383. Any channel of 128 or more is white on its own;
// below that the three squares sum to less than 2^16, so 16-bit lanes do.
inline unsigned char Black(uint16_t r, uint16_t g, uint16_t b)
{
    const uint16_t sum = static_cast<uint16_t>(r * r + g * g + b * b);
    return static_cast<unsigned char>(((r | g | b) < 128) & (sum <= 16383));
}

// Black or not for 64 pixels (fewer at the end of a row, the rest white),
// one byte each; written as plain loops the compiler turns into vector code.
inline void BlackFlags(const unsigned char *p, int channels, int n, unsigned char *t)
{
    if (channels == 1) {
        // Grey v is (v, v, v): 3 v^2 <= 16383 exactly when v <= 73.
        for (int i = 0; i < n; i++)
            t[i] = p[i] <= 73;
    } else if (channels == 3) {
        for (int i = 0; i < n; i++)
            t[i] = Black(p[3 * i], p[3 * i + 1], p[3 * i + 2]);
    } else {
        for (int i = 0; i < n; i++)
            t[i] = Black(p[4 * i], p[4 * i + 1], p[4 * i + 2]);
    }
    std::fill(t + n, t + 64, static_cast<unsigned char>(0));
}

} // namespace

void FreeBlackBits(void)
{
    std::free(blackbits.block);
    blackbits = BlackBits();
}

size_t BlackBitsBytes(int width, int height)
{
    if (width < 1 || height < 1)
        return 0;
    const size_t words = (static_cast<size_t>(width) + 63) / 64;
    size_t rows = 0;
    for (int k = 0; k < LevelsFor(height); k++)
        rows += static_cast<size_t>(height >> k);
    if (rows > SIZE_MAX / 8 / words)
        return SIZE_MAX;
    return rows * words * 8;
}

bool AllocBlackBits(int width, int height)
{
    FreeBlackBits();
    if (width < 1 || height < 1)
        return true;
    const size_t bytes = BlackBitsBytes(width, height);
    if (bytes == SIZE_MAX || !MemoryWithinReach(bytes))
        return false;
    // Zeroed: fresh pages cost nothing until they are written.
    auto *block = static_cast<uint64_t *>(std::calloc(bytes / 8, 8));
    if (block == nullptr)
        return false;
    blackbits.width = width;
    blackbits.height = height;
    blackbits.words = (static_cast<size_t>(width) + 63) / 64;
    blackbits.levels = LevelsFor(height);
    blackbits.block = block;
    blackbits.bytes = bytes;
    uint64_t *p = block;
    for (int k = 0; k < blackbits.levels; k++) {
        blackbits.level[k] = p;
        p += static_cast<size_t>(height >> k) * blackbits.words;
    }
    return true;
}

void ThresholdRow(const unsigned char *pixels, int channels, int width, uint64_t *row)
{
    unsigned char flags[64];
    for (int x = 0; x < width; x += 64) {
        const int n = std::min(64, width - x);
        BlackFlags(pixels + static_cast<size_t>(x) * channels, channels, n, flags);
        row[x / 64] = PackBytes(flags);
    }
}

bool BlackBitsFromBytes(const unsigned char *bw, int width, int height)
{
    if (!AllocBlackBits(width, height))
        return false;
    unsigned char flags[64];
    for (int y = 0; y < blackbits.height; y++) {
        const unsigned char *in = bw + static_cast<size_t>(y) * static_cast<size_t>(width);
        uint64_t *row = BlackBitsRow(y);
        for (int x = 0; x < width; x += 64) {
            const int n = std::min(64, width - x);
            for (int i = 0; i < n; i++)
                flags[i] = in[x + i] < 128;
            std::fill(flags + n, flags + 64, static_cast<unsigned char>(0));
            row[x / 64] = PackBytes(flags);
        }
    }
    return true;
}

bool FinishBlackBits(bool invert)
{
    const size_t words = blackbits.words;
    uint64_t any = 0;
    for (int y = 0; y < blackbits.height; y++) {
        uint64_t *row = BlackBitsRow(y);
        if (invert) {
            for (size_t w = 0; w < words; w++)
                row[w] = ~row[w];
            row[words - 1] &= LastWordMask(blackbits.width);
        }
        for (size_t w = 0; w < words; w++)
            any |= row[w];
    }
    for (int k = 1; k < blackbits.levels; k++) {
        const uint64_t *below = blackbits.level[k - 1];
        uint64_t *here = blackbits.level[k];
        for (size_t r = 0; r < static_cast<size_t>(blackbits.height >> k); r++) {
            const uint64_t *a = below + 2 * r * words;
            const uint64_t *b = a + words;
            uint64_t *out = here + r * words;
            for (size_t w = 0; w < words; w++)
                out[w] = a[w] | b[w];
        }
    }
    return any != 0;
}

bool BlackBitsAny(int x0, int x1, int y0, int y1)
{
    const size_t wa = static_cast<size_t>(x0) >> 6, wb = static_cast<size_t>(x1 - 1) >> 6;
    const uint64_t maska = ~0ull << (x0 & 63);
    const uint64_t maskb = LastWordMask(x1);
    return ForEachPiece(y0, y1, [&](const uint64_t *row) {
        if (wa == wb)
            return (row[wa] & maska & maskb) != 0;
        if (row[wa] & maska)
            return true;
        for (size_t w = wa + 1; w < wb; w++)
            if (row[w])
                return true;
        return (row[wb] & maskb) != 0;
    });
}

int64_t CountGridBoxes(int size, int64_t gridx, int64_t gridy, int xlo, int xhi, int ylo, int yhi,
                       uint64_t *scratch)
{
    if (xlo >= xhi || ylo >= yhi)
        return 0;
    const size_t wa = static_cast<size_t>(xlo) >> 6, wb = static_cast<size_t>(xhi - 1) >> 6;
    const size_t n = wb - wa + 1;
    const uint64_t maska = ~0ull << (xlo & 63);
    const uint64_t maskb = LastWordMask(xhi);
    // The first row of boxes reaching the area, and the first box of a row.
    const int64_t firstrow = gridy + (ylo - gridy) / size * size;
    const int64_t firstbox = gridx + (xlo - gridx) / size * size;
    int64_t count = 0;
    for (int64_t by = firstrow; by < yhi; by += size) {
        const int ya = static_cast<int>(std::max<int64_t>(by, ylo));
        const int yb = static_cast<int>(std::min<int64_t>(by + size, yhi));
        // The band's rows ORed together: a column of the band holds black
        // exactly when its bit is set.
        bool first = true;
        ForEachPiece(ya, yb, [&](const uint64_t *row) {
            if (first)
                std::memcpy(scratch + wa, row + wa, n * 8);
            else
                for (size_t w = wa; w < wa + n; w++)
                    scratch[w] |= row[w];
            first = false;
            return false;
        });
        scratch[wa] &= maska;
        scratch[wb] &= maskb;

        // Each set bit found marks its box as occupied; the search goes on
        // from the start of the next box.
        int64_t box = firstbox;
        size_t w = wa;
        uint64_t word = scratch[wa];
        for (;;) {
            while (word == 0) {
                if (++w > wb)
                    break;
                word = scratch[w];
            }
            if (w > wb)
                break;
            const int64_t x = static_cast<int64_t>(w << 6) + __builtin_ctzll(word);
            const int64_t d = x - box;
            if (d >= size)
                box += d < 2 * static_cast<int64_t>(size) ? size : d / size * size;
            count++;
            box += size;
            const size_t nw = static_cast<size_t>(box >> 6);
            if (nw > wb)
                break;
            if (nw != w) {
                w = nw;
                word = scratch[w];
            }
            word &= ~0ull << (box & 63);
        }
    }
    return count;
}
