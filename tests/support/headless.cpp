#include "headless.h"

#include "frontend.h"

namespace headless {
const char *filename = nullptr;
std::string lastprompt;
int graphupdates = 0;
int screenbuilds = 0;

namespace {
const Frontend stand_in = {
    [] { screenbuilds++; },
    [] { graphupdates++; },
    [](const char *prompt) {
        lastprompt = prompt;
        return filename;
    },
};

// Registered before main, so that every test sees it.
const bool registered = (RegisterFrontend(&stand_in), true);
} // namespace
} // namespace headless
