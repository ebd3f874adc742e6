// The headless stand-in for the window-side services of the counting core:
// tests set what the "screen" and the "file selector" answer, and read what
// the core asked of them.
#ifndef TESTS_HEADLESS_H
#define TESTS_HEADLESS_H

#include <string>

namespace headless {
extern int screenwidth;        // answered by GetScreenSize (1280 x 1024 by default)
extern int screenheight;
extern const char *filename;   // answered by AskFileName; null means cancelled
extern std::string lastprompt; // the prompt of the last AskFileName
extern int graphupdates;       // calls of UpdateGraphForm so far
} // namespace headless

#endif
