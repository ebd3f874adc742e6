#include <cstdio>
#include <cstdlib>

#include "cmdline.h"
#include "intake.h"
#include "settings.h"

int main(int argc, char **argv)
{
    SetDefaultOptions();
    ParseCommandLine(argc, argv);
    if (!options.quiet)
        PrintBanner();

    if (inputname[0] == '\0') {
        MakeTestImage();
    } else if (!LoadTGA(inputname)) {
        if (options.quiet)
            std::exit(-1);
        std::fprintf(stderr, "Creating blank image\n");
        MakeTestImage();
    }
    return 0;
}
