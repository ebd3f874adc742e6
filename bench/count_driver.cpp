// Box counting on large known fractals: the table-guided counter against the
// literal pixel scan, both in one run, and the whole quiet run against the
// cost of reading and thresholding the image alone.
//
//   count_driver TALVOR_BINARY [SIZE...]     (default sizes 4096 8192)
//   count_driver --steps-rate FILE.tga N     (boxes per second of the quiet loop)
//
// For each image it prints:
//   read+bw    a process that only reads the file and thresholds it (the
//              floor any run pays), best of three
//   fast       counting with the black table, -n 10, in this process
//   literal    the same counting with the pixel-by-pixel scan only
//   quiet      the program's whole quiet run, -n 10, best of three, and its
//              peak memory
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "blacktable.h"
#include "boxcount.h"
#include "fractals.h"
#include "intake.h"
#include "settings.h"

extern char **environ;

namespace {

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Runs the counter to the end, as quiet mode does.
double CountSeconds()
{
    const double t0 = Now();
    BoxCount(0);
    while (!BoxCount(1)) {
    }
    return Now() - t0;
}

struct ChildRun {
    double seconds = 1e9;
    long peakkb = 0;
    bool ok = true;
};

// Best of three runs of a command, with its standard output discarded.
ChildRun TimeCommand(const std::vector<std::string> &args)
{
    ChildRun best;
    for (int i = 0; i < 3; i++) {
        std::vector<char *> argv;
        for (const auto &a : args)
            argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        // Spawned rather than forked, so that the child's peak memory does
        // not include a copy of this process's images.
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        const double t0 = Now();
        pid_t pid = 0;
        if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) {
            best.ok = false;
            posix_spawn_file_actions_destroy(&actions);
            return best;
        }
        posix_spawn_file_actions_destroy(&actions);
        int status = 0;
        struct rusage ru {};
        wait4(pid, &status, 0, &ru);
        const double t = Now() - t0;
        best.seconds = std::min(best.seconds, t);
        best.peakkb = std::max(best.peakkb, ru.ru_maxrss);
        best.ok = best.ok && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return best;
}

// The floor: read the file and threshold it the way the program does, then
// exit.
int ReadOnly(const char *tga)
{
    SetDefaultOptions();
    options.quiet = 1;
    if (!LoadTGA(tga))
        return 1;
    const size_t n = Bitmap_PixelCount(options.width, options.height);
    std::vector<unsigned char> bw(n);
    unsigned char darkest = 255;
    for (size_t i = 0; i < n; i++) {
        const BitmapPixel &p = image[i];
        bw[i] = p.r * p.r + p.g * p.g + p.b * p.b > 16383 ? 255 : 0;
        darkest = std::min(darkest, bw[i]);
    }
    return darkest < 128 ? 0 : 1;
}

} // namespace

// The quiet loop's rate: boxes examined per second, for comparing with the
// interactive loop (bench/interactive_rate.sh).
static int StepsRate(const char *tga, int noffsets)
{
    SetDefaultOptions();
    options.quiet = 1;
    options.noffsets = noffsets;
    if (!LoadTGA(tga))
        return 1;
    UpdateImages();
    const double t0 = Now();
    BoxCount(0);
    long steps = 1;
    while (!BoxCount(1))
        steps++;
    const double t = Now() - t0;
    std::printf("%ld %.6f\n", steps, t);
    return 0;
}

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--read-only") == 0)
        return ReadOnly(argv[2]);
    if (argc == 4 && std::strcmp(argv[1], "--steps-rate") == 0)
        return StepsRate(argv[2], std::atoi(argv[3]));
    if (argc < 2) {
        std::fprintf(stderr, "Usage: %s TALVOR_BINARY [SIZE...]\n", argv[0]);
        return 2;
    }
    const std::string bin = argv[1];
    const std::string self = "/proc/self/exe";
    char selfpath[4096] = {};
    if (readlink(self.c_str(), selfpath, sizeof selfpath - 1) < 0)
        return 1;
    std::vector<int> sizes;
    for (int i = 2; i < argc; i++)
        sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty())
        sizes = {4096, 8192};

    struct Row {
        std::string kind, tga;
        int size;
        ChildRun floor, quiet;
        double fast = 0, literal = 0;
    };
    std::vector<Row> rows;
    // Subprocesses first, while this process is small: a spawned child's
    // peak memory counts whatever its parent held when it started.
    for (const char *kind : {"carpet", "koch"}) {
        for (int size : sizes) {
            Row r;
            r.kind = kind;
            r.size = size;
            r.tga = "/tmp/talvor-bench-" + r.kind + "-" + std::to_string(size) + ".tga";
            {
                Raster raster;
                MakeFractal(kind, size, &raster);
                if (!WriteGreyTGA(r.tga, raster)) {
                    std::fprintf(stderr, "cannot write %s\n", r.tga.c_str());
                    return 1;
                }
            }
            sync();
            r.floor = TimeCommand({selfpath, "--read-only", r.tga});
            r.quiet = TimeCommand({bin, "-q", "-n", "10", "-i", r.tga});
            rows.push_back(r);
        }
    }
    for (Row &r : rows) {
        SetDefaultOptions();
        options.quiet = 1;
        options.noffsets = 10;
        if (!LoadTGA(r.tga.c_str()))
            return 1;
        UpdateImages();
        r.fast = CountSeconds();
        FreeBlackTable(); // from here on BlackInRect scans pixels only
        r.literal = CountSeconds();
        std::remove(r.tga.c_str());
    }

    std::printf("%-7s %5s | %9s %8s %10s %7s | %8s %7s %8s\n", "image", "size", "read+bw s", "fast s",
                "literal s", "ratio", "quiet s", "q/read", "peak MB");
    for (const Row &r : rows)
        std::printf("%-7s %5d | %9.3f %8.3f %10.3f %6.1fx | %8.3f %6.2fx %8.1f%s\n", r.kind.c_str(), r.size,
                    r.floor.seconds, r.fast, r.literal, r.literal / r.fast, r.quiet.seconds,
                    r.quiet.seconds / r.floor.seconds, r.quiet.peakkb / 1024.0,
                    r.floor.ok && r.quiet.ok ? "" : "  (a run failed)");
    return 0;
}
