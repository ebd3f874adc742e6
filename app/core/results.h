/* The results table: one line "%d %g %g %g" per distinct box size (size,
 * smallest count, ln(1/size), ln(count)), largest size first, sizes matched
 * exactly, sizes or counts of 0 left out. */
#ifndef TALVOR_RESULTS_H
#define TALVOR_RESULTS_H

#include <cstdio>

/* Writes the table to a stream; resets and uses the merged marks of results. */
void WriteResults(FILE *fp);

/* With at least 4 records: quiet mode writes the table to standard output;
 * interactively asks for a file ("Results file") and writes it there,
 * reporting on standard error when the file cannot be opened or written. */
void SaveResults(void);

#endif
