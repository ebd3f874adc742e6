// Window-side functions that the counting core calls, for test programs that
// run without a window. The program itself links the real ones.
#include "headless.h"

#include <cstdlib>

#include "platform.h"

namespace headless {
int screenwidth = 1280;
int screenheight = 1024;
const char *filename = nullptr;
std::string lastprompt;
int graphupdates = 0;
} // namespace headless

void GetScreenSize(int *width, int *height)
{
    *width = headless::screenwidth;
    *height = headless::screenheight;
}

const char *AskFileName(const char *prompt)
{
    headless::lastprompt = prompt;
    return headless::filename;
}

void UpdateGraphForm(void)
{
    headless::graphupdates++;
}

void CleanExit(void)
{
    std::exit(0);
}
