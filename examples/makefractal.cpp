// makefractal KIND SIZE OUT.tga: writes a known fractal as a grey TGA file.
#include <cstdio>
#include <cstdlib>

#include "fractals.h"

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "Usage: %s carpet|triangle|koch|cantor|vicsek|square|line|circle|dust SIZE OUT.tga\n", argv[0]);
        return 2;
    }
    const int size = std::atoi(argv[2]);
    if (size < 1 || size > 32767) {
        std::fprintf(stderr, "size must be 1 to 32767\n");
        return 2;
    }
    Raster r;
    if (!MakeFractal(argv[1], size, &r)) {
        std::fprintf(stderr, "unknown kind \"%s\"\n", argv[1]);
        return 2;
    }
    if (!WriteGreyTGA(argv[3], r)) {
        std::fprintf(stderr, "cannot write \"%s\"\n", argv[3]);
        return 1;
    }
    return 0;
}
