// The box counter: size sequences, counts against a brute-force count,
// messages, region clipping, and the black table against the plain scan.
#include <gtest/gtest.h>

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

class BoxCountTest : public ::testing::Test {
protected:
    void SetUp() override { SetDefaultOptions(); }

    // Runs a whole computation on the current image; returns what it wrote
    // to standard error.
    std::string RunAll()
    {
        testing::internal::CaptureStderr();
        BoxCount(0);
        while (!BoxCount(1)) {
        }
        return testing::internal::GetCapturedStderr();
    }

    std::vector<int> Sizes() const
    {
        std::vector<int> s;
        for (int i = 0; i < nresults; i++)
            s.push_back(results[i].size);
        return s;
    }
};

} // namespace

TEST_F(BoxCountTest, SizeSequenceRepeatsInEveryOffsetPass)
{
    counting::LoadMask(counting::RandomMask(300, 300, 0.05, 1));
    options.boxstart = 100;
    options.boxfactor = 1.5f;
    options.boxend = 2;
    options.noffsets = 3;
    RunAll();
    const std::vector<int> pass{100, 66, 44, 29, 19, 12, 8, 5, 3, 2};
    std::vector<int> expected;
    for (int i = 0; i < 3; i++)
        expected.insert(expected.end(), pass.begin(), pass.end());
    EXPECT_EQ(Sizes(), expected);
}

TEST_F(BoxCountTest, SizesAreDividedInSinglePrecision)
{
    // 1.2 held as a float is 1.20000005: 66 / 1.2f is 54.99999 and truncates
    // to 54, and 30 to 24, where double arithmetic would give 55 and 25.
    counting::LoadMask(counting::RandomMask(200, 200, 0.05, 2));
    options.boxstart = 80;
    options.noffsets = 1;
    RunAll();
    EXPECT_EQ(Sizes(), (std::vector<int>{80, 66, 54, 45, 37, 30, 24, 20, 16, 13, 10, 8, 6}));
}

TEST_F(BoxCountTest, CountsMatchABruteForceCountOfEveryGrid)
{
    struct Case {
        int w, h;
        double density;
        bool region;
        int left, right, bottom, top;
    };
    const Case cases[] = {
        {97, 61, 0.02, false, 0, 100000, 0, 100000},
        {120, 90, 0.3, false, 0, 100000, 0, 100000},
        {150, 130, 0.01, true, 13, 141, 7, 99},
        {80, 80, 0.002, true, -20, 500, 30, 200}, // clamped at the image edges
    };
    for (const auto &c : cases) {
        SetDefaultOptions();
        const Mask m = counting::RandomMask(c.w, c.h, c.density, static_cast<uint32_t>(c.w * c.h));
        options.useregion = c.region;
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
            EXPECT_GE(g.offx, 0);
            EXPECT_LT(g.offx, g.size);
            EXPECT_EQ(g.count, counting::BruteForceCount(m, options.left, options.right, options.bottom,
                                                         options.top, g.size, g.offx, g.offy))
                << "grid " << i << " size " << g.size << " offset " << g.offx << "," << g.offy;
        }
    }
}

TEST_F(BoxCountTest, MessagesAroundACount)
{
    counting::LoadMask(counting::RandomMask(50, 50, 0.1, 4));
    options.quiet = 0;
    options.noffsets = 1;
    std::string err = RunAll();
    EXPECT_EQ(err.rfind("Processing starting \n   Box size:   10 [  1], Total count = ", 0), 0u) << err;
    EXPECT_NE(err.find("\nProcessing finished\nEstimated fractal dimension: "), std::string::npos);

    // A command-line region is announced, followed by an empty line, with
    // the edges as clamped to the image.
    options.useregion = 1;
    options.left = 5;
    options.right = 900;
    options.bottom = 2;
    options.top = 40;
    err = RunAll();
    EXPECT_EQ(err.rfind("Processing starting on region: (5,2) to (50,40)\n\n", 0), 0u) << err;
    EXPECT_EQ(options.right, 50);

    // Quiet mode says nothing at all.
    options.quiet = 1;
    EXPECT_EQ(RunAll(), "");
}

TEST_F(BoxCountTest, GraphIsRefreshedAfterEveryPassButTheLast)
{
    counting::LoadMask(counting::RandomMask(64, 64, 0.1, 5));
    options.quiet = 0;
    options.noffsets = 2;
    headless::graphupdates = 0;
    RunAll();
    EXPECT_EQ(headless::graphupdates, nresults - 1);
    options.quiet = 1;
    headless::graphupdates = 0;
    RunAll();
    EXPECT_EQ(headless::graphupdates, 0);
}

TEST_F(BoxCountTest, BoxListHoldsTheOccupiedBoxesOfTheGridInProgress)
{
    Mask m(40, 40);
    m.Set(3, 3);
    m.Set(30, 35);
    counting::LoadMask(m);
    options.boxstart = 10;
    options.noffsets = 1;
    BoxCount(0);
    int grids = 0;
    for (int steps = 0; steps < 100000; steps++) {
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
            const bool holds = (b.left <= 3 && 3 < b.right && b.bottom <= 3 && 3 < b.top) ||
                               (b.left <= 30 && 30 < b.right && b.bottom <= 35 && 35 < b.top);
            EXPECT_TRUE(holds);
        }
    }
    EXPECT_GT(grids, 0);
    EXPECT_EQ(nboxlist, 0);
}

TEST_F(BoxCountTest, FactorThatIsNotANumberEndsEveryPassAfterItsFirstSize)
{
    counting::LoadMask(counting::RandomMask(100, 100, 0.1, 6));
    options.boxfactor = NAN;
    options.noffsets = 3;
    RunAll();
    EXPECT_EQ(Sizes(), (std::vector<int>{20, 20, 20}));
}

TEST_F(BoxCountTest, EmptyOrMisplacedRegionsCountNothingAndEnd)
{
    counting::LoadMask(counting::RandomMask(100, 100, 0.5, 7));
    options.useregion = 1;
    options.boxstart = 10;
    options.noffsets = 2;
    // Left beyond right, and a region wholly outside the image.
    for (auto [l, r, b, t] : {std::array<int, 4>{80, 20, 0, 100}, {300, 400, 0, 100}, {0, 100, 150, 400}}) {
        options.left = l;
        options.right = r;
        options.bottom = b;
        options.top = t;
        RunAll();
        for (int i = 0; i < nresults; i++)
            EXPECT_EQ(results[i].count, 0);
    }
}

TEST_F(BoxCountTest, StartSizeIsAFifthOfTheSmallerSide)
{
    counting::LoadMask(counting::RandomMask(123, 77, 0.1, 8));
    BoxCount(0);
    EXPECT_EQ(results[0].size, 77 / 5);
    EXPECT_EQ(nresults, 1);
    options.useregion = 1;
    options.left = 10;
    options.right = 14;
    BoxCount(0);
    EXPECT_EQ(results[0].size, 0) << "a region under 5 pixels gives size 0";
}

TEST(BlackInRect, TableAndPlainScanAgreeOnRandomRectangles)
{
    std::mt19937 gen(99);
    for (int round = 0; round < 30; round++) {
        SetDefaultOptions();
        const int w = 1 + static_cast<int>(gen() % 300), h = 1 + static_cast<int>(gen() % 300);
        const double density = std::pow(10.0, -static_cast<double>(gen() % 5));
        counting::LoadMask(counting::RandomMask(w, h, density, gen()));
        // Regions inside, across and outside the image, before and after
        // the counter clamps them.
        options.left = static_cast<int>(gen() % (w + 20)) - 10;
        options.right = options.left + static_cast<int>(gen() % (w + 40));
        options.bottom = static_cast<int>(gen() % (h + 20)) - 10;
        options.top = options.bottom + static_cast<int>(gen() % (h + 40));
        if (round % 2)
            BoxCount(0);
        for (int i = 0; i < 2000; i++) {
            const int x0 = static_cast<int>(gen() % (w + 60)) - 30;
            const int y0 = static_cast<int>(gen() % (h + 60)) - 30;
            const int x1 = x0 + static_cast<int>(gen() % 80) - 5;
            const int y1 = y0 + static_cast<int>(gen() % 80) - 5;
            ASSERT_EQ(BlackInRect(x0, x1, y0, y1), BlackInRectPlain(x0, x1, y0, y1))
                << w << "x" << h << " rect " << x0 << ".." << x1 << " x " << y0 << ".." << y1;
        }
    }
}

TEST(BlackInRect, LargeRectanglesAndSinglePixels)
{
    // Rectangles of 2^16 pixels and more are read in strips; a lone black
    // pixel anywhere must still be found, and its absence reported.
    SetDefaultOptions();
    Mask m(700, 400);
    m.Set(699, 399);
    counting::LoadMask(m);
    BoxCount(0);
    EXPECT_EQ(BlackInRect(0, 700, 0, 400), 1);
    EXPECT_EQ(BlackInRect(0, 699, 0, 400), 0);
    EXPECT_EQ(BlackInRect(0, 700, 0, 399), 0);
    EXPECT_EQ(BlackInRect(699, 700, 399, 400), 1);
    EXPECT_EQ(BlackInRect(699, 700, 0, 400), 1);
    EXPECT_EQ(BlackInRect(0, 700, 399, 400), 1);
    EXPECT_EQ(BlackInRect(-50, 5000, -70, 9000), 1);
    // 256 x 256 fully black: exactly 2^16 black pixels must not read as 0.
    Mask full(300, 300);
    for (int y = 0; y < 256; y++)
        for (int x = 0; x < 256; x++)
            full.Set(x, y);
    counting::LoadMask(full);
    BoxCount(0);
    EXPECT_EQ(BlackInRect(0, 256, 0, 256), 1);
    EXPECT_EQ(BlackInRect(256, 300, 0, 300), 0);
}

TEST(BoxCountTable, SameResultsWithAndWithoutTheBlackTable)
{
    // Two full computations started in the same clock second, each after a
    // computation with the same settings (the first grid's offset depends on
    // the size the previous run ended with), draw the same offsets; the one
    // without the table scans every box pixel by pixel.
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(257, 193, 0.01, 11));
    options.noffsets = 4;
    std::vector<int> fast, plain;
    for (int attempt = 0; attempt < 5; attempt++) {
        BuildBlackTable(bwimage, options.width, options.height);
        BoxCount(0);
        while (!BoxCount(1)) {
        }
        const time_t t0 = time(nullptr);
        BoxCount(0);
        while (!BoxCount(1)) {
        }
        fast.clear();
        for (int i = 0; i < nresults; i++)
            fast.push_back(results[i].count);
        FreeBlackTable();
        BoxCount(0);
        const time_t t1 = time(nullptr);
        while (!BoxCount(1)) {
        }
        plain.clear();
        for (int i = 0; i < nresults; i++)
            plain.push_back(results[i].count);
        if (t0 == t1)
            break;
    }
    EXPECT_EQ(fast, plain);
}
