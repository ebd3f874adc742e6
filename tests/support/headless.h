// A stand-in window for test programs of the counting core: tests set what
// the "file selector" answers, and read what the core asked of the window.
// Linking it registers it with the core.
#ifndef TESTS_HEADLESS_H
#define TESTS_HEADLESS_H

#include <string>

namespace headless {
extern const char *filename;   // answered by the file selector; null means cancelled
extern std::string lastprompt; // the prompt of the last file selection
extern int graphupdates;       // graph refreshes asked for so far
extern int screenbuilds;       // screen image rebuilds asked for so far
} // namespace headless

#endif
