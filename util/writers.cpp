#include "writers.h"

#include <cstdio>

namespace {

/* One DXF group with a numeric value: the code right-aligned in three places,
 * the value in %g's shortest form. */
void WriteGroup(FILE *fptr, int code, double value)
{
    std::fprintf(fptr, "%3d\n%g\n", code, value);
}

} // namespace

void WriteDXFHeader(FILE *fptr, const char *comment)
{
    std::fprintf(fptr, "999\nDXF from %s\n", comment);

    /* The blanks before the group codes are not uniform ("  10" here, " 10"
     * in the entities); drawings written by earlier versions look exactly
     * like this, and it is kept byte for byte. */
    std::fputs("  0\nSECTION\n"
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
               "  0\nENDSEC\n",
               fptr);

    /* The line type's own name reads "iONTINUOUS" while the layers refer to
     * CONTINUOUS. Drawings from this library have always carried that
     * spelling, and it is reproduced as it stands. */
    std::fputs("  0\nSECTION\n"
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
               "  0\nENDTAB\n",
               fptr);

    std::fputs("  0\nTABLE\n"
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
               "  0\nENDTAB\n",
               fptr);

    std::fputs("  0\nTABLE\n"
               "  2\nSTYLE\n"
               "  70\n0\n"
               "  0\nENDTAB\n"
               "  0\nENDSEC\n"
               "  0\nSECTION\n"
               "  2\nBLOCKS\n"
               "  0\nENDSEC\n"
               "  0\nSECTION\n"
               "  2\nENTITIES\n",
               fptr);
}

void WriteDXFFacet(FILE *fptr, const XYZ *p, int n)
{
    if (n == 2) {
        std::fputs("  0\nLINE\n  8\nDefault\n", fptr);
        for (int m = 0; m < 2; m++) {
            WriteGroup(fptr, 10 + m, p[m].x);
            WriteGroup(fptr, 20 + m, p[m].y);
            WriteGroup(fptr, 30 + m, p[m].z);
        }
    } else if (n == 3 || n == 4) {
        std::fputs("  0\n3DFACE\n  8\nDefault\n", fptr);
        /* A 3-D face always has four corners: a triangle repeats its third. */
        for (int m = 0; m < 4; m++) {
            const XYZ &q = p[m < n ? m : n - 1];
            WriteGroup(fptr, 10 + m, q.x);
            WriteGroup(fptr, 20 + m, q.y);
            WriteGroup(fptr, 30 + m, q.z);
        }
    }
}

void WriteDXFFooter(FILE *fptr)
{
    std::fputs("  0\nENDSEC\n  0\nEOF\n", fptr);
}

void WriteRadFacet(FILE *fptr, const XYZ *p, int n, const char *material)
{
    if (n < 3)
        return;
    std::fprintf(fptr, "%s polygon p\n", material);
    /* No string and no integer arguments, then 3 n reals. The count's line is
     * deliberately left open: the first point's tab and coordinates follow on
     * it. 3 n is formed in long long so that no n can overflow it. */
    std::fprintf(fptr, "0\n0\n%lld", 3LL * n);
    for (int i = 0; i < n; i++)
        std::fprintf(fptr, "\t%g %g %g\n", p[i].x, p[i].y, p[i].z);
}

void WriteMatrix(FILE *fptr, int format, double **a, int n)
{
    if (format == 0) {
        for (int i = 0; i < n; i++) {
            for (int j = 0; j < n; j++)
                std::fprintf(fptr, "%10.4f", a[i][j]);
            std::fputs("\n", fptr);
        }
    } else if (format == 1) {
        /* The left bracket image is 13 pixels per row, the right one 15; the
         * bracket artwork has always been used at these two heights. */
        std::fputs("<table cellpadding=0 cellspacing=0 border=0><tr>\n", fptr);
        std::fputs("<td valign=\"center\">A = </td>\n", fptr);
        std::fputs("<td valign=\"center\">", fptr);
        std::fprintf(fptr, "<img src=\"lbracket.gif\" width=3 height=%lld></td>\n", 13LL * n);
        std::fputs("<td valign=\"center\">\n", fptr);
        std::fputs("<table cellpadding=0 cellspacing=0 border=0>\n", fptr);
        for (int i = 0; i < n; i++) {
            std::fputs("<tr>\n", fptr);
            for (int j = 0; j < n; j++) {
                std::fputs("<td height=10><center>", fptr);
                std::fprintf(fptr, "&nbsp;&nbsp;%g&nbsp;&nbsp;", a[i][j]);
                std::fputs("</center></td>\n", fptr);
            }
            std::fputs("</tr>\n", fptr);
        }
        std::fputs("</table></td>\n", fptr);
        std::fputs("<td valign=\"center\">", fptr);
        std::fprintf(fptr, "<img src=\"rbracket.gif\" width=3 height=%lld></td>\n", 15LL * n);
        std::fputs("</tr></table>\n", fptr);
    }
}
