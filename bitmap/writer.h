/* Multi-format image writer.
 *
 * Writes a bitmap (pixel.h layout) to a stream the caller opened for binary
 * writing and closes afterwards. The absolute value of the format code picks
 * the format, its sign the row order: positive writes memory row 0 (the
 * bottom of the picture) first, negative writes the last row first. Nothing
 * is checked or reported; unknown codes write nothing.
 */
#ifndef BITMAP_WRITER_H
#define BITMAP_WRITER_H

#include <stdio.h>

#include "pixel.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Writes the width x height image in format |format|: 1 TGA 24-bit, 2 PPM,
 * 3 SGI-style, 4 raw grey, 5 TIFF, 6 EPS colour, 7 EPS grey, 8 raw RGB,
 * 9 BMP 24-bit (rows unpadded), 11 TGA 32-bit, 12 and 13 run-length TGA 24-
 * and 32-bit; 0, 10 and codes above 13 write nothing. Headers and trailers
 * are written even when a side is below 1. */
void Write_Bitmap(FILE *fptr, const BitmapPixel *bitmap, int width, int height, int format);

/* Writes one row of width pixels as TGA run-length packets of at most 128
 * pixels, bytes (3 or 4) bytes per pixel in the order b, g, r[, a]; pixel
 * equality includes alpha, and the reference pixel is carried over from one
 * packet to the next. A width below 1 writes nothing. */
void WriteTGACompressedRow(FILE *fptr, const BitmapPixel *row, int width, int bytes);

/* Stores value's four bytes, most significant first, in buf (four bytes)
 * and puts them to the stream in that order; returns the last fputc result. */
int BM_WriteLongInt(FILE *fptr, char *buf, int value);

/* Puts one byte per pair of hexadecimal digits of s (either case, as "%X"
 * scans them); a trailing single digit makes a byte on its own. */
void BM_WriteHexString(FILE *fptr, const char *s);

#ifdef __cplusplus
}
#endif

#endif
