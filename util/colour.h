/* Colour: scalar-to-colour maps, a two-colour ramp, a character ramp for text
 * output, comparison and clipping, and conversions between RGB and the HSL,
 * HSV and YCC spaces. Colours are passed and returned by value, components
 * nominally 0 to 1. The HSL, HSV and YCC triples travel in a Colour too: r holds
 * the hue in degrees (or Y), g the saturation (or Cb), b the lightness or value
 * (or Cr). Nothing here fails or keeps state. */
#ifndef UTIL_COLOUR_H
#define UTIL_COLOUR_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The colour of v in [vmin, vmax] on colour map type 1 to 25 (bounds given in
 * either order; a range narrower than 1e-6 is widened by 1 on each side; v is
 * clamped into the range). Every map is piecewise linear in t = (v - vmin) /
 * (vmax - vmin) between fixed colours at fixed t, a t on a breakpoint taking
 * the upper segment; type 0 and any other type give white. */
Colour GetColour(double v, double vmin, double vmax, int type);

/* c1 for t below 0, c2 for t above 1, otherwise c1 + t (c2 - c1). */
Colour RampColour2(double t, Colour c1, Colour c2);

/* One of the 15 characters " .,:;-|I*oO%#@M" (light to dark) for v in
 * [vmin, vmax]: index trunc((v - vmin) 15 / (vmax - vmin)) with v clamped to
 * the range and no widening. v at the top (index 15) gives the last character,
 * 'M'. Bounds in reverse order run the ramp from vmin (blank) to vmax; an
 * empty range or a NaN gives the blank. */
int AsciiColour(double v, double vmin, double vmax);

/* Brightness sqrt(r^2 + g^2 + b^2) / sqrt(3): 0 for black, 1 for white. */
double AbsColour(Colour c);

/* TRUE unless some component of c1 and c2 differs by more than 1e-6 (exactly
 * 1e-6 still counts as equal). */
int EqualColour(Colour c1, Colour c2);

/* Each component c becomes 1 - c. */
Colour InvertColour(Colour c);

/* Each component clamped to 0 to 1 (a NaN is left as it is). */
Colour ClipColour(Colour c);

/* Each of the four components clamped to 0 to 1 (a NaN is left as it is). */
ColourA ClipRGBA(ColourA c);

/* Hue, saturation and lightness of (r, g, b), in r, g, b of the result. Hue is
 * 0 to 360 degrees, 0 for greys; lightness (max + min) / 2; saturation delta /
 * (2 l) below l = 0.5, delta / (2 - 2 l) from there, 0 unless 0 < l < 1. */
Colour RGB2HSL(double r, double g, double b);

/* The RGB colour of hue h (degrees, any number of turns), saturation s and
 * lightness l. A NaN or infinite hue gives NaN red and blue. */
Colour HSL2RGB(double h, double s, double l);

/* Hue, saturation and value of (r, g, b), in r, g, b of the result: hue as for
 * RGB2HSL, saturation (max - min) / max (0 for max 0 or greys), value max. */
Colour RGB2HSV(double r, double g, double b);

/* The RGB colour of hue h (degrees, any number of turns), saturation s and
 * value v. A NaN or infinite hue gives NaN red and blue. */
Colour HSV2RGB(double h, double s, double v);

/* Y, Cb and Cr of (r, g, b), in r, g, b of the result, with this library's
 * rounded coefficients: Y = 0.2989 r + 0.5866 g + 0.1145 b, Cb = -0.1687 r -
 * 0.3312 g + 0.5 b, Cr = 0.5 r - 0.4183 g - 0.0816 b. */
Colour RGB2YCC(double r, double g, double b);

/* The RGB colour of (Y, Cb, Cr): r = Y + 1.4022 Cr, g = Y - 0.3456 Cb -
 * 0.7145 Cr, b = Y + 1.771 Cb, each clamped to 0 to 1. Not the exact inverse
 * of RGB2YCC: white comes back as (1, 0.99989399, 1). */
Colour YCC2RGB(double y, double cb, double cr);

#ifdef __cplusplus
}
#endif

#endif
