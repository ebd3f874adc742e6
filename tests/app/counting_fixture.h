// Shared set-up for the counting tests: images given as black/white masks,
// loaded through the program's own intake, and a brute-force count to check
// the counter against.
#ifndef TESTS_APP_COUNTING_FIXTURE_H
#define TESTS_APP_COUNTING_FIXTURE_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "bitmap.h"
#include "intake.h"
#include "settings.h"

namespace counting {

// A mask of width x height, row 0 at the bottom; true is black.
struct Mask {
    int width = 0, height = 0;
    std::vector<bool> black;
    Mask(int w, int h) : width(w), height(h), black(static_cast<size_t>(w) * h, false) {}
    void Set(int x, int y, bool b = true) { black[static_cast<size_t>(y) * width + x] = b; }
    bool At(int x, int y) const { return black[static_cast<size_t>(y) * width + x]; }
};

inline Mask RandomMask(int w, int h, double density, uint32_t seed)
{
    Mask m(w, h);
    std::mt19937 gen(seed);
    std::bernoulli_distribution d(density);
    for (int y = 0; y < h; y++)
        for (int x = 0; x < w; x++)
            m.Set(x, y, d(gen));
    return m;
}

// Makes image from the mask (black 0,0,0; white 255,255,255) and rebuilds the
// black/white image through UpdateImages, in quiet mode.
inline void LoadMask(const Mask &m)
{
    options.quiet = 1;
    Destroy_Bitmap(image);
    options.width = m.width;
    options.height = m.height;
    image = Create_Bitmap(m.width, m.height);
    for (int y = 0; y < m.height; y++)
        for (int x = 0; x < m.width; x++) {
            const unsigned char v = m.At(x, y) ? 0 : 255;
            image[x + y * m.width] = BitmapPixel{v, v, v, 255};
        }
    UpdateImages();
}

// The number of boxes of a grid of the given size and offset that hold
// black inside the region, counted the obvious way.
inline int BruteForceCount(const Mask &m, int left, int right, int bottom, int top, int size, int offx,
                           int offy)
{
    int count = 0;
    for (int64_t by = static_cast<int64_t>(bottom) - offy; by < top; by += size)
        for (int64_t bx = static_cast<int64_t>(left) - offx; bx < right; bx += size) {
            bool found = false;
            for (int64_t y = std::max<int64_t>(by, bottom); y < std::min<int64_t>(by + size, top) && !found; y++)
                for (int64_t x = std::max<int64_t>(bx, left); x < std::min<int64_t>(bx + size, right); x++)
                    if (m.At(static_cast<int>(x), static_cast<int>(y))) {
                        found = true;
                        break;
                    }
            count += found;
        }
    return count;
}

// Makes results the given (size, count) records, in storage of the test's
// own (the counter moves records to a block of its own when it next grows).
inline void SetResults(const std::vector<std::pair<int, int>> &records)
{
    static std::vector<RESULT> storage;
    storage.clear();
    for (auto [size, count] : records)
        storage.push_back(RESULT{size, count, 0});
    results = storage.data();
    nresults = static_cast<int>(storage.size());
}

// One "   Box size: ..." progress line.
struct GridLine {
    int size = 0, index = 0, noffset = 0, noffsets = 0, offx = 0, offy = 0, count = 0;
};

inline std::vector<GridLine> ParseGridLines(const std::string &err)
{
    std::vector<GridLine> lines;
    size_t pos = 0;
    while ((pos = err.find("   Box size:", pos)) != std::string::npos) {
        GridLine g;
        if (std::sscanf(err.c_str() + pos, "   Box size: %d [%d], Offset %d of %d: (%d,%d), Total count = %d",
                        &g.size, &g.index, &g.noffset, &g.noffsets, &g.offx, &g.offy, &g.count) == 7)
            lines.push_back(g);
        pos++;
    }
    return lines;
}

} // namespace counting

#endif
