#include "cmdline.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "settings.h"

void GiveUsage(const char *progname)
{
    std::fprintf(stderr, "Usage: %s [options]\n", progname);
    std::fprintf(stderr, "General options\n");
    std::fprintf(stderr, "     -h      this text (help)\n");
    std::fprintf(stderr, "     -i s    load input TGA file\n");
    std::fprintf(stderr, "     -bw     invert image\n");
    std::fprintf(stderr, "     -q      quiet, command line mode\n");
    std::fprintf(stderr, "     -p      start processing immediately\n");
    std::fprintf(stderr, "Box options\n");
    std::fprintf(stderr, "     -n  n   number of offset samples, default: %d\n", options.noffsets);
    std::fprintf(stderr, "     -b1 n   start box size (default: %d)\n", options.boxstart);
    std::fprintf(stderr, "     -b2 n   end box size (default: %d)\n", options.boxend);
    std::fprintf(stderr, "     -bf n   box reduction factor (default: %g)\n",
                 static_cast<double>(options.boxfactor));
    std::fprintf(stderr, "Region options\n");
    std::fprintf(stderr, "     -sl     left boundary (default: 0)\n");
    std::fprintf(stderr, "     -sr     right boundary (default: image width)\n");
    std::fprintf(stderr, "     -sb     bottom boundary (default: 0)\n");
    std::fprintf(stderr, "     -st     top boundary (default: image height)\n");
    std::exit(0);
}

void PrintBanner(void)
{
    std::fprintf(stderr, "Talvor - Brimsel\n");
    std::fprintf(stderr, "Version %g\n", versionnumber / 100.0);
}

void ParseCommandLine(int argc, char **argv)
{
    // A valued option given last reads the vector's terminating null entry;
    // it is taken as an empty value (0, or an empty name).
    auto value = [&](int i) -> const char * {
        return (i + 1 < argc && argv[i + 1] != nullptr) ? argv[i + 1] : "";
    };

    for (int i = 1; i < argc; i++) {
        const char *arg = argv[i];
        if (arg == nullptr)
            break;
        if (std::strcmp(arg, "-h") == 0) {
            GiveUsage(argv[0]);
        } else if (std::strcmp(arg, "-d") == 0) {
            options.debug = 1;
        } else if (std::strcmp(arg, "-q") == 0) {
            options.quiet = 1;
        } else if (std::strcmp(arg, "-p") == 0) {
            options.processing = 1;
        } else if (std::strcmp(arg, "-i") == 0) {
            // Longer names are cut at the buffer, never overflow it.
            std::snprintf(inputname, sizeof inputname, "%s", value(i));
            i++;
        } else if (std::strcmp(arg, "-b1") == 0) {
            options.boxstart = std::atoi(value(i));
            if (options.boxstart < 2)
                options.boxstart = -1;
            i++;
        } else if (std::strcmp(arg, "-b2") == 0) {
            options.boxend = std::atoi(value(i));
            if (options.boxend < 1)
                options.boxend = 1;
            i++;
        } else if (std::strcmp(arg, "-bf") == 0) {
            options.boxfactor = static_cast<float>(std::atof(value(i)));
            // Written as "<= 1.0" so that a NaN is kept as it is.
            if (options.boxfactor <= 1.0)
                options.boxfactor = 1.1f;
            i++;
        } else if (std::strcmp(arg, "-n") == 0) {
            options.noffsets = std::atoi(value(i));
            if (options.noffsets < 1)
                options.noffsets = 1;
            i++;
        } else if (std::strcmp(arg, "-bw") == 0) {
            options.invert = 1;
        } else if (std::strcmp(arg, "-sl") == 0) {
            // The region options read their value without stepping over it:
            // the value is examined next as an argument in its own right.
            options.left = regionargs.left = std::atoi(value(i));
            options.useregion = 1;
        } else if (std::strcmp(arg, "-sr") == 0) {
            options.right = regionargs.right = std::atoi(value(i));
            options.useregion = 1;
        } else if (std::strcmp(arg, "-sb") == 0) {
            options.bottom = regionargs.bottom = std::atoi(value(i));
            options.useregion = 1;
        } else if (std::strcmp(arg, "-st") == 0) {
            options.top = regionargs.top = std::atoi(value(i));
            options.useregion = 1;
        }
    }
}
