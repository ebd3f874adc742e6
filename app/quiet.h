/* The command-line (quiet) run: count to the end, print the table and the
 * estimate on standard output. */
#ifndef TALVOR_QUIET_H
#define TALVOR_QUIET_H

/* True when the grid about to be counted has boxes below one pixel, which
 * happens with an automatic first size on a region under 5 pixels wide or
 * high (or one with left beyond right): the counter could never finish it. */
bool RegionTooSmall(void);

/* Runs the whole count after the images are built and the counter is
 * initialised; returns the process exit status. */
int RunQuiet(void);

#endif
