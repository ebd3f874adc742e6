/* Bitmap record and elementary pixel operations.
 *
 * An image is a bare array of width x height BitmapPixel values with no
 * header and no row padding: pixel (x, y) is element x + y * width and row 0
 * is the bottom row of the picture. The caller keeps width and height beside
 * the pointer. Whoever calls Create_Bitmap owns the array and releases it
 * with Destroy_Bitmap; no routine here keeps a pointer to it. Nothing here
 * prints or keeps state, so the routines are re-entrant.
 */
#ifndef BITMAP_PIXEL_H
#define BITMAP_PIXEL_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One pixel: red, green, blue, alpha, in that order in memory (the order of
 * OpenGL's RGBA unsigned-byte upload). Alpha 255 is opaque. */
typedef struct {
    unsigned char r, g, b, a;
} BitmapPixel;

/* Number of pixels of a width x height image: 0 when either side is below 1,
 * otherwise the product computed without overflow in size_t. */
size_t Bitmap_PixelCount(int width, int height);

/* Allocates width x height uninitialised pixels; null when the size cannot be
 * represented or memory is exhausted. A side below 1 gives an empty (but
 * non-null) image. */
BitmapPixel *Create_Bitmap(int width, int height);

/* Releases an image made by Create_Bitmap; a null pointer is accepted. */
void Destroy_Bitmap(BitmapPixel *bitmap);

/* Sets every pixel, alpha included, to colour. */
void Erase_Bitmap(BitmapPixel *bitmap, int width, int height, BitmapPixel colour);

/* Sets pixel (x, y) to colour; 1 if it lies inside the image, else 0 and
 * nothing is written. */
int Draw_Pixel(BitmapPixel *bitmap, int width, int height, int x, int y, BitmapPixel colour);

/* The pixel at (x, y); opaque black (0, 0, 0, 255) outside the image. */
BitmapPixel Get_Pixel(const BitmapPixel *bitmap, int width, int height, int x, int y);

/* 1 if all four channels, alpha included, are equal, else 0. */
int Same_BitmapPixel(BitmapPixel p1, BitmapPixel p2);

/* Mirrors in place: direction 0 swaps rows top to bottom, 1 swaps columns
 * left to right, anything else does nothing. */
void Flip_Bitmap(BitmapPixel *bitmap, int width, int height, int direction);

/* Draws the segment (x1, y1)-(x2, y2) by sampling it every half pixel and
 * truncating each sample toward zero; samples outside the image are dropped.
 * A segment whose length is not a whole number may stop short of (x2, y2). */
void Draw_Line(BitmapPixel *bitmap, int width, int height, int x1, int y1, int x2, int y2,
               BitmapPixel colour);

/* Every channel, alpha included, times factor, truncated and clamped to 0..255. */
BitmapPixel Scale_Pixel(BitmapPixel pixel, double factor);

/* YUV (U and V centred on 128) to RGB, truncated and clamped; alpha is 0. */
BitmapPixel YUV_to_Bitmap(int y, int u, int v);

#ifdef __cplusplus
}
#endif

#endif
