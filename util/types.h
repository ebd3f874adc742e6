/* Value records shared by every family of the utility library. Truth values
 * are plain ints: TRUE is 1, FALSE is 0. */
#ifndef UTIL_TYPES_H
#define UTIL_TYPES_H

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

/* A point or vector in three dimensions. */
typedef struct {
    double x, y, z;
} XYZ;

/* X11's <X11/X.h> defines Complex as a polygon-shape constant (0). In a
 * program that includes it before this header the record's name would
 * become 0, so the macro gives way to the type here. */
#ifdef Complex
#undef Complex
#endif

/* A complex number: real part, then imaginary part. */
typedef struct {
    double real, imag;
} Complex;

/* A quaternion: the scalar part q0 first, then the vector part q1, q2, q3. */
typedef struct {
    double q0, q1, q2, q3;
} Quaternion;

/* An RGB colour, each component nominally 0 to 1. */
typedef struct {
    double r, g, b;
} Colour;

/* An RGB colour with opacity, each component nominally 0 to 1. */
typedef struct {
    double r, g, b, a;
} ColourA;

#endif
