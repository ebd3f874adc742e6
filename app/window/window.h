/* The GLUT window: start-up of the window side, the event-loop callbacks and
 * the OpenGL state. Interactive mode only. */
#ifndef TALVOR_WINDOW_H
#define TALVOR_WINDOW_H

/* Prints the banner and "Initialising GLUT", creates the window "Talvor",
 * registers the nine callbacks, builds the menus, initialises XForms, builds
 * both forms and registers the window's services with the counting core.
 * A build without a window says so instead and ends with status 1. */
void StartWindowSystem(int *argc, char **argv);

/* Sets the OpenGL state once, sizes and titles the window, and runs the GLUT
 * main loop, which never returns. */
[[noreturn]] void RunWindow(void);

void PrepareOpenGL(void);

/* The full screen size in pixels, as the window system reports it. */
void GetScreenSize(int *width, int *height);

/* Ends the process with status 0; every quit path goes through it. */
[[noreturn]] void CleanExit(void);

/* Interactive mode: resizes the window to the screen image and sets the title
 * "Talvor : <name> (1:<scale>)". Does nothing in quiet mode. */
void UpdateWindow(void);

void HandleIdle(void);
void HandleDisplay(void);
void HandleReshape(int w, int h);
void HandleVisibility(int state);

#endif
