/* Text exporters for geometry and matrices: a minimal DXF drawing assembled
 * by the caller in three steps (header, any number of lines or 3-D faces,
 * footer), a Radiance polygon, and a square matrix as a plain table or as an
 * HTML fragment. All write to a stream the caller opened and will close, and
 * none checks for write errors. */
#ifndef UTIL_WRITERS_H
#define UTIL_WRITERS_H

#include <stdio.h>

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Writes the fixed DXF (AC1006) preamble up to the opening of the ENTITIES
 * section: a 999 comment "DXF from <comment>", header variables, a line-type
 * table, layers 1 and 2, empty style table and blocks section. */
void WriteDXFHeader(FILE *fptr, const char *comment);
/* Writes one entity on layer Default: a LINE for n = 2, a 3DFACE for n = 3 or
 * 4 (a triangle repeats its third point as the fourth corner); p holds n
 * points. Any other n writes nothing. */
void WriteDXFFacet(FILE *fptr, const XYZ *p, int n);
/* Closes the ENTITIES section and the file (ENDSEC, EOF). */
void WriteDXFFooter(FILE *fptr);
/* Writes the n points of p as one Radiance polygon "<material> polygon p"
 * with 3 n real arguments; nothing for n below 3. The first point follows
 * the count on the same line, which the scene format accepts. */
void WriteRadFacet(FILE *fptr, const XYZ *p, int n, const char *material);
/* Writes the n by n matrix a (n row pointers) as a table of "%10.4f" values
 * (format 0) or as an HTML fragment "A = [ ... ]" with bracket images of
 * heights 13 n and 15 n (format 1); any other format writes nothing. */
void WriteMatrix(FILE *fptr, int format, double **a, int n);

#ifdef __cplusplus
}
#endif

#endif
