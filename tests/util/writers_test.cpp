// DXF, Radiance and matrix writers: golden text for every format, and the DXF
// read back by a real DXF reader (ezdxf).
#include "writers.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "geometry_util.h"
#include "testutil.h"

namespace {

using geomtest::Pt;

// Everything a writer puts on a stream, captured in memory.
std::string Capture(const std::function<void(FILE *)> &write)
{
    char *buf = nullptr;
    std::size_t len = 0;
    FILE *f = open_memstream(&buf, &len);
    if (f == nullptr)
        return "open_memstream failed";
    write(f);
    std::fclose(f);
    std::string out(buf, len);
    std::free(buf);
    return out;
}

// Compares text byte for byte and names the first differing offset.
void ExpectSameBytes(const std::string &got, const std::string &want)
{
    std::size_t i = 0;
    while (i < got.size() && i < want.size() && got[i] == want[i])
        i++;
    EXPECT_TRUE(got == want) << "first difference at byte " << i << " of " << want.size()
                             << "\n--- got ---\n" << got << "\n--- expected ---\n" << want;
}

TEST(DXF, HeaderGoldenBytes)
{
    const std::string want =
        "999\nDXF from talvor test\n" // comment group with the caller's text
        // HEADER section: version, insertion base, extents.
        "  0\nSECTION\n"
        "  2\nHEADER\n"
        "  9\n$ACADVER\n"
        "  1\nAC1006\n"
        "  9\n$INSBASE\n"
        "  10\n0.0\n"
        "  20\n0.0\n"
        "  30\n0.0\n"
        "  9\n$EXTMIN\n"
        "  10\n0.0\n"
        "  20\n0.0\n"
        "  9\n$EXTMAX\n"
        "  10\n1000.0\n"
        "  20\n1000.0\n"
        "  0\nENDSEC\n"
        // TABLES: one line type, named with the historical typo.
        "  0\nSECTION\n"
        "  2\nTABLES\n"
        "  0\nTABLE\n"
        "  2\nLTYPE\n"
        "  70\n1\n"
        "  0\nLTYPE\n"
        "  2\niONTINUOUS\n"
        "  70\n64\n"
        "  3\nSolid line\n"
        "  72\n65\n"
        "  73\n0\n"
        "  40\n0.000000\n"
        "  0\nENDTAB\n"
        // Two layers, 1 and 2, colour 7, line type CONTINUOUS.
        "  0\nTABLE\n"
        "  2\nLAYER\n"
        "  70\n6\n"
        "  0\nLAYER\n"
        "  2\n1\n"
        "  70\n64\n"
        "  62\n7\n"
        "  6\nCONTINUOUS\n"
        "  0\nLAYER\n"
        "  2\n2\n"
        "  70\n64\n"
        "  62\n7\n"
        "  6\nCONTINUOUS\n"
        "  0\nENDTAB\n"
        // Empty style table, end of TABLES.
        "  0\nTABLE\n"
        "  2\nSTYLE\n"
        "  70\n0\n"
        "  0\nENDTAB\n"
        "  0\nENDSEC\n"
        // Empty BLOCKS section, then ENTITIES opened for the caller.
        "  0\nSECTION\n"
        "  2\nBLOCKS\n"
        "  0\nENDSEC\n"
        "  0\nSECTION\n"
        "  2\nENTITIES\n";
    ExpectSameBytes(Capture([](FILE *f) { WriteDXFHeader(f, "talvor test"); }), want);
}

TEST(DXF, EntitiesAndFooterGoldenText)
{
    const XYZ p[5] = {Pt(0, 0, 0), Pt(2.385, -1, 0.5), Pt(1e-7, 1234567, -3), Pt(4, 5, 6), Pt(7, 8, 9)};
    // A line: codes 10/20/30 then 11/21/31, "%3d" right-aligned, "%g" values.
    ExpectSameBytes(Capture([&](FILE *f) { WriteDXFFacet(f, p, 2); }),
                    "  0\nLINE\n  8\nDefault\n"
                    " 10\n0\n 20\n0\n 30\n0\n"
                    " 11\n2.385\n 21\n-1\n 31\n0.5\n");
    // A triangle: twelve groups, the third point repeated as 13/23/33.
    ExpectSameBytes(Capture([&](FILE *f) { WriteDXFFacet(f, p, 3); }),
                    "  0\n3DFACE\n  8\nDefault\n"
                    " 10\n0\n 20\n0\n 30\n0\n"
                    " 11\n2.385\n 21\n-1\n 31\n0.5\n"
                    " 12\n1e-07\n 22\n1.23457e+06\n 32\n-3\n"
                    " 13\n1e-07\n 23\n1.23457e+06\n 33\n-3\n");
    ExpectSameBytes(Capture([&](FILE *f) { WriteDXFFacet(f, p + 1, 4); }),
                    "  0\n3DFACE\n  8\nDefault\n"
                    " 10\n2.385\n 20\n-1\n 30\n0.5\n"
                    " 11\n1e-07\n 21\n1.23457e+06\n 31\n-3\n"
                    " 12\n4\n 22\n5\n 32\n6\n"
                    " 13\n7\n 23\n8\n 33\n9\n");
    for (int n : {-1, 0, 1, 5})
        EXPECT_EQ(Capture([&](FILE *f) { WriteDXFFacet(f, p, n); }), "") << "n = " << n;
    ExpectSameBytes(Capture([](FILE *f) { WriteDXFFooter(f); }), "  0\nENDSEC\n  0\nEOF\n");
}

TEST(DXF, DrawingReadsBackWithEzdxf)
{
    // ezdxf (python3-ezdxf) upgrades this old-version drawing on loading and
    // lists each entity with its layer and corners.
    const testutil::RunResult probe = testutil::Shell("/usr/bin/python3 -c 'import ezdxf' 2>&1");
    ASSERT_EQ(probe.status, 0) << "python3 with ezdxf is needed: run scripts/install-deps\n" << probe.out;

    testutil::TempDir dir;
    const std::string path = dir.file("facets.dxf");
    FILE *f = std::fopen(path.c_str(), "w");
    ASSERT_NE(f, nullptr);
    const XYZ line[2] = {Pt(2.385, -0.125, 7), Pt(-40.5, 0.001, 1000)};
    const XYZ tri[3] = {Pt(0, 0, 0), Pt(10, 0, 0.25), Pt(3.5, 8.75, -2)};
    const XYZ quad[4] = {Pt(1, 2, 3), Pt(4, 5, 6), Pt(7, 8.5, 9), Pt(-1, -2, -3)};
    WriteDXFHeader(f, "writers_test");
    WriteDXFFacet(f, line, 2);
    WriteDXFFacet(f, tri, 3);
    WriteDXFFacet(f, quad, 4);
    WriteDXFFooter(f);
    ASSERT_EQ(std::fclose(f), 0);

    const std::string script =
        "import ezdxf, sys\n"
        "doc = ezdxf.readfile(sys.argv[1])\n"
        "for e in doc.modelspace():\n"
        "    if e.dxftype() == 'LINE':\n"
        "        pts = [e.dxf.start, e.dxf.end]\n"
        "    else:\n"
        "        pts = [e.dxf.get('vtx%d' % i) for i in range(4)]\n"
        "    print(e.dxftype(), e.dxf.layer, ' '.join('%r %r %r' % (p.x, p.y, p.z) for p in pts))\n"
        "print('layers', ' '.join(sorted(l.dxf.name for l in doc.layers if l.dxf.name in ('1', '2'))))\n";
    const std::string script_path = dir.file("read.py");
    testutil::WriteText(script_path, script);
    const testutil::RunResult r = testutil::Run({"/usr/bin/python3", script_path, path});
    ASSERT_EQ(r.status, 0) << r.err;

    std::istringstream in(r.out);
    std::string type, layer;
    // Each entity: its type, its layer, and every corner's coordinates.
    struct Expected {
        const char *type;
        std::vector<XYZ> corners;
    } expected[] = {
        {"LINE", {line[0], line[1]}},
        {"3DFACE", {tri[0], tri[1], tri[2], tri[2]}},
        {"3DFACE", {quad[0], quad[1], quad[2], quad[3]}},
    };
    for (const Expected &e : expected) {
        ASSERT_TRUE(in >> type >> layer) << r.out;
        EXPECT_EQ(type, e.type);
        EXPECT_EQ(layer, "Default");
        for (const XYZ &c : e.corners) {
            double x, y, z;
            ASSERT_TRUE(in >> x >> y >> z) << r.out;
            EXPECT_EQ(x, c.x);
            EXPECT_EQ(y, c.y);
            EXPECT_EQ(z, c.z);
        }
    }
    std::string tag, l1, l2;
    ASSERT_TRUE(in >> tag >> l1 >> l2) << r.out;
    EXPECT_EQ(tag, "layers");
    EXPECT_EQ(l1, "1");
    EXPECT_EQ(l2, "2");
}

TEST(Radiance, PolygonGoldenText)
{
    const XYZ p[4] = {Pt(0, 0, 0), Pt(1.5, 0, 0.25), Pt(1, 2.385, 3), Pt(-1, -2, 1e6)};
    // Material, type and identifier; no string or integer arguments; the
    // count 9 with the first point's tab on the same line.
    ExpectSameBytes(Capture([&](FILE *f) { WriteRadFacet(f, p, 3, "m"); }),
                    "m polygon p\n0\n0\n9\t0 0 0\n\t1.5 0 0.25\n\t1 2.385 3\n");
    ExpectSameBytes(Capture([&](FILE *f) { WriteRadFacet(f, p, 4, "grey_paint"); }),
                    "grey_paint polygon p\n0\n0\n12\t0 0 0\n\t1.5 0 0.25\n\t1 2.385 3\n\t-1 -2 1e+06\n");
    EXPECT_EQ(Capture([&](FILE *f) { WriteRadFacet(f, p, 2, "m"); }), "");
    EXPECT_EQ(Capture([&](FILE *f) { WriteRadFacet(f, p, 0, "m"); }), "");
}

TEST(Matrix, PlainTableGoldenText)
{
    double r0[3] = {1, -2.5, 1234.56789};
    double r1[3] = {0, 0.00004, -0.00006};
    double r2[3] = {2.385, 1e6, -1};
    double *a[3] = {r0, r1, r2};
    // Each element "%10.4f", a line feed after each row.
    ExpectSameBytes(Capture([&](FILE *f) { WriteMatrix(f, 0, a, 3); }),
                    "    1.0000   -2.5000 1234.5679\n"
                    "    0.0000    0.0000   -0.0001\n"
                    "    2.38501000000.0000   -1.0000\n"); // wide values run together
    EXPECT_EQ(Capture([&](FILE *f) { WriteMatrix(f, 0, a, 0); }), "");
    EXPECT_EQ(Capture([&](FILE *f) { WriteMatrix(f, 2, a, 3); }), "");
    EXPECT_EQ(Capture([&](FILE *f) { WriteMatrix(f, -1, a, 3); }), "");
}

TEST(Matrix, HtmlFragmentGoldenText)
{
    double r0[3] = {1, -2.5, 1234.56789};
    double r1[3] = {0, 0.00004, -6};
    double r2[3] = {2.385, 1e6, -1};
    double *a[3] = {r0, r1, r2};
    auto cell = [](const char *v) {
        return std::string("<td height=10><center>&nbsp;&nbsp;") + v + "&nbsp;&nbsp;</center></td>\n";
    };
    const std::string want =
        "<table cellpadding=0 cellspacing=0 border=0><tr>\n"
        "<td valign=\"center\">A = </td>\n"
        // Left bracket 13 pixels per row: 39 for three rows.
        "<td valign=\"center\"><img src=\"lbracket.gif\" width=3 height=39></td>\n"
        "<td valign=\"center\">\n"
        "<table cellpadding=0 cellspacing=0 border=0>\n"
        "<tr>\n" + cell("1") + cell("-2.5") + cell("1234.57") + "</tr>\n"
        "<tr>\n" + cell("0") + cell("4e-05") + cell("-6") + "</tr>\n"
        "<tr>\n" + cell("2.385") + cell("1e+06") + cell("-1") + "</tr>\n"
        "</table></td>\n"
        // Right bracket 15 pixels per row: 45.
        "<td valign=\"center\"><img src=\"rbracket.gif\" width=3 height=45></td>\n"
        "</tr></table>\n";
    ExpectSameBytes(Capture([&](FILE *f) { WriteMatrix(f, 1, a, 3); }), want);

    double one[1] = {0.5};
    double *b[1] = {one};
    const std::string small = Capture([&](FILE *f) { WriteMatrix(f, 1, b, 1); });
    EXPECT_NE(small.find("lbracket.gif\" width=3 height=13>"), std::string::npos);
    EXPECT_NE(small.find("rbracket.gif\" width=3 height=15>"), std::string::npos);
}

} // namespace
