#include "quiet.h"

#include <cstdio>

#include "boxcount.h"
#include "estimate.h"
#include "results.h"
#include "settings.h"

int RunQuiet(void)
{
    options.processing = 1;
    if (RegionTooSmall()) {
        std::fprintf(stderr, "Region too small for box counting\n");
        return 255;
    }
    CountAllGrids(CountingThreads());
    SaveResults();
    std::printf("Estimated fractal dimension: %6.3f", CalcSlope());
    if (options.useregion == 1)
        std::printf(" in region: %d %d to %d %d\n", regionargs.left, regionargs.bottom, regionargs.right,
                    regionargs.top);
    std::printf("\n");
    // A full disk or a closed pipe must not pass for a result.
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::fprintf(stderr, "Failed to write the results to standard output\n");
        return 1;
    }
    return 0;
}
