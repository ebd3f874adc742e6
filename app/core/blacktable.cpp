#include "blacktable.h"

#include <algorithm>
#include <cstdlib>

BlackTable blacktable;

void FreeBlackTable(void)
{
    std::free(const_cast<uint16_t *>(blacktable.sums));
    std::free(const_cast<unsigned char *>(blacktable.tiles));
    blacktable = BlackTable();
}

bool BeginBlackTable(const unsigned char *bw, int width, int height)
{
    FreeBlackTable();
    if (bw == nullptr || width < 1 || height < 1)
        return false;
    const size_t w1 = static_cast<size_t>(width) + 1;
    const size_t h1 = static_cast<size_t>(height) + 1;
    const size_t tilesperband = (static_cast<size_t>(width) + 7) / 8;
    const size_t bands = (static_cast<size_t>(height) + 7) / 8;
    if (h1 > SIZE_MAX / sizeof(uint16_t) / w1 || bands > SIZE_MAX / 8 / tilesperband)
        return false;
    auto *s = static_cast<uint16_t *>(std::malloc(w1 * h1 * sizeof(uint16_t)));
    // Zeroed: rows beyond the image in the last band stay white.
    auto *t = static_cast<unsigned char *>(std::calloc(bands * tilesperband, 8));
    if (s == nullptr || t == nullptr) {
        std::free(s);
        std::free(t);
        return false;
    }
    std::fill(s, s + w1, uint16_t{0});
    blacktable.sums = s;
    blacktable.stride = w1;
    blacktable.tiles = t;
    blacktable.tilesperband = tilesperband;
    blacktable.source = bw;
    blacktable.width = width;
    blacktable.height = height;
    return true;
}

void BlackTableAddRow(int y)
{
    const size_t w = static_cast<size_t>(blacktable.width);
    const size_t w1 = blacktable.stride;
    const unsigned char *row = blacktable.source + static_cast<size_t>(y) * w;
    uint16_t *here = const_cast<uint16_t *>(blacktable.sums) + (static_cast<size_t>(y) + 1) * w1;
    const uint16_t *below = here - w1;

    // The running sum along the row is a serial chain; adding the row below
    // is a separate loop, which the compiler vectorises.
    uint16_t run = 0;
    here[0] = 0;
    for (size_t x = 1; x < w1; x++) {
        run = static_cast<uint16_t>(run + (row[x - 1] >> 7 ^ 1));
        here[x] = run;
    }
    for (size_t x = 1; x < w1; x++)
        here[x] = static_cast<uint16_t>(here[x] + below[x]);

    // Eight pixels at a time into byte (y mod 8) of their tiles: the top bit
    // of each byte, inverted, gathered into one byte by a multiplication.
    unsigned char *tiles = const_cast<unsigned char *>(blacktable.tiles) +
                           static_cast<size_t>(y >> 3) * blacktable.tilesperband * 8 + (y & 7);
    size_t x = 0;
    for (; x + 8 <= w; x += 8) {
        uint64_t v;
        std::memcpy(&v, row + x, 8);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
        v = __builtin_bswap64(v);
#endif
        const uint64_t black = (~v & 0x8080808080808080ull) >> 7;
        tiles[(x / 8) * 8] = static_cast<unsigned char>((black * 0x0102040810204080ull) >> 56);
    }
    if (x < w) {
        unsigned bits = 0;
        for (size_t i = 0; x + i < w; i++)
            bits |= static_cast<unsigned>(row[x + i] < 128) << i;
        tiles[(x / 8) * 8] = static_cast<unsigned char>(bits);
    }
}

void BuildBlackTable(const unsigned char *bw, int width, int height)
{
    if (!BeginBlackTable(bw, width, height))
        return;
    for (int y = 0; y < height; y++)
        BlackTableAddRow(y);
}

bool BlackTableAnyLarge(int x0, int x1, int y0, int y1)
{
    const int64_t w = x1 - x0;
    const int rows = static_cast<int>(std::max<int64_t>(1, 65535 / w));
    for (int y = y0; y < y1; y += rows)
        if (BlackTableCountModulo(x0, x1, y, std::min(y1, y + rows)) != 0)
            return true;
    return false;
}
