/* Resampling a bitmap to any size: a cubic B-spline resampler and a Gaussian
 * one. Both read a source of nx x ny pixels and fill a destination of
 * nnx x nny pixels that the caller has made; neither allocates. Positions map
 * lower-left corner to lower-left corner with no half-pixel centring, and each
 * channel sum is truncated and its low eight bits kept. */
#ifndef BITMAP_RESAMPLE_H
#define BITMAP_RESAMPLE_H

#include "pixel.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The cubic B-spline kernel: (P(x+2)^3 - 4P(x+1)^3 + 6P(x)^3 - 4P(x-1)^3) / 6
 * with P(t) = max(t, 0). 2/3 at 0, 1/6 at +-1, 0 beyond +-2. */
double BiCubicR(double x);

/* Resamples with the 4 x 4 B-spline kernel; taps outside the source repeat
 * its edge pixels. Scale 1 is a mild blur, not the identity. Writes nothing
 * when a destination side is below 1 or the source is empty. */
void BiCubicScale(const BitmapPixel *bitmap, int nx, int ny, BitmapPixel *bitmap2, int nnx, int nny);

/* Resamples through a Gaussian of the given sigma sampled over +-4 sigma,
 * without normalising by the total weight; sigma^2 <= 0 takes the nearest
 * sample. A NaN, infinite or astronomically large sigma (1e15 or more) gives
 * an empty sampling range, so every channel is 0. Writes nothing when a destination side is below 1 or the
 * source is empty. */
void GaussianScale(const BitmapPixel *bitmap, int nx, int ny, BitmapPixel *bitmap2, int nnx, int nny,
                   double sigma);

#ifdef __cplusplus
}
#endif

#endif
