// The box counter: size sequences, every grid against a brute-force count,
// the grid-at-a-time quiet counter on 1, 2 and 7 threads against the box
// steps, messages, the box list, odd regions, and BlackInRect against the
// pixel-by-pixel scan. The clock is fixed (fixedclock.h), so the offsets of
// two runs with the same settings repeat.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "blackbits.h"
#include "boxcount.h"
#include "counting_fixture.h"
#include "fixedclock.h"
#include "headless.h"

using counting::Mask;

namespace {

// Runs a whole computation one box at a time; returns its messages.
std::string RunAll()
{
    testing::internal::CaptureStderr();
    BoxCount(0);
    while (!BoxCount(1)) {
    }
    return testing::internal::GetCapturedStderr();
}

std::vector<int> Column(int RESULT::*field)
{
    std::vector<int> v;
    for (int i = 0; i < nresults; i++)
        v.push_back(results[i].*field);
    return v;
}

} // namespace

TEST(BoxCount, SizeSequences)
{
    struct Case {
        int start, end, noffsets;
        float factor;
        std::vector<int> sizes;
    };
    const Case cases[] = {
        {100, 2, 2, 1.5f, {100, 66, 44, 29, 19, 12, 8, 5, 3, 2, 100, 66, 44, 29, 19, 12, 8, 5, 3, 2}},
        // 1.2 held as a float is 1.20000005: 66 / 1.2f truncates to 54 and
        // 30 to 24, where double arithmetic would give 55 and 25.
        {80, 6, 1, 1.2f, {80, 66, 54, 45, 37, 30, 24, 20, 16, 13, 10, 8, 6}},
        // A factor that is not a number ends every pass after its first size.
        {-1, 6, 3, NAN, {20, 20, 20}},
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        counting::LoadMask(counting::RandomMask(100, 100, 0.05, 1));
        options.boxstart = c.start;
        options.boxend = c.end;
        options.noffsets = c.noffsets;
        options.boxfactor = c.factor;
        RunAll();
        EXPECT_EQ(Column(&RESULT::size), c.sizes) << "start " << c.start;
    }
}

TEST(BoxCount, EveryGridMatchesBruteForceOneBoxOrOneGridAtATime)
{
    struct Case {
        int w, h;
        double density;
        int useregion, left, right, bottom, top, boxstart, boxend;
    };
    const Case cases[] = {
        {97, 61, 0.02, 0, 0, 100000, 0, 100000, -1, 2},
        {120, 90, 0.3, 0, 0, 100000, 0, 100000, -1, 1},
        {150, 130, 0.01, 1, 13, 141, 7, 99, 40, 2},
        {80, 80, 0.002, 1, -20, 500, 30, 200, -1, 2}, // clamped at the image edges
        {300, 200, 0.0005, 1, 0, 100000, 50, 60, 7, 2}, // a band ten rows high
        // A filled 1280 x 1280 square, boxes of 2^16 pixels and more.
        {1300, 1290, 1.0, 1, 5, 1285, 3, 1283, 320, 250},
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        const Mask m = counting::RandomMask(c.w, c.h, c.density, static_cast<uint32_t>(c.w * c.h));
        options.useregion = c.useregion;
        options.left = c.left, options.right = c.right, options.bottom = c.bottom, options.top = c.top;
        counting::LoadMask(m);
        options.quiet = 0;
        options.noffsets = 3;
        options.boxstart = c.boxstart;
        options.boxend = c.boxend;
        testclock::now += 1000; // new offsets for every case
        RunAll(); // so that every run below starts from the same last size
        const auto lines = counting::ParseGridLines(RunAll());
        const std::vector<int> sizes = Column(&RESULT::size), counts = Column(&RESULT::count);
        ASSERT_EQ(lines.size(), counts.size());
        for (size_t i = 0; i < lines.size(); i++) {
            const auto &g = lines[i];
            EXPECT_EQ(g.count, counts[i]);
            EXPECT_TRUE(g.offx >= 0 && g.offx < g.size && g.offy >= 0 && g.offy < g.size);
            EXPECT_EQ(g.count, counting::BruteForceCount(m, options.left, options.right, options.bottom,
                                                         options.top, g.size, g.offx, g.offy))
                << "grid " << i << " size " << g.size << " offset " << g.offx << "," << g.offy;
        }
        // The quiet counter draws the same offsets and finds the same counts,
        // whatever the number of threads; so do the steps without the bits.
        options.quiet = 1;
        for (unsigned threads : {1u, 2u, 7u}) {
            BoxCount(0);
            CountAllGrids(threads);
            EXPECT_EQ(Column(&RESULT::size), sizes);
            EXPECT_EQ(Column(&RESULT::count), counts) << threads << " threads, " << c.w << "x" << c.h;
        }
        FreeBlackBits();
        RunAll();
        EXPECT_EQ(Column(&RESULT::count), counts) << "pixel-by-pixel scan, " << c.w << "x" << c.h;
    }
}

TEST(BoxCount, MessagesAndGraphRefreshes)
{
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(50, 50, 0.1, 4));
    options.quiet = 0;
    options.noffsets = 1;
    headless::graphupdates = 0;
    std::string err = RunAll();
    EXPECT_EQ(err.rfind("Processing starting \n   Box size:   10 [  1], Total count = ", 0), 0u) << err;
    EXPECT_NE(err.find("\nProcessing finished\nEstimated fractal dimension: "), std::string::npos);
    EXPECT_EQ(headless::graphupdates, nresults - 1) << "after every pass but the last";
    // A region is announced with its edges clamped to the image, then an
    // empty line.
    options.useregion = 1;
    options.left = 5, options.right = 900, options.bottom = 2, options.top = 40;
    err = RunAll();
    EXPECT_EQ(err.rfind("Processing starting on region: (5,2) to (50,40)\n\n", 0), 0u) << err;
    // Quiet mode says nothing and refreshes nothing.
    options.quiet = 1;
    headless::graphupdates = 0;
    EXPECT_EQ(RunAll(), "");
    EXPECT_EQ(headless::graphupdates, 0);
}

TEST(BoxCount, BoxListHoldsTheOccupiedBoxesOfTheGridInProgress)
{
    SetDefaultOptions();
    Mask m(40, 40);
    m.Set(3, 3);
    m.Set(30, 35);
    counting::LoadMask(m);
    options.boxstart = 10;
    options.noffsets = 1;
    BoxCount(0);
    int grids = 0;
    for (int before = nresults; !BoxCount(1); before = nresults) {
        if (nresults != before) {
            grids++;
            EXPECT_EQ(nboxlist, 0) << "emptied when a grid ends";
        }
        for (int i = 0; i < nboxlist; i++) {
            const BOX &b = boxlist[i];
            const int s = results[nresults - 1].size;
            EXPECT_EQ(std::vector<int>({b.filled, b.right - b.left, b.top - b.bottom}), std::vector<int>({1, s, s}));
            EXPECT_TRUE((b.left <= 3 && 3 < b.right && b.bottom <= 3 && 3 < b.top) ||
                        (b.left <= 30 && 30 < b.right && b.bottom <= 35 && 35 < b.top));
        }
    }
    EXPECT_GT(grids, 0);
    EXPECT_EQ(nboxlist, 0);
}

TEST(BoxCount, EmptyMisplacedAndTinyRegions)
{
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(123, 77, 0.5, 7));
    BoxCount(0);
    EXPECT_EQ(Column(&RESULT::size), std::vector<int>{77 / 5}) << "a fifth of the smaller side";
    options.useregion = 1;
    options.boxstart = 10;
    options.noffsets = 2;
    for (auto [l, r, b, t] : {std::array<int, 4>{80, 20, 0, 100}, {300, 400, 0, 100}, {0, 100, 150, 400}}) {
        options.left = l, options.right = r, options.bottom = b, options.top = t;
        RunAll();
        EXPECT_EQ(Column(&RESULT::count), std::vector<int>(nresults, 0));
        BoxCount(0);
        CountAllGrids(2);
        EXPECT_EQ(Column(&RESULT::count), std::vector<int>(nresults, 0));
    }
    options.boxstart = -1;
    options.left = 10, options.right = 14, options.bottom = 0, options.top = 50;
    BoxCount(0);
    EXPECT_EQ(results[0].size, 0) << "a region under 5 pixels gives size 0";
}

TEST(BlackInRect, BitsAndPixelScanAgreeOnRandomRectangles)
{
    std::mt19937 gen(99);
    for (int round = 0; round < 30; round++) {
        SetDefaultOptions();
        const int w = 1 + static_cast<int>(gen() % 400), h = 1 + static_cast<int>(gen() % 400);
        counting::LoadMask(counting::RandomMask(w, h, std::pow(10.0, -static_cast<double>(gen() % 6)), gen()));
        // Regions inside, across and outside the image, before and after
        // the counter clamps them.
        options.left = static_cast<int>(gen() % (w + 20)) - 10;
        options.right = options.left + static_cast<int>(gen() % (w + 40));
        options.bottom = static_cast<int>(gen() % (h + 20)) - 10;
        options.top = options.bottom + static_cast<int>(gen() % (h + 40));
        if (round % 2)
            BoxCount(0);
        for (int i = 0; i < 2000; i++) {
            const int x0 = static_cast<int>(gen() % (w + 60)) - 30, y0 = static_cast<int>(gen() % (h + 60)) - 30;
            const int span = i % 4 ? 80 : 500; // some of 2^16 pixels and more
            const int x1 = x0 + static_cast<int>(gen() % span) - 5, y1 = y0 + static_cast<int>(gen() % span) - 5;
            ASSERT_EQ(BlackInRect(x0, x1, y0, y1), BlackInRectPlain(x0, x1, y0, y1))
                << w << "x" << h << " rect " << x0 << ".." << x1 << " x " << y0 << ".." << y1;
        }
    }
}
