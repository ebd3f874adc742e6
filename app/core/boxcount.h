/* The box counter: an incremental state machine that lays square grids of
 * shrinking boxes over the region of the black/white image and records, per
 * grid, how many boxes hold black. One call examines one box, so that the
 * interactive program can count from its idle handler. */
#ifndef TALVOR_BOXCOUNT_H
#define TALVOR_BOXCOUNT_H

/* mode 0 starts a new computation (seeds the offsets from the clock, clamps
 * the region to the image, records the first size) and returns 0; any other
 * mode examines one box and returns 1 once the last grid of the last offset
 * pass is done. */
int BoxCount(int mode);

/* 1 if a black pixel lies in x0 <= x < x1, y0 <= y < y1 once clipped to the
 * region (and the image), else 0, answered from the black bits. */
int BlackInRect(int x0, int x1, int y0, int y1);

/* The same answer from a pixel-by-pixel scan of bwimage alone: border first
 * (left column, right column, bottom row, top row), then the inside column
 * by column. The reference the fast path is checked against. */
int BlackInRectPlain(int x0, int x1, int y0, int y1);

/* True when the grid about to be counted has boxes below one pixel, which
 * happens with an automatic first size on a region under 5 pixels wide or
 * high (or one with left beyond right): the counter could never finish it,
 * so no driver may start it. */
bool RegionTooSmall(void);

/* The first box size of a pass for the current region: boxstart, or, when
 * that is automatic, a fifth of the region's smaller side (truncated). */
int StartBoxSize(void);

/* Finishes the computation that BoxCount(0) started, a grid at a time
 * rather than a box at a time: the offsets of all grids are drawn first, in
 * the order the stepping counter draws them, then the grids are counted on
 * the given number of threads. The records are exactly those that calling
 * BoxCount(1) until it returns 1 leaves, and nothing is printed: this is
 * quiet mode's counter. */
void CountAllGrids(unsigned threads);

/* The number of processors this process may run on (its affinity mask). */
unsigned CountingThreads(void);

#endif
