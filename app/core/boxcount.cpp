#include "boxcount.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

#include <sched.h>

#include "blackbits.h"
#include "estimate.h"
#include "frontend.h"
#include "settings.h"

namespace {

// What a box is clipped against: the region, and the image itself. The box
// counter clamps the region to the image when it starts, so the image bounds
// only matter for callers that ask before it has; they keep every read
// inside bwimage.
struct Bounds {
    int64_t right, top;  // a box starting at or beyond these holds nothing
    int64_t xlo, xhi;    // max(left, 0) .. min(right, width)
    int64_t ylo, yhi;    // max(bottom, 0) .. min(top, height)
};

Bounds CurrentBounds()
{
    Bounds b;
    b.right = options.right;
    b.top = options.top;
    b.xlo = std::max(options.left, 0);
    b.xhi = std::min(options.right, options.width);
    b.ylo = std::max(options.bottom, 0);
    b.yhi = std::min(options.top, options.height);
    return b;
}

// The clipped rectangle xmin <= x < xmax, ymin <= y < ymax, or false when it
// is empty. The box is taken in 64 bits: a grid position plus an absurd box
// size may leave the int range, while the clipped result always lies inside
// the image.
inline bool Clip(const Bounds &b, int64_t x0, int64_t x1, int64_t y0, int64_t y1, int *xmin, int *xmax,
                 int *ymin, int *ymax)
{
    if (x0 >= b.right || y0 >= b.top)
        return false;
    *xmin = static_cast<int>(x0 > b.xlo ? x0 : b.xlo);
    *xmax = static_cast<int>(x1 < b.xhi ? x1 : b.xhi);
    *ymin = static_cast<int>(y0 > b.ylo ? y0 : b.ylo);
    *ymax = static_cast<int>(y1 < b.yhi ? y1 : b.yhi);
    return *xmin < *xmax && *ymin < *ymax;
}

inline bool Black(int x, int y)
{
    return bwimage[static_cast<size_t>(y) * static_cast<size_t>(options.width) + static_cast<size_t>(x)] < 128;
}

bool ColumnHasBlack(int x, int y0, int y1)
{
    for (int y = y0; y < y1; y++)
        if (Black(x, y))
            return true;
    return false;
}

bool RowHasBlack(int y, int x0, int x1)
{
    for (int x = x0; x < x1; x++)
        if (Black(x, y))
            return true;
    return false;
}

// The literal scan of a clipped rectangle: a single pixel, a column or a row
// as such; otherwise the border first (left column, right column, bottom
// row, top row; corners are read more than once), then the inside column by
// column.
bool PlainScan(int xmin, int xmax, int ymin, int ymax)
{
    if (xmax - xmin == 1 && ymax - ymin == 1)
        return Black(xmin, ymin);
    if (xmax - xmin == 1)
        return ColumnHasBlack(xmin, ymin, ymax);
    if (ymax - ymin == 1)
        return RowHasBlack(ymin, xmin, xmax);
    if (ColumnHasBlack(xmin, ymin, ymax) || ColumnHasBlack(xmax - 1, ymin, ymax) ||
        RowHasBlack(ymin, xmin + 1, xmax) || RowHasBlack(ymax - 1, xmin, xmax))
        return true;
    if (xmax - 1 > xmin + 1)
        for (int x = xmin + 1; x <= xmax - 2; x++)
            if (ColumnHasBlack(x, ymin + 1, ymax - 1))
                return true;
    return false;
}

// True when the black bits describe the current picture; otherwise (a
// caller that set up bwimage alone) boxes are scanned pixel by pixel.
inline bool HaveBits()
{
    return blackbits.block != nullptr && blackbits.width == options.width && blackbits.height == options.height;
}

// Growing arrays: the records are appended one at a time, but the memory
// grows geometrically so that a grid of a million occupied boxes does not
// cost a million reallocations. The capacity belongs to the block this
// counter allocated: if someone else has put another array in its place,
// the records are moved to a fresh block rather than reallocating memory the
// counter does not own.
struct Growth {
    const void *block = nullptr;
    size_t capacity = 0;
};

template <typename T>
void Append(T **array, int *count, Growth *growth, const T &value)
{
    if (*array != growth->block) {
        growth->block = nullptr;
        growth->capacity = 0;
    }
    if (static_cast<size_t>(*count) + 1 > growth->capacity) {
        const size_t want = std::max<size_t>({16, growth->capacity * 2, static_cast<size_t>(*count) + 1});
        T *p = static_cast<T *>(growth->block ? std::realloc(*array, want * sizeof(T)) : std::malloc(want * sizeof(T)));
        if (p == nullptr) {
            std::fprintf(stderr, "Out of memory while counting boxes\n");
            std::exit(-1);
        }
        if (!growth->block && *count > 0)
            std::memcpy(p, *array, static_cast<size_t>(*count) * sizeof(T));
        *array = p;
        growth->block = p;
        growth->capacity = want;
    }
    (*array)[(*count)++] = value;
}

Growth boxgrowth;
Growth resultgrowth;

int ClampToInt(int64_t v)
{
    return v < INT_MIN ? INT_MIN : (v > INT_MAX ? INT_MAX : static_cast<int>(v));
}

// One grid offset in 0 .. size - 1 from the 48-bit generator.
int DrawOffset(int size)
{
    return static_cast<int>(size * drand48());
}

// The next box size: the division is made in single precision with the
// factor's single-precision value, truncated; a size that would not change
// falls by one. A factor that gives no number (NaN) ends the pass.
int NextBoxSize(int size)
{
    const float q = static_cast<float>(size) / options.boxfactor;
    int next;
    if (std::isnan(q))
        next = 0;
    else if (q >= 2147483648.0f)
        next = INT_MAX;
    else if (q <= -2147483648.0f)
        next = INT_MIN;
    else
        next = static_cast<int>(q);
    if (next == size)
        next = size - 1;
    return next;
}

// The counter's state between calls. boxsize keeps its value from one
// computation to the next: the first grid of a new computation is offset by
// a draw scaled with the previous run's last size (1 at start-up). Grid
// positions can run past the int range (a region edge far beyond the image
// plus a large box); they are kept in 64 bits and clamped where they meet int
// records.
struct Counter {
    int boxsize = 1;
    int64_t cycles = 0;  // steps since the last start
    int offsetx = 0;     // offset of the current grid, 0 .. boxsize - 1
    int offsety = 0;
    int noffset = 1;     // offset pass in progress, from 1
    int64_t left0 = 0;   // lower-left corner of the next box
    int64_t bottom0 = 0;

    // Fixed for the length of a grid: the clipping bounds and whether the
    // black bits describe the current image.
    Bounds bounds{};
    bool usebits = false;

    // Fixed for the length of a row of boxes: its clipped extent in y (the
    // row holds nothing when it is empty), so that a step only has to clip
    // in x.
    bool rowlive = false;
    int rowymin = 0, rowymax = 0;
};
Counter counter;

void StartRow(Counter &c)
{
    c.rowlive = false;
    if (c.bottom0 >= c.bounds.top)
        return;
    const int64_t ymin = std::max(c.bottom0, c.bounds.ylo);
    const int64_t ymax = std::min(c.bottom0 + c.boxsize, c.bounds.yhi);
    if (ymin >= ymax)
        return;
    c.rowlive = true;
    c.rowymin = static_cast<int>(ymin);
    c.rowymax = static_cast<int>(ymax);
}

void StartGrid(Counter &c)
{
    c.offsetx = DrawOffset(c.boxsize);
    c.offsety = DrawOffset(c.boxsize);
    c.left0 = static_cast<int64_t>(options.left) - c.offsetx;
    c.bottom0 = static_cast<int64_t>(options.bottom) - c.offsety;
    c.bounds = CurrentBounds();
    c.usebits = HaveBits();
}

// The box at (left0, bottom0) of the current row, with the row's y clipping
// already in hand.
inline bool RowBoxHasBlack(const Counter &c, int64_t x0, int64_t x1)
{
    if (!c.rowlive || x0 >= c.bounds.right)
        return false;
    const int xmin = static_cast<int>(x0 > c.bounds.xlo ? x0 : c.bounds.xlo);
    const int xmax = static_cast<int>(x1 < c.bounds.xhi ? x1 : c.bounds.xhi);
    if (xmin >= xmax)
        return false;
    if (!c.usebits)
        return PlainScan(xmin, xmax, c.rowymin, c.rowymax);
    return BlackBitsAny(xmin, xmax, c.rowymin, c.rowymax);
}

[[gnu::noinline]] int StartCounting(Counter &c)
{
    const time_t seed = time(nullptr);
    nboxlist = 0;
    if (options.left < 0)
        options.left = 0;
    if (options.right > options.width)
        options.right = options.width;
    if (options.bottom < 0)
        options.bottom = 0;
    if (options.top > options.height)
        options.top = options.height;
    srand48(static_cast<long>(seed));
    // Drawn with the size still left from the previous run.
    StartGrid(c);
    c.noffset = 1;
    c.boxsize = StartBoxSize();
    StartRow(c);
    nresults = 0;
    Append(&results, &nresults, &resultgrowth, RESULT{c.boxsize, 0, 0});
    c.cycles = 0;
    return 0;
}

[[gnu::noinline]] void AnnounceStart()
{
    std::fprintf(stderr, "Processing starting ");
    if (options.useregion)
        std::fprintf(stderr, "on region: (%d,%d) to (%d,%d)\n", options.left, options.bottom, options.right,
                     options.top);
    std::fprintf(stderr, "\n");
}

[[gnu::noinline]] void RecordBox(int64_t left, int64_t right, int64_t bottom, int64_t top)
{
    results[nresults - 1].count++;
    Append(&boxlist, &nboxlist, &boxgrowth,
           BOX{ClampToInt(left), ClampToInt(right), ClampToInt(top), ClampToInt(bottom), 1});
}

// After a grid: the next box size, or the start size of the next offset
// pass; false when the last pass is over (boxsize then keeps the size that
// ended it).
bool NextGrid(Counter &c)
{
    c.boxsize = NextBoxSize(c.boxsize);
    if (!(c.boxsize >= options.boxend && c.boxsize > 0)) {
        if (c.noffset >= options.noffsets)
            return false;
        c.boxsize = StartBoxSize();
        c.noffset++;
    }
    return true;
}

// The record for a size exists before its first box is examined; then the
// grid's offsets are drawn.
void StartNextGrid(Counter &c)
{
    Append(&results, &nresults, &resultgrowth, RESULT{c.boxsize, 0, 0});
    StartGrid(c);
    StartRow(c);
}

// The grid in progress is complete: report it, then move to the next size,
// the next offset pass, or the end.
[[gnu::noinline]] int EndGrid(Counter &c)
{
    nboxlist = 0;
    if (!options.quiet) {
        std::fprintf(stderr, "   Box size: %4d [%3d]", c.boxsize, nresults);
        if (options.noffsets > 1)
            std::fprintf(stderr, ", Offset %3d of %3d: (%3d,%3d)", c.noffset, options.noffsets, c.offsetx,
                         c.offsety);
        std::fprintf(stderr, ", Total count = %d\n", results[nresults - 1].count);
    }

    if (!NextGrid(c)) {
        if (!options.quiet) {
            std::fprintf(stderr, "Processing finished\n");
            std::fprintf(stderr, "Estimated fractal dimension: %6.3f\n", CalcSlope());
        }
        return 1;
    }
    // The finishing pass never gets here, so the graph lacks the last pass.
    if (const Frontend *f = ActiveFrontend())
        f->graphchanged();
    StartNextGrid(c);
    return 0;
}

} // namespace

int StartBoxSize(void)
{
    if (options.boxstart >= 0)
        return options.boxstart;
    const int64_t w = static_cast<int64_t>(options.right) - options.left;
    const int64_t h = static_cast<int64_t>(options.top) - options.bottom;
    return ClampToInt(std::min(w, h) / 5);
}

bool RegionTooSmall(void)
{
    return nresults > 0 && results[nresults - 1].size < 1;
}

int BlackInRectPlain(int x0, int x1, int y0, int y1)
{
    int xmin, xmax, ymin, ymax;
    if (!Clip(CurrentBounds(), x0, x1, y0, y1, &xmin, &xmax, &ymin, &ymax))
        return 0;
    return PlainScan(xmin, xmax, ymin, ymax) ? 1 : 0;
}

int BlackInRect(int x0, int x1, int y0, int y1)
{
    int xmin, xmax, ymin, ymax;
    if (!Clip(CurrentBounds(), x0, x1, y0, y1, &xmin, &xmax, &ymin, &ymax))
        return 0;
    if (HaveBits())
        return BlackBitsAny(xmin, xmax, ymin, ymax) ? 1 : 0;
    return PlainScan(xmin, xmax, ymin, ymax) ? 1 : 0;
}

unsigned CountingThreads(void)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof set, &set) == 0 && CPU_COUNT(&set) > 0)
        return static_cast<unsigned>(CPU_COUNT(&set));
    const unsigned n = std::thread::hardware_concurrency();
    return n > 0 ? n : 1;
}

void CountAllGrids(unsigned threads)
{
    Counter &c = counter;
    // Only a computation that has not examined a box yet can be counted a
    // grid at a time; pixel scans need no bits.
    if (c.cycles != 0 || !HaveBits()) {
        while (!BoxCount(1)) {
        }
        return;
    }
    nboxlist = 0;
    const Bounds b = c.bounds;
    const int xlo = static_cast<int>(b.xlo), xhi = static_cast<int>(b.xhi);
    const int ylo = static_cast<int>(b.ylo), yhi = static_cast<int>(b.yhi);
    struct Grid {
        int record, size;
        int64_t x, y;
    };
    std::vector<Grid> grids;
    bool more = true;
    while (more) {
        // The offsets of a batch of grids, drawn in the order the stepping
        // counter draws them, each grid's record appended as it would be.
        grids.clear();
        while (more && grids.size() < 4096) {
            grids.push_back(Grid{nresults - 1, c.boxsize, static_cast<int64_t>(options.left) - c.offsetx,
                                 static_cast<int64_t>(options.bottom) - c.offsety});
            more = NextGrid(c);
            if (more)
                StartNextGrid(c);
        }
        // Then the grids themselves, on every thread, each count into its
        // own record.
        std::atomic<size_t> next{0};
        auto work = [&] {
            std::vector<uint64_t> scratch(blackbits.words + 1);
            for (size_t i; (i = next++) < grids.size();) {
                const Grid &g = grids[i];
                results[g.record].count =
                    static_cast<int>(CountGridBoxes(g.size, g.x, g.y, xlo, xhi, ylo, yhi, scratch.data()));
            }
        };
        std::vector<std::thread> pool;
        for (unsigned t = 1; t < threads && t < grids.size(); t++) {
            try {
                pool.emplace_back(work);
            } catch (const std::system_error &) {
                break; // fewer threads, same counts
            }
        }
        work();
        for (std::thread &t : pool)
            t.join();
    }
}

// One call examines one box; the rare events (start, end of a grid) are
// kept out of line so that the step itself stays small.
int BoxCount(int mode)
{
    Counter &c = counter;
    if (mode == 0)
        return StartCounting(c);
    if (mode == 1 && c.cycles == 0 && !options.quiet)
        AnnounceStart();
    c.cycles++;

    const int64_t right0 = c.left0 + c.boxsize;
    if (RowBoxHasBlack(c, c.left0, right0))
        RecordBox(c.left0, right0, c.bottom0, c.bottom0 + c.boxsize);

    // Along the row, then up to the next row.
    c.left0 = right0;
    if (c.left0 >= options.right) {
        c.left0 = static_cast<int64_t>(options.left) - c.offsetx;
        c.bottom0 += c.boxsize;
        if (c.bottom0 >= options.top)
            return EndGrid(c);
        StartRow(c);
    }
    return 0;
}
