/* Truevision TGA reader.
 *
 * Reading takes two calls on a stream opened for binary reading: TGA_Info
 * gives the size so that the caller can create a bitmap, then TGA_Read decodes
 * the file into it, always bottom row first. Handled: data types 1 (colour
 * mapped), 2 (true colour), 3 (grey), 10 and 11 (run-length true colour and
 * grey), at 8, 16, 24 or 32 bits per pixel. The reader never writes past
 * width x height pixels and never reads a palette entry that does not exist,
 * whatever the file says.
 */
#ifndef BITMAP_TGA_H
#define BITMAP_TGA_H

#include <stdio.h>

#include "pixel.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Reads the 18-byte header at the stream's current position and stores the
 * width and height (signed 16-bit, widened) and the bits per pixel, then
 * rewinds the stream. Checks nothing; a short file gives zeros for the fields
 * it lacks. */
void TGA_Info(FILE *fptr, int *width, int *height, int *depth);

/* Decodes the whole file from the start of the stream into bitmap, which must
 * hold width x height pixels as TGA_Info reported them. Sets *width and
 * *height first, then returns 0 on success or:
 *   1 data type not 1, 2, 3, 10 or 11     4 file ended in a pixel, index or packet header
 *   2 bits per pixel not 8, 16, 24, 32    5 file ended inside the colour map
 *   3 colour map type above 1             6 file ended inside a raw run-length packet
 * On failure the bitmap holds what was decoded so far. */
int TGA_Read(FILE *fptr, BitmapPixel *bitmap, int *width, int *height);

/* Receives one decoded row: y is its row in TGA_Read's result (0 = bottom),
 * pixels its width pixels, valid only during the call. */
typedef void (*TGA_RowFunction)(void *data, int y, const BitmapPixel *pixels, int width);

/* Decodes like TGA_Read, but hands the pixels to row() one complete row at a
 * time, in file order, instead of storing the picture; memory stays at one
 * row whatever the size. Returns what TGA_Read returns; on failure the rows
 * handed over are those decoded completely before it. */
int TGA_ReadRows(FILE *fptr, int *width, int *height, TGA_RowFunction row, void *data);

/* Turns one pixel's n file bytes (n = 1 to 4) into a BitmapPixel: 4 is
 * b, g, r, a; 3 is b, g, r (opaque); 2 is the 16-bit 1-5-5-5 form with the
 * top bit as alpha 128; 1 is opaque grey. Other n leave *pixel as it was. */
void TGA_MergeBytes(BitmapPixel *pixel, const unsigned char *p, int bytes);

#ifdef __cplusplus
}
#endif

#endif
