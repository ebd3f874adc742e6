// Talvor: estimates the box-counting dimension of the black structure in a
// picture, in a window or (-q) on the command line.
#include <cstdio>
#include <cstdlib>

#include "boxcount.h"
#include "cmdline.h"
#include "intake.h"
#include "quiet.h"
#include "settings.h"
#include "window.h"

int main(int argc, char **argv)
{
    SetDefaultOptions();
    ParseCommandLine(argc, argv);

    if (!options.quiet)
        StartWindowSystem(&argc, argv);

    if (inputname[0] == '\0') {
        MakeTestImage();
    } else if (!LoadTGA(inputname)) {
        if (options.quiet)
            std::exit(-1);
        std::fprintf(stderr, "Creating blank image\n");
        MakeTestImage();
    }

    UpdateImages();
    BoxCount(0);

    if (options.quiet)
        return RunQuiet();
    RunWindow();
}
