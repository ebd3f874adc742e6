/* The bitmap library: a flat RGBA pixel array (pixel.h), the TGA reader
 * (tga.h), resampling and the multi-format image writer. Include this one
 * header to get all of them. No GL, no X, no state of its own. */
#ifndef BITMAP_BITMAP_H
#define BITMAP_BITMAP_H

#include "pixel.h"
#include "resample.h"
#include "tga.h"
#include "writer.h"

#endif
