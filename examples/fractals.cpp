#include "fractals.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

void Set(Raster &r, long x, long y)
{
    if (x >= 0 && y >= 0 && x < r.width && y < r.height)
        r.pixels[static_cast<size_t>(y) * r.width + x] = 0;
}

// Draws the pixels (x, y) of the largest power-of-three square that fits for
// which keep(x, y) holds: the three self-similar sets below are rules on the
// base-3 digits of the coordinates.
template <class Keep> void DrawTernary(Raster &r, Keep keep)
{
    long side = 1;
    while (side * 3 <= r.width)
        side *= 3;
    for (long y = 0; y < side; y++)
        for (long x = 0; x < side; x++)
            if (keep(x, y))
                Set(r, x, y);
}

// Sierpinski carpet: a pixel is white when, at some level, both of its
// base-3 digits are 1.
void Carpet(Raster &r)
{
    DrawTernary(r, [](long a, long b) {
        for (; a > 0 || b > 0; a /= 3, b /= 3)
            if (a % 3 == 1 && b % 3 == 1)
                return false;
        return true;
    });
}

// Cantor dust: the product of two middle-third Cantor sets; a pixel is black
// when neither coordinate has a base-3 digit 1.
void CantorDust(Raster &r)
{
    DrawTernary(r, [](long a, long b) {
        for (; a > 0 || b > 0; a /= 3, b /= 3)
            if (a % 3 == 1 || b % 3 == 1)
                return false;
        return true;
    });
}

// Vicsek fractal (cross form): of each 3 x 3 block keep the centre and the
// four edge-centre cells, i.e. at every level at least one of the two base-3
// digits is 1.
void Vicsek(Raster &r)
{
    DrawTernary(r, [](long a, long b) {
        for (; a > 0 || b > 0; a /= 3, b /= 3)
            if (a % 3 != 1 && b % 3 != 1)
                return false;
        return true;
    });
}

// Sierpinski triangle as Pascal's triangle modulo 2: (x, y) is black when
// x AND y is zero, on the largest power of two that fits.
void Triangle(Raster &r)
{
    long side = 1;
    while (side * 2 <= r.width)
        side *= 2;
    for (long y = 0; y < side; y++)
        for (long x = 0; x < side; x++)
            if ((x & y) == 0)
                Set(r, x, y);
}

void Segment(Raster &r, double x0, double y0, double x1, double y1)
{
    const double len = std::hypot(x1 - x0, y1 - y0);
    const long steps = static_cast<long>(std::ceil(len * 2)) + 1;
    for (long i = 0; i <= steps; i++) {
        const double t = static_cast<double>(i) / steps;
        Set(r, std::lround(x0 + t * (x1 - x0)), std::lround(y0 + t * (y1 - y0)));
    }
}

void KochSide(Raster &r, double x0, double y0, double x1, double y1, int depth)
{
    if (depth == 0) {
        Segment(r, x0, y0, x1, y1);
        return;
    }
    const double dx = (x1 - x0) / 3, dy = (y1 - y0) / 3;
    const double ax = x0 + dx, ay = y0 + dy;
    const double bx = x0 + 2 * dx, by = y0 + 2 * dy;
    // The tip of the bump, 60 degrees to the left of the segment.
    const double px = ax + dx * 0.5 - dy * std::sqrt(3.0) / 2;
    const double py = ay + dy * 0.5 + dx * std::sqrt(3.0) / 2;
    KochSide(r, x0, y0, ax, ay, depth - 1);
    KochSide(r, ax, ay, px, py, depth - 1);
    KochSide(r, px, py, bx, by, depth - 1);
    KochSide(r, bx, by, x1, y1, depth - 1);
}

// One Koch curve across the raster, recursed until its segments are shorter
// than a pixel.
void Koch(Raster &r)
{
    const double len = r.width - 1;
    int depth = 0;
    while (len / std::pow(3.0, depth) > 1.0)
        depth++;
    const double y = r.height * 0.1;
    KochSide(r, 0, y, len, y, depth);
}

} // namespace

bool MakeFractal(const std::string &kind, int size, Raster *out)
{
    Raster &r = *out;
    r.width = r.height = size;
    r.pixels.assign(static_cast<size_t>(size) * size, 255);
    if (kind == "carpet") {
        Carpet(r);
    } else if (kind == "triangle") {
        Triangle(r);
    } else if (kind == "koch") {
        Koch(r);
    } else if (kind == "square") {
        for (long y = 0; y < size; y++)
            for (long x = 0; x < size; x++)
                Set(r, x, y);
    } else if (kind == "line") {
        for (long x = 0; x < size; x++)
            Set(r, x, size / 2);
    } else if (kind == "cantor") {
        CantorDust(r);
    } else if (kind == "vicsek") {
        Vicsek(r);
    } else if (kind == "circle") {
        // A one-pixel outline of radius 0.4 size about the centre.
        const double c = size / 2.0, rad = 0.4 * size;
        const long steps = static_cast<long>(std::ceil(2 * M_PI * rad * 4));
        for (long i = 0; i < steps; i++) {
            const double t = 2 * M_PI * i / steps;
            Set(r, std::lround(c + rad * std::cos(t)), std::lround(c + rad * std::sin(t)));
        }
    } else if (kind == "dust") {
        std::mt19937 gen(12345);
        for (auto &p : r.pixels)
            if (gen() % 64 == 0)
                p = 0;
    } else {
        return false;
    }
    return true;
}

bool WriteGreyTGA(const std::string &path, const Raster &raster)
{
    FILE *f = std::fopen(path.c_str(), "wb");
    if (!f)
        return false;
    unsigned char h[18] = {};
    h[2] = 3; // uncompressed grey
    h[12] = static_cast<unsigned char>(raster.width & 0xFF);
    h[13] = static_cast<unsigned char>((raster.width >> 8) & 0xFF);
    h[14] = static_cast<unsigned char>(raster.height & 0xFF);
    h[15] = static_cast<unsigned char>((raster.height >> 8) & 0xFF);
    h[16] = 8;
    bool ok = std::fwrite(h, 1, sizeof h, f) == sizeof h;
    ok = ok && std::fwrite(raster.pixels.data(), 1, raster.pixels.size(), f) == raster.pixels.size();
    ok = (std::fclose(f) == 0) && ok;
    return ok;
}
