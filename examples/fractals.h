/* Known fractals drawn into a grey raster, for the demo, the tests and the
 * benchmarks. A raster is width x height bytes, row 0 at the bottom,
 * 0 = black (structure), 255 = white. Theoretical box-counting dimensions:
 * carpet ln 8 / ln 3 = 1.8928, triangle ln 3 / ln 2 = 1.5850,
 * koch ln 4 / ln 3 = 1.2619, cantor (Cantor dust) ln 4 / ln 3 = 1.2619,
 * vicsek ln 5 / ln 3 = 1.4650, square 2, line 1, circle 1. */
#ifndef EXAMPLES_FRACTALS_H
#define EXAMPLES_FRACTALS_H

#include <string>
#include <vector>

struct Raster {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels; // width * height, 0 black, 255 white
};

/* Makes one of "carpet", "triangle", "koch", "cantor", "vicsek", "square",
 * "line", "circle", "dust" on a size x size raster (dust is random black pixels at 1 in 64, from a fixed
 * seed). Returns false for an unknown kind. */
bool MakeFractal(const std::string &kind, int size, Raster *out);

/* Writes the raster as an uncompressed 8-bit grey TGA (type 3), bottom row
 * first. Returns false if the file cannot be written. */
bool WriteGreyTGA(const std::string &path, const Raster &raster);

#endif
