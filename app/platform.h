/* The few window-side services the counting core calls. The program links
 * the real ones (GLUT and XForms); test programs that run without a window
 * link a headless stand-in. */
#ifndef TALVOR_PLATFORM_H
#define TALVOR_PLATFORM_H

/* The full screen size in pixels, as the window system reports it. */
void GetScreenSize(int *width, int *height);

/* Shows the file selector with the given prompt and empty directory, pattern
 * and default name; returns the chosen path, or null when cancelled. */
const char *AskFileName(const char *prompt);

/* Refreshes the log-log graph form from the results so far. */
void UpdateGraphForm(void);

/* Ends the process with status 0; every quit path goes through it. */
[[noreturn]] void CleanExit(void);

#endif
