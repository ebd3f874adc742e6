/* What the counting core asks of a window, when there is one. The window
 * registers its services once at start-up; the core never names a window
 * function itself, so it builds and links without any display library. With
 * nothing registered (quiet runs, test programs, a build without a window)
 * the core behaves as in quiet mode: no screen image, no graph, and results
 * go to standard output. */
#ifndef TALVOR_FRONTEND_H
#define TALVOR_FRONTEND_H

struct Frontend {
    /* The black/white image has been rebuilt: make the screen copy of image
     * (and anything else shown from it). */
    void (*imageschanged)(void);
    /* A grid pass is complete: refresh the log-log graph. */
    void (*graphchanged)(void);
    /* Asks the user for a file name with the given prompt; returns the chosen
     * path, or null when cancelled. */
    const char *(*askfilename)(const char *prompt);
};

/* Makes f the window the core talks to (null: none). f must outlive its use. */
void RegisterFrontend(const Frontend *f);

/* The registered window, or null when there is none or the run is quiet:
 * the core asks a window only in interactive mode. */
const Frontend *ActiveFrontend(void);

#endif
