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

#endif
