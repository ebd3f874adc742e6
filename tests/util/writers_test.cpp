// DXF, Radiance and matrix writers: golden text worked out by hand for every
// format, and a DXF drawing read back by a real DXF reader (ezdxf).
#include "writers.h"

#include <cstdio>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "testutil.h"

// Everything a writer puts on a stream, read back from a file.
static std::string Capture(const std::function<void(FILE *)> &write) {
    testutil::TempDir dir;
    FILE *f = std::fopen(dir.file("out").c_str(), "w");
    write(f);
    std::fclose(f);
    return testutil::ReadText(dir.file("out"));
}

TEST(DXF, DrawingMatchesGoldenBytesAndReadsBackWithEzdxf) {
    const XYZ p[4] = {{0, 0, 0}, {2.385, -1, 0.5}, {1e-7, 1234567, -3}, {4, 5, 6}};
    const std::string drawing = Capture([&p](FILE *f) {
        WriteDXFHeader(f, "talvor test");
        for (int n : {2, 3, 4, -1, 0, 1, 5}) WriteDXFFacet(f, p, n); // the last four write nothing
        WriteDXFFooter(f);
    });
    // Each group is a code line and a value line; the blanks before the
    // header's codes are deliberately uneven.
    const std::string header =
        // The 999 comment; HEADER: version AC1006, insertion base (0, 0, 0).
        "999\nDXF from talvor test\n  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1006\n  9\n$INSBASE\n  10\n0.0\n  20\n0.0\n  30\n0.0\n"
        // Extents (0, 0) to (1000, 1000), end of HEADER; TABLES opened.
        "  9\n$EXTMIN\n  10\n0.0\n  20\n0.0\n  9\n$EXTMAX\n  10\n1000.0\n  20\n1000.0\n  0\nENDSEC\n  0\nSECTION\n  2\nTABLES\n"
        // One line type named "iONTINUOUS" (the layers say CONTINUOUS): flags
        // 64, "Solid line", alignment 65, no dashes, pattern length 0.
        "  0\nTABLE\n  2\nLTYPE\n  70\n1\n  0\nLTYPE\n  2\niONTINUOUS\n  70\n64\n  3\nSolid line\n  72\n65\n  73\n0\n  40\n0.000000\n  0\nENDTAB\n"
        // Two layers, 1 and 2: flags 64, colour 7, line type CONTINUOUS.
        "  0\nTABLE\n  2\nLAYER\n  70\n6\n  0\nLAYER\n  2\n1\n  70\n64\n  62\n7\n  6\nCONTINUOUS\n"
        "  0\nLAYER\n  2\n2\n  70\n64\n  62\n7\n  6\nCONTINUOUS\n  0\nENDTAB\n"
        // An empty style table, end of TABLES, an empty BLOCKS section,
        // ENTITIES opened.
        "  0\nTABLE\n  2\nSTYLE\n  70\n0\n  0\nENDTAB\n  0\nENDSEC\n  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n";
    // Entities: "%3d\n%g\n" groups, on layer Default; a line's second point
    // under codes 11/21/31, a triangle's third point repeated as the fourth
    // corner. Footer: ENDSEC, EOF.
    const std::string first = " 10\n0\n 20\n0\n 30\n0\n 11\n2.385\n 21\n-1\n 31\n0.5\n", third = " 12\n1e-07\n 22\n1.23457e+06\n 32\n-3\n";
    EXPECT_EQ(drawing, header + "  0\nLINE\n  8\nDefault\n" + first + "  0\n3DFACE\n  8\nDefault\n" + first + third +
                           " 13\n1e-07\n 23\n1.23457e+06\n 33\n-3\n  0\n3DFACE\n  8\nDefault\n" + first + third +
                           " 13\n4\n 23\n5\n 33\n6\n  0\nENDSEC\n  0\nEOF\n");
    // ezdxf (python3-ezdxf) reads the drawing, upgrading the old version,
    // and lists each entity with its layer and corners.
    const testutil::RunResult r = testutil::Run(
        {"/usr/bin/python3", "-c",
         "import ezdxf, io, sys\nfor e in ezdxf.read(io.StringIO(sys.argv[1])).modelspace():\n"
         "    pts = [e.dxf.start, e.dxf.end] if e.dxftype() == 'LINE' else [e.dxf.get('vtx%d' % i) for i in range(4)]\n"
         "    print(e.dxftype(), e.dxf.layer, *[repr(c) for p in pts for c in p])\n",
         drawing});
    ASSERT_EQ(r.status, 0) << "python3 with ezdxf is needed: run scripts/install-deps\n" << r.err;
    EXPECT_EQ(r.out, "LINE Default 0.0 0.0 0.0 2.385 -1.0 0.5\n"
                     "3DFACE Default 0.0 0.0 0.0 2.385 -1.0 0.5 1e-07 1234570.0 -3.0 1e-07 1234570.0 -3.0\n"
                     "3DFACE Default 0.0 0.0 0.0 2.385 -1.0 0.5 1e-07 1234570.0 -3.0 4.0 5.0 6.0\n");
}

TEST(Writers, RadianceAndMatrixGoldenText) {
    const XYZ p[4] = {{0, 0, 0}, {1.5, 0, 0.25}, {1, 2.385, 3}, {-1, -2, 1e6}};
    double r0[3] = {1, -2.5, 1234.56789}, r1[3] = {0, 0.00004, -0.00006}, r2[3] = {2.385, 1e6, -1}, *a[3] = {r0, r1, r2};
    // Radiance: material, type and identifier p; no string or integer
    // arguments; the count 3 n with the first point's tab on the same line;
    // nothing below three points.
    EXPECT_EQ(Capture([&p](FILE *f) { for (int n : {3, 2, 0, 4}) WriteRadFacet(f, p, n, n == 4 ? "grey_paint" : "m"); }),
              "m polygon p\n0\n0\n9\t0 0 0\n\t1.5 0 0.25\n\t1 2.385 3\n"
              "grey_paint polygon p\n0\n0\n12\t0 0 0\n\t1.5 0 0.25\n\t1 2.385 3\n\t-1 -2 1e+06\n");
    // Matrix format 0: "%10.4f" per element, a line feed per row, wide values
    // running together. Format 1: "%g" cells between bracket images 13 n and
    // 15 n high. Formats 2 and -1 and a 0 x 0 matrix write nothing.
    const std::string td = "<td height=10><center>&nbsp;&nbsp;", dt = "&nbsp;&nbsp;</center></td>\n";
    EXPECT_EQ(Capture([&a](FILE *f) { for (int format : {0, 2, -1, 1}) WriteMatrix(f, format, a, 3); WriteMatrix(f, 0, a, 0); }),
              "    1.0000   -2.5000 1234.5679\n    0.0000    0.0000   -0.0001\n    2.38501000000.0000   -1.0000\n"
              "<table cellpadding=0 cellspacing=0 border=0><tr>\n<td valign=\"center\">A = </td>\n"
              "<td valign=\"center\"><img src=\"lbracket.gif\" width=3 height=39></td>\n"
              "<td valign=\"center\">\n<table cellpadding=0 cellspacing=0 border=0>\n"
              "<tr>\n" + td + "1" + dt + td + "-2.5" + dt + td + "1234.57" + dt + "</tr>\n<tr>\n" + td + "0" + dt + td + "4e-05" + dt + td + "-6e-05" + dt +
              "</tr>\n<tr>\n" + td + "2.385" + dt + td + "1e+06" + dt + td + "-1" + dt + "</tr>\n</table></td>\n"
              "<td valign=\"center\"><img src=\"rbracket.gif\" width=3 height=45></td>\n</tr></table>\n");
}
