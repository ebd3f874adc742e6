/* Two views of the black pixels of the black/white image, built together
 * whenever that image is rebuilt, which let the box counter skip empty boxes
 * without touching their pixels and find the black in occupied ones quickly.
 * If they cannot be allocated, callers fall back to scanning pixels.
 *
 * sums: a summed-area table. sums[y * stride + x] is the number of black
 * pixels in [0, x) x [0, y), modulo 2^16. Unsigned arithmetic wraps, so the
 * four-corner formula gives the count of any rectangle modulo 2^16, which is
 * the exact count when the rectangle holds fewer than 2^16 pixels; larger
 * rectangles are taken in strips below that size. Sixteen bits rather than 32
 * halve the memory the counter streams through on every grid.
 *
 * tiles: one bit per pixel (1 = black) in tiles of 8 x 8 pixels, one 64-bit
 * word per tile, bit 8 r + c for row r and column c of the tile; tiles of a
 * band of 8 rows lie side by side. A column or a row of up to 8 pixels is
 * read with one word, which is what makes scanning columns cheap. */
#ifndef TALVOR_BLACKTABLE_H
#define TALVOR_BLACKTABLE_H

#include <cstddef>
#include <cstdint>
#include <cstring>

struct BlackTable {
    const uint16_t *sums = nullptr;        /* (width + 1) x (height + 1), null when absent */
    size_t stride = 0;                     /* width + 1 */
    const unsigned char *tiles = nullptr;  /* 8 bytes per tile, byte r = row r of the tile */
    size_t tilesperband = 0;               /* (width + 7) / 8 */
    const unsigned char *source = nullptr; /* the image it was built from */
    int width = 0;
    int height = 0;
};

extern BlackTable blacktable; /* the views of the current black/white image */

/* Builds both views for a width x height byte image in which bytes below
 * 128 are black. On allocation failure they are simply absent. */
void BuildBlackTable(const unsigned char *bw, int width, int height);

/* The same, one row at a time, for a caller that is producing the image row
 * by row: BeginBlackTable, then BlackTableAddRow for rows 0, 1, ... in order
 * (each row of the array bw passed at Begin, already written), the last one
 * completing the views. Begin returns false when there will be none. */
bool BeginBlackTable(const unsigned char *bw, int width, int height);
void BlackTableAddRow(int y);

/* Drops both views and their memory. */
void FreeBlackTable(void);

/* True when the views were built for exactly this image array and size. */
inline bool BlackTableMatches(const unsigned char *bw, int width, int height)
{
    return blacktable.sums != nullptr && bw == blacktable.source && width == blacktable.width &&
           height == blacktable.height;
}

/* Row y of the sums: the counts of [0, x) x [0, y). */
inline const uint16_t *BlackTableRow(int y)
{
    return blacktable.sums + static_cast<size_t>(y) * blacktable.stride;
}

/* Black pixels modulo 2^16 in columns x0 .. x1 - 1 between the sum rows lo
 * (the bottom edge) and hi (the top edge). */
inline uint16_t BlackTableSpan(const uint16_t *lo, const uint16_t *hi, int x0, int x1)
{
    return static_cast<uint16_t>(hi[x1] - hi[x0] - lo[x1] + lo[x0]);
}

/* Black pixels in the rectangle, modulo 2^16. */
inline uint16_t BlackTableCountModulo(int x0, int x1, int y0, int y1)
{
    return BlackTableSpan(BlackTableRow(y0), BlackTableRow(y1), x0, x1);
}

/* True when a black pixel lies in x0 <= x < x1, y0 <= y < y1; the rectangle
 * must be non-empty and inside the image the views were built for. */
bool BlackTableAnyLarge(int x0, int x1, int y0, int y1);

inline bool BlackTableAny(int x0, int x1, int y0, int y1)
{
    if (static_cast<int64_t>(x1 - x0) * (y1 - y0) < 65536)
        return BlackTableCountModulo(x0, x1, y0, y1) != 0;
    return BlackTableAnyLarge(x0, x1, y0, y1);
}

/* The tile holding pixel row band (y / 8) and column group tx (x / 8). */
inline uint64_t BlackTile(size_t band, size_t tx)
{
    uint64_t w;
    std::memcpy(&w, blacktable.tiles + (band * blacktable.tilesperband + tx) * 8, 8);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    w = __builtin_bswap64(w);
#endif
    return w;
}

/* True when column x holds black between rows y0 (inclusive) and y1, read 8
 * rows at a time from the bottom up. */
inline bool BlackTileColumn(int x, int y0, int y1)
{
    const uint64_t column = 0x0101010101010101ull << (x & 7);
    for (int y = y0; y < y1;) {
        const int band = y >> 3;
        const int lo = y & 7;
        const int hi = y1 - (band << 3) < 8 ? y1 - (band << 3) : 8;
        // Bytes lo .. hi - 1 of the tile are the rows in range.
        const uint64_t rows = (hi == 8 ? ~0ull : (1ull << (8 * hi)) - 1) & ~((1ull << (8 * lo)) - 1);
        if (BlackTile(static_cast<size_t>(band), static_cast<size_t>(x >> 3)) & column & rows)
            return true;
        y = (band + 1) << 3;
    }
    return false;
}

/* True when row y holds black between columns x0 (inclusive) and x1, read 8
 * columns at a time from the left. */
inline bool BlackTileRow(int y, int x0, int x1)
{
    const size_t band = static_cast<size_t>(y >> 3);
    const int shift = 8 * (y & 7);
    for (int x = x0; x < x1;) {
        const int tx = x >> 3;
        const int lo = x & 7;
        const int hi = x1 - (tx << 3) < 8 ? x1 - (tx << 3) : 8;
        const unsigned cols = ((1u << hi) - 1) & ~((1u << lo) - 1);
        if ((BlackTile(band, static_cast<size_t>(tx)) >> shift) & cols)
            return true;
        x = (tx + 1) << 3;
    }
    return false;
}

#endif
