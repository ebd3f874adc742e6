#include "colour.h"

#include <cmath>
#include <limits>

namespace
{

/* One breakpoint of a colour map: the colour at parameter t. */
struct Stop {
    double t, r, g, b;
};

/* A colour map: n breakpoints (2 to 7) in increasing t, from t = 0 to t = 1. */
struct ColourMap {
    int n;
    Stop stop[7];
};

/* 8-bit component values of the earthy and pastel maps, as exact fractions. */
constexpr double B(int x)
{
    return x / 255.0;
}

/* The 25 maps, type 1 first. Types 11-13, 20 and 21 were designed in 8-bit
 * components, the rest in whole primaries. */
const ColourMap kMaps[25] = {
    {5, {{0, 0, 0, 1}, {0.25, 0, 1, 1}, {0.5, 0, 1, 0}, {0.75, 1, 1, 0}, {1, 1, 0, 0}}},
    {2, {{0, 0, 0, 1}, {1, 1, 0, 0}}},
    {2, {{0, 0, 0, 0}, {1, 1, 1, 1}}},
    {7,
     {{0, 1, 0, 0},
      {1.0 / 6, 1, 1, 0},
      {2.0 / 6, 0, 1, 0},
      {3.0 / 6, 0, 1, 1},
      {4.0 / 6, 0, 0, 1},
      {5.0 / 6, 1, 0, 1},
      {1, 1, 0, 0}}},
    {2, {{0, 0, 0, 1}, {1, 1, 0, 1}}},
    {2, {{0, 0, 1, 0}, {1, 1, 0, 1}}},
    {5, {{0, 0, 0, 1}, {0.25, 0, 1, 0}, {0.5, 1, 0, 0}, {0.75, 0, 1, 0}, {1, 0, 0, 1}}},
    {3, {{0, 0, 0, 0}, {0.5, 1, 1, 1}, {1, 0, 0, 0}}},
    {4, {{0, 1, 0, 0}, {1.0 / 3, 0, 0, 1}, {2.0 / 3, 0, 1, 1}, {1, 1, 0, 1}}},
    {6, {{0, 0, 0, 1}, {0.2, 0, 1, 1}, {0.4, 0, 1, 0}, {0.6, 1, 1, 0}, {0.8, 1, 0, 0}, {1, 1, 1, 1}}},
    {2, {{0, B(200), B(60), B(0)}, {1, B(250), B(160), B(110)}}},
    {3, {{0, B(55), B(55), B(45)}, {0.4, B(235), B(90), B(30)}, {1, B(250), B(160), B(110)}}},
    {3, {{0, B(0), B(255), B(0)}, {0.3, B(255), B(150), B(0)}, {1, B(255), B(250), B(240)}}},
    {2, {{0, 1, 1, 0}, {1, 1, 0, 0}}},
    {5, {{0, 0, 0, 1}, {0.25, 0, 1, 1}, {0.5, 0, 1, 0}, {0.75, 1, 1, 0}, {1, 1, 1, 1}}},
    {3, {{0, 0, 0, 1}, {0.5, 0, 1, 0}, {1, 1, 0, 0}}},
    {3, {{0, 1, 1, 0}, {0.5, 1, 0, 1}, {1, 0, 1, 1}}},
    {2, {{0, 0, 0, 1}, {1, 0, 1, 1}}},
    {2, {{0, 0, 0, 1}, {1, 1, 1, 1}}},
    {3, {{0, B(0), B(160), B(0)}, {0.3, B(180), B(220), B(0)}, {1, B(250), B(220), B(170)}}},
    {2, {{0, B(255), B(255), B(200)}, {1, B(150), B(150), B(255)}}},
    {2, {{0, 1, 1, 0}, {1, 0, 0, 1}}},
    {3, {{0, 1, 0, 0}, {0.5, 1, 1, 1}, {1, 0, 0, 1}}},
    {3, {{0, 0, 0, 1}, {0.5, 1, 1, 0}, {1, 1, 0, 0}}},
    {4, {{0, 0, 0, 1}, {1.0 / 3, 0, 1, 1}, {2.0 / 3, 1, 0, 1}, {1, 1, 0, 0}}},
};

/* The character ramp of AsciiColour, light to dark. */
const char kAsciiRamp[] = " .,:;-|I*oO%#@M";
const int kAsciiLevels = 15;

Colour MakeColour(double r, double g, double b)
{
    Colour c;
    c.r = r;
    c.g = g;
    c.b = b;
    return c;
}

/* a at f = 0, b at f = 1, both exactly (unlike a + f (b - a)), so every
 * breakpoint colour is returned as written. */
double Lerp(double a, double b, double f)
{
    return a * (1 - f) + b * f;
}

double Clamp01(double c)
{
    if (c < 0)
        return 0;
    if (c > 1)
        return 1;
    return c;
}

/* Hue of RGB2HSL and RGB2HSV in degrees, 0 to 360, by the sextant formula of
 * A. R. Smith, "Color gamut transform pairs" (SIGGRAPH 1978). Each term counts
 * only when its channel is a maximum and the next channel (g after r, b after
 * g, r after b) is not, so that yellow, cyan and magenta, with two equal
 * maxima, come out at 60, 180 and 300. 0 when delta is not positive. */
double Hue(double r, double g, double b, double max, double delta)
{
    if (!(delta > 0))
        return 0;
    double h = 0;
    if (r == max && g != max)
        h += (g - b) / delta;
    if (g == max && b != max)
        h += 2 + (b - r) / delta;
    if (b == max && r != max)
        h += 4 + (r - g) / delta;
    h *= 60;
    if (h < 0)
        h += 360;
    return h;
}

/* The fully saturated colour of hue h (degrees, any number of turns): the hue
 * is brought into 0 to 360 one turn at a time, then each channel is a tent of
 * slope 1/60 limited to 1. A hue beyond a million degrees is first reduced
 * with fmod, which is exact and gives the same angle, so the turn loop stays
 * short; fmod makes an infinite hue NaN, which no number of turns would end. */
Colour SaturatedHue(double h)
{
    if (std::fabs(h) > 1e6)
        h = std::fmod(h, 360.0);
    while (h < 0)
        h += 360;
    while (h > 360)
        h -= 360;
    Colour c;
    if (h < 120)
        c = MakeColour((120 - h) / 60, h / 60, 0);
    else if (h < 240)
        c = MakeColour(0, (240 - h) / 60, (h - 120) / 60);
    else
        c = MakeColour((h - 240) / 60, 0, (360 - h) / 60);
    if (c.r > 1)
        c.r = 1;
    if (c.g > 1)
        c.g = 1;
    if (c.b > 1)
        c.b = 1;
    return c;
}

} // namespace

Colour GetColour(double v, double vmin, double vmax, int type)
{
    if (vmin > vmax) {
        const double swap = vmin;
        vmin = vmax;
        vmax = swap;
    }
    if (vmax - vmin < 1e-6) {
        vmin -= 1;
        vmax += 1;
    }
    if (v < vmin)
        v = vmin;
    if (v > vmax)
        v = vmax;
    const double t = (v - vmin) / (vmax - vmin);

    if (type < 1 || type > 25)
        return MakeColour(1, 1, 1);
    const ColourMap &map = kMaps[type - 1];
    /* Segment i runs from stop i to stop i + 1; a t equal to stop i + 1 moves
     * up to the next segment. A NaN t stays in the first segment. */
    int i = 0;
    while (i + 2 < map.n && t >= map.stop[i + 1].t)
        i++;
    const Stop &lo = map.stop[i];
    const Stop &hi = map.stop[i + 1];
    const double f = (t - lo.t) / (hi.t - lo.t);
    return MakeColour(Lerp(lo.r, hi.r, f), Lerp(lo.g, hi.g, f), Lerp(lo.b, hi.b, f));
}

Colour RampColour2(double t, Colour c1, Colour c2)
{
    if (t < 0)
        return c1;
    if (t > 1)
        return c2;
    return MakeColour(c1.r + t * (c2.r - c1.r), c1.g + t * (c2.g - c1.g), c1.b + t * (c2.b - c1.b));
}

int AsciiColour(double v, double vmin, double vmax)
{
    const double lo = vmin < vmax ? vmin : vmax;
    const double hi = vmin < vmax ? vmax : vmin;
    if (v < lo)
        v = lo;
    if (v > hi)
        v = hi;
    const double x = (v - vmin) * kAsciiLevels / (vmax - vmin);
    /* x is 0 to 15; 15 (v at the top) has no character of its own and joins
     * the last one. 0 / 0 for an empty range and NaN input fail x >= 0. */
    int index = 0;
    if (x >= kAsciiLevels - 1)
        index = kAsciiLevels - 1;
    else if (x >= 0)
        index = static_cast<int>(x);
    return kAsciiRamp[index];
}

double AbsColour(Colour c)
{
    return std::sqrt(c.r * c.r + c.g * c.g + c.b * c.b) / std::sqrt(3.0);
}

int EqualColour(Colour c1, Colour c2)
{
    const double d[3] = {c1.r - c2.r, c1.g - c2.g, c1.b - c2.b};
    for (double x : d) {
        if (x > 1e-6 || x < -1e-6)
            return FALSE;
    }
    return TRUE;
}

Colour InvertColour(Colour c)
{
    return MakeColour(1 - c.r, 1 - c.g, 1 - c.b);
}

Colour ClipColour(Colour c)
{
    return MakeColour(Clamp01(c.r), Clamp01(c.g), Clamp01(c.b));
}

ColourA ClipRGBA(ColourA c)
{
    ColourA out;
    out.r = Clamp01(c.r);
    out.g = Clamp01(c.g);
    out.b = Clamp01(c.b);
    out.a = Clamp01(c.a);
    return out;
}

Colour RGB2HSL(double r, double g, double b)
{
    const double max = std::fmax(r, std::fmax(g, b));
    const double min = std::fmin(r, std::fmin(g, b));
    const double delta = max - min;
    const double l = (max + min) / 2;
    double s = 0;
    if (l > 0 && l < 1)
        s = l < 0.5 ? delta / (2 * l) : delta / (2 - 2 * l);
    return MakeColour(Hue(r, g, b, max, delta), s, l);
}

/* With c the saturated channel, c' = 2 s c + (1 - s), then l c' below l = 0.5
 * and (1 - l) c' + 2 l - 1 from there: the channel spread is 2 l s or
 * (2 - 2 l) s around l, the inverse of RGB2HSL. */
Colour HSL2RGB(double h, double s, double l)
{
    Colour c = SaturatedHue(h);
    double *channel[3] = {&c.r, &c.g, &c.b};
    for (double *x : channel) {
        *x = 2 * s * *x + (1 - s);
        *x = l < 0.5 ? l * *x : (1 - l) * *x + 2 * l - 1;
    }
    return c;
}

Colour RGB2HSV(double r, double g, double b)
{
    const double max = std::fmax(r, std::fmax(g, b));
    const double min = std::fmin(r, std::fmin(g, b));
    const double delta = max - min;
    const double s = (max == 0 || !(delta > 0)) ? 0 : delta / max;
    return MakeColour(Hue(r, g, b, max, delta), s, max);
}

/* Each saturated channel c becomes (s c + (1 - s)) v: the maximum channel is
 * v and the minimum (1 - s) v, the inverse of RGB2HSV. */
Colour HSV2RGB(double h, double s, double v)
{
    const Colour c = SaturatedHue(h);
    return MakeColour((s * c.r + (1 - s)) * v, (s * c.g + (1 - s)) * v, (s * c.b + (1 - s)) * v);
}

/* The coefficients are this library's own four-digit values, close to but
 * not the ITU-R BT.601 weights (0.299, 0.587, 0.114 for Y); they are used as
 * they stand, so that a round trip through YCC is only nearly exact. */
Colour RGB2YCC(double r, double g, double b)
{
    return MakeColour(0.2989 * r + 0.5866 * g + 0.1145 * b, -0.1687 * r - 0.3312 * g + 0.5 * b,
                      0.5 * r - 0.4183 * g - 0.0816 * b);
}

Colour YCC2RGB(double y, double cb, double cr)
{
    return MakeColour(Clamp01(y + 1.4022 * cr), Clamp01(y - 0.3456 * cb - 0.7145 * cr),
                      Clamp01(y + 1.771 * cb));
}
