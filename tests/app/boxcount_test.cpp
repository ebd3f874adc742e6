// The box counter: size sequences, counts against a brute-force count,
// messages, region clipping, and the black table against the plain scan.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <ctime>
#include <string>
#include <vector>

#include "blacktable.h"
#include "boxcount.h"
#include "counting_fixture.h"
#include "headless.h"

using counting::Mask;

namespace {

// Runs a whole computation on the current image; returns its messages.
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

TEST(BoxCount, CountsMatchABruteForceCountOfEveryGrid)
{
    struct Case {
        int w, h;
        double density;
        int useregion, left, right, bottom, top;
    };
    const Case cases[] = {
        {97, 61, 0.02, 0, 0, 100000, 0, 100000},
        {120, 90, 0.3, 0, 0, 100000, 0, 100000},
        {150, 130, 0.01, 1, 13, 141, 7, 99},
        {80, 80, 0.002, 1, -20, 500, 30, 200}, // clamped at the image edges
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        const Mask m = counting::RandomMask(c.w, c.h, c.density, static_cast<uint32_t>(c.w * c.h));
        options.useregion = c.useregion;
        options.left = c.left;
        options.right = c.right;
        options.bottom = c.bottom;
        options.top = c.top;
        counting::LoadMask(m);
        options.quiet = 0;
        options.noffsets = 3;
        options.boxend = 2;
        const auto lines = counting::ParseGridLines(RunAll());
        ASSERT_EQ(static_cast<int>(lines.size()), nresults);
        for (size_t i = 0; i < lines.size(); i++) {
            const auto &g = lines[i];
            EXPECT_EQ(g.index, static_cast<int>(i) + 1);
            EXPECT_EQ(g.count, results[i].count);
            EXPECT_TRUE(g.offx >= 0 && g.offx < g.size && g.offy >= 0 && g.offy < g.size);
            EXPECT_EQ(g.count, counting::BruteForceCount(m, options.left, options.right, options.bottom, options.top,
                                                         g.size, g.offx, g.offy))
                << "grid " << i << " size " << g.size << " offset " << g.offx << "," << g.offy;
        }
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
    options.left = 5;
    options.right = 900;
    options.bottom = 2;
    options.top = 40;
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
    while (true) {
        const int before = nresults;
        if (BoxCount(1))
            break;
        if (nresults != before) {
            grids++;
            EXPECT_EQ(nboxlist, 0) << "emptied when a grid ends";
        }
        for (int i = 0; i < nboxlist; i++) {
            const BOX &b = boxlist[i];
            EXPECT_EQ(b.filled, 1);
            EXPECT_EQ(b.right - b.left, results[nresults - 1].size);
            EXPECT_EQ(b.top - b.bottom, results[nresults - 1].size);
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
    }
    options.boxstart = -1;
    options.left = 10, options.right = 14, options.bottom = 0, options.top = 50;
    BoxCount(0);
    EXPECT_EQ(results[0].size, 0) << "a region under 5 pixels gives size 0";
}

TEST(BlackInRect, TableAndPlainScanAgreeOnRandomRectangles)
{
    std::mt19937 gen(99);
    for (int round = 0; round < 30; round++) {
        SetDefaultOptions();
        const int w = 1 + static_cast<int>(gen() % 300), h = 1 + static_cast<int>(gen() % 300);
        counting::LoadMask(counting::RandomMask(w, h, std::pow(10.0, -static_cast<double>(gen() % 5)), gen()));
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
            const int x1 = x0 + static_cast<int>(gen() % 80) - 5, y1 = y0 + static_cast<int>(gen() % 80) - 5;
            ASSERT_EQ(BlackInRect(x0, x1, y0, y1), BlackInRectPlain(x0, x1, y0, y1))
                << w << "x" << h << " rect " << x0 << ".." << x1 << " x " << y0 << ".." << y1;
        }
    }
    // Rectangles of 2^16 pixels and more are read in strips: a lone black
    // pixel is found, and exactly 2^16 black pixels do not read as none.
    SetDefaultOptions();
    Mask m(700, 400);
    m.Set(699, 399);
    for (int y = 0; y < 256; y++)
        for (int x = 0; x < 256; x++)
            m.Set(x, y);
    counting::LoadMask(m);
    BoxCount(0);
    const int rects[][5] = {{300, 700, 256, 400, 1}, {300, 699, 0, 400, 0}, {300, 700, 0, 399, 0},
                            {0, 256, 0, 256, 1},     {256, 700, 0, 399, 0}, {-50, 5000, -70, 9000, 1}};
    for (const auto &r : rects)
        EXPECT_EQ(BlackInRect(r[0], r[1], r[2], r[3]), r[4]) << r[0] << ".." << r[1] << " x " << r[2] << ".." << r[3];
}

TEST(BoxCount, SameResultsWithAndWithoutTheBlackTable)
{
    // Two computations started in the same clock second, each after one with
    // the same settings (the first grid's offset depends on the size the
    // previous run ended with), draw the same offsets; the one without the
    // table scans every box pixel by pixel.
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(257, 193, 0.01, 11));
    options.noffsets = 4;
    std::vector<int> fast, plain;
    for (int attempt = 0; attempt < 5; attempt++) {
        BuildBlackTable(bwimage, options.width, options.height);
        RunAll();
        const time_t t0 = time(nullptr);
        RunAll();
        fast = Column(&RESULT::count);
        FreeBlackTable();
        RunAll();
        plain = Column(&RESULT::count);
        if (time(nullptr) == t0)
            break;
    }
    EXPECT_EQ(fast, plain);
}
