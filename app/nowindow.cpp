// The window side of a build made without any display library (cmake
// -DTALVOR_GUI=OFF), for cluster nodes and containers: the program counts
// on the command line only.
#include <cstdio>
#include <cstdlib>

#include "window.h"

void StartWindowSystem(int *, char **)
{
    std::fprintf(stderr, "This build of talvor has no window: use -q to count on the command line\n");
    std::exit(1);
}

void RunWindow(void)
{
    std::exit(1);
}
