/* The settings record and every process-wide global of the tool.
 *
 * GLUT and XForms callbacks take no context pointer, so the application state
 * is global; it lives here, declared once and defined once in settings.cpp.
 * Window-side globals (the two form records and their visibility flags) live
 * with the forms, which are the only code that touches them.
 */
#ifndef TALVOR_SETTINGS_H
#define TALVOR_SETTINGS_H

#include "bitmap.h"

/* All run-time settings. Field order and defaults are part of the program's
 * contract; every part of the tool reads and writes this one record. */
typedef struct {
    int quiet;          /* 1 = command-line mode (-q): no window, no forms */
    int debug;          /* 1 = print "Display update" on every redraw (-d) */
    int screenwidth;    /* window / screen image width, screen pixels (400) */
    int screenheight;   /* window / screen image height, screen pixels (300) */
    int width;          /* loaded image width, image pixels */
    int height;         /* loaded image height, image pixels */
    int depth;          /* bits per pixel from the file header, informational */
    int scale;          /* image pixels per screen pixel, a power of two */
    char imagename[256]; /* path of the current image, or "No Image" */
    int writerequest;   /* set by the w key; nothing reads it */
    int mousebutton;    /* GLUT button of the last mouse press; nothing reads it */
    int invert;         /* 1 = invert the first black/white build (-bw) */
    int noffsets;       /* randomly offset grids per box size, >= 1 (-n) */
    int processing;     /* 1 = counting runs from the idle handler */
    int boxstart;       /* first box size in pixels, -1 = automatic (-b1) */
    int boxend;         /* smallest box size; counting stops below it (-b2) */
    float boxfactor;    /* box size divisor per step, > 1 unless NaN (-bf) */
    int useregion;      /* 1 = a counting region came from the command line */
    int left;           /* counting region, image pixels: left inclusive */
    int right;          /*   right exclusive; 100000 = as far as the image goes */
    int top;            /*   top exclusive (y grows upward) */
    int bottom;         /*   bottom inclusive */
} OPTIONS;

/* One occupied box of the grid pass in progress, in unclipped image pixels. */
typedef struct {
    int left, right, top, bottom;
    int filled; /* 1 for every stored box; the overlay fills only these */
} BOX;

/* One grid pass: its box size and how many of its boxes held black. */
typedef struct {
    int size;
    int count;
    int merged; /* scratch mark of the results writer */
} RESULT;

/* The counting region as written on the command line, before any clipping. */
typedef struct {
    int left, right, top, bottom;
} REGION;

extern OPTIONS options;          /* the settings record */
extern const int versionnumber;  /* version times 100 */
extern char inputname[256];      /* file named with -i, "" when none; truncated to 255 */
extern REGION regionargs;        /* region edges as given: 0, 100000, 100000, 0 by default */

extern BitmapPixel *image;       /* loaded picture, width x height, null before the first load */
extern unsigned char *bwimage;   /* 0 black / 255 white per image pixel, same indexing */
extern BitmapPixel *viewimage;   /* reduced screen copy, screenwidth x screenheight; interactive only */

extern BOX *boxlist;             /* occupied boxes of the grid pass in progress */
extern int nboxlist;             /* number of boxes in boxlist */
extern RESULT *results;          /* one record per grid pass, in order */
extern int nresults;             /* number of records in results */

/* Puts every field of options and the command-line region back to its
 * default; inputname becomes empty. */
void SetDefaultOptions(void);

#endif
