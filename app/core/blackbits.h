/* The counter's view of the black/white picture.
 *
 * One bit per pixel, 1 for black, 64 pixels to a word (pixel x in bit x % 64
 * of word x / 64), rows of `words` words with row 0 at the bottom, as in
 * bwimage. Bits beyond the width are always 0.
 *
 * Above the pixel rows sits a vertical OR pyramid: level k holds height >> k
 * rows, row r being the OR of pixel rows r 2^k to (r + 1) 2^k - 1. Any band
 * of rows [y0, y1) is the OR of at most two rows per level (its dyadic
 * pieces), so the question "does this box hold black?" costs about
 * 2 log2(side) row pieces of side / 64 words, and counting a whole grid costs
 * a pass over (rows / side) x log2(side) row pieces: memory traffic in
 * proportion to the bits, not to the pixels. The pyramid takes as much
 * memory again as the bits: a quarter of a byte per pixel in all. */
#ifndef TALVOR_BLACKBITS_H
#define TALVOR_BLACKBITS_H

#include <cstddef>
#include <cstdint>

#include "bitmap.h"

struct BlackBits {
    int width = 0;
    int height = 0;
    size_t words = 0;         /* 64-bit words per row, (width + 63) / 64 */
    int levels = 0;           /* pyramid levels, the pixel rows being level 0 */
    uint64_t *level[32] = {}; /* level[k]: height >> k rows of words words */
    uint64_t *block = nullptr;
    size_t bytes = 0;
};

extern BlackBits blackbits; /* the current black/white picture */

/* Drops the picture, leaving an empty one. */
void FreeBlackBits(void);

/* Makes an all-white width x height picture (sizes below 1 give an empty
 * one). Returns false, leaving an empty one, when the memory cannot be had. */
bool AllocBlackBits(int width, int height);

/* The bytes AllocBlackBits would ask for, or SIZE_MAX when that overflows. */
size_t BlackBitsBytes(int width, int height);

/* Pixel row y (0 = bottom), for filling. */
inline uint64_t *BlackBitsRow(int y)
{
    return blackbits.level[0] + static_cast<size_t>(y) * blackbits.words;
}

/* Sets the bits of a row from pixels: black is r^2 + g^2 + b^2 <= 16383
 * (grey v: 3 v^2 <= 16383). channels: 1 grey, 3 rgb, 4 rgba (alpha ignored). */
void ThresholdRow(const unsigned char *pixels, int channels, int width, uint64_t *row);

/* From a byte image whose bytes below 128 are black. */
bool BlackBitsFromBytes(const unsigned char *bw, int width, int height);

/* Once every pixel row is filled: complements them when invert is set (black
 * and white swap), builds the pyramid and says whether any pixel is black. */
bool FinishBlackBits(bool invert);

/* True when a black pixel lies in x0 <= x < x1, y0 <= y < y1; the rectangle
 * must be non-empty and inside the picture. */
bool BlackBitsAny(int x0, int x1, int y0, int y1);

/* One grid of square boxes of the given size whose lower-left corner is at
 * (gridx, gridy), counted over the clipped area xlo <= x < xhi,
 * ylo <= y < yhi (inside the picture; gridx <= xlo, gridy <= ylo): the number
 * of boxes that hold at least one black pixel of that area. scratch holds
 * words + 1 words. */
int64_t CountGridBoxes(int size, int64_t gridx, int64_t gridy, int xlo, int xhi, int ylo, int yhi,
                       uint64_t *scratch);

#endif
