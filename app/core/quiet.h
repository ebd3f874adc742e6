/* The command-line (quiet) run: count to the end, print the table and the
 * estimate on standard output. */
#ifndef TALVOR_QUIET_H
#define TALVOR_QUIET_H

/* Runs the whole count after the images are built and the counter is
 * initialised; returns the process exit status. */
int RunQuiet(void);

#endif
