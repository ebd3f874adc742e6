/* Command line, usage text and start-up banner. */
#ifndef TALVOR_CMDLINE_H
#define TALVOR_CMDLINE_H

/* Reads the arguments left to right into options, inputname and regionargs,
 * correcting bad values to their fallbacks; -h prints the usage text and
 * ends the process. Unknown words are ignored. Does not reset the defaults. */
void ParseCommandLine(int argc, char **argv);

/* Prints the usage text, with the current values of the four box options, to
 * standard error and ends the process with status 0. */
[[noreturn]] void GiveUsage(const char *progname);

/* Prints the two banner lines (name and version) to standard error. */
void PrintBanner(void);

#endif
