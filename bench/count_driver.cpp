// Quiet runs on large known fractals against the cost of one streaming pass
// over the file, and the counting phase on one thread against all of them.
//
//   count_driver TALVOR_BINARY [SIZE...]     (default sizes 8192 32767)
//   count_driver --steps-rate FILE.tga N     (boxes per second of the box steps)
//
// For each picture (Sierpinski carpet at every size, Koch curve at 8192) it
// prints, each measured as a separate process and best of three:
//   md5      md5sum FILE: one pass that reads and hashes every byte
//   quiet    the program's whole quiet run, -n 10, its ratio to md5 and its
//            peak memory in bytes per pixel
// and, in this process, the counting phase alone (the grids of -n 10 after
// the picture is in memory) on 1 thread and on every processor, with the
// bytes of black bits it streams, for the scaling model in the README.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "blackbits.h"
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

struct ChildRun {
    double seconds = 1e9;
    long peakkb = 0;
    bool ok = true;
};

// Best of three runs of a command, with its standard output discarded. The
// peak memory comes from GNU time, which forks the command from a process
// of its own: a child spawned from this one would count this process's
// memory in its peak.
ChildRun TimeCommand(std::vector<std::string> args)
{
    const std::string peakfile = "/tmp/talvor-bench-peak";
    args.insert(args.begin(), {"/usr/bin/time", "-f", "%M", "-o", peakfile});
    ChildRun best;
    for (int i = 0; i < 3; i++) {
        std::vector<char *> argv;
        for (const auto &a : args)
            argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        const double t0 = Now();
        pid_t pid = 0;
        const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (rc != 0) {
            best.ok = false;
            return best;
        }
        int status = 0;
        waitpid(pid, &status, 0);
        const double t = Now() - t0;
        long kb = 0;
        if (FILE *f = std::fopen(peakfile.c_str(), "r")) {
            if (std::fscanf(f, "%ld", &kb) != 1)
                kb = 0;
            std::fclose(f);
        }
        best.seconds = std::min(best.seconds, t);
        best.peakkb = std::max(best.peakkb, kb);
        best.ok = best.ok && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return best;
}

// The counting phase on the given number of threads, best of three; the
// offsets follow the clock, which changes the work by little.
double CountSeconds(unsigned threads)
{
    double best = 1e9;
    for (int i = 0; i < 3; i++) {
        const double t0 = Now();
        BoxCount(0);
        CountAllGrids(threads);
        best = std::min(best, Now() - t0);
    }
    return best;
}

// The bytes of black bits the grids of the last computation read: per band
// of boxes, its dyadic pieces of the region's words (the reads follow the
// same arithmetic as the counter, without touching the bits).
double StreamedBytes()
{
    const int64_t xlo = std::max(options.left, 0), xhi = std::min(options.right, options.width);
    const int64_t ylo = std::max(options.bottom, 0), yhi = std::min(options.top, options.height);
    if (xlo >= xhi || ylo >= yhi)
        return 0;
    const double words = static_cast<double>(((xhi - 1) >> 6) - (xlo >> 6) + 1);
    double bytes = 0;
    for (int i = 0; i < nresults; i++) {
        const int64_t s = results[i].size;
        // The band offsets do not matter much: take every band whole.
        for (int64_t y = ylo; y < yhi; y += s) {
            const int64_t y1 = std::min(yhi, y + s);
            int pieces = 0;
            for (int64_t a = y; a < y1; pieces++) {
                int k = a == 0 ? 30 : __builtin_ctzll(static_cast<uint64_t>(a));
                while ((int64_t{1} << k) > y1 - a)
                    k--;
                a += int64_t{1} << k;
            }
            bytes += pieces * words * 8;
        }
    }
    return bytes;
}

// The quiet loop's box steps per second, for comparing with the window's
// (bench/interactive_rate.sh).
int StepsRate(const char *tga, int noffsets)
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

} // namespace

int main(int argc, char **argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--steps-rate") == 0)
        return StepsRate(argv[2], std::atoi(argv[3]));
    if (argc < 2) {
        std::fprintf(stderr, "Usage: %s TALVOR_BINARY [SIZE...]\n", argv[0]);
        return 2;
    }
    const std::string bin = argv[1];
    std::vector<int> sizes;
    for (int i = 2; i < argc; i++)
        sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty())
        sizes = {8192, 32767};

    const unsigned cpus = CountingThreads();
    std::printf("%-7s %5s | %7s %7s %6s %8s | %9s %9s %6s %9s\n", "picture", "size", "md5 s", "quiet s", "ratio",
                "bytes/px", "count 1 s", "count N s", "1 / N", "GB/s 1");
    for (int size : sizes) {
        for (const char *kind : {"carpet", "koch"}) {
            if (size > 8192 && std::strcmp(kind, "koch") == 0)
                continue;
            const std::string tga = "/tmp/talvor-bench-" + std::string(kind) + "-" + std::to_string(size) + ".tga";
            {
                Raster raster;
                if (!MakeFractal(kind, size, &raster) || !WriteGreyTGA(tga, raster)) {
                    std::fprintf(stderr, "cannot make %s\n", tga.c_str());
                    return 1;
                }
            }
            const ChildRun md5 = TimeCommand({"md5sum", tga});
            const ChildRun quiet = TimeCommand({bin, "-q", "-n", "10", "-i", tga});

            SetDefaultOptions();
            options.quiet = 1;
            options.noffsets = 10;
            if (!LoadTGA(tga.c_str()))
                return 1;
            UpdateImages();
            const double one = CountSeconds(1), all = CountSeconds(cpus);
            const double streamed = StreamedBytes();
            FreeBlackBits();
            std::remove(tga.c_str());

            const double pixels = static_cast<double>(size) * size;
            std::printf("%-7s %5d | %7.3f %7.3f %5.2fx %8.3f | %9.3f %9.3f %5.2fx %9.2f%s\n", kind, size, md5.seconds,
                        quiet.seconds, quiet.seconds / md5.seconds, quiet.peakkb * 1024.0 / pixels, one, all, one / all,
                        streamed / one / 1e9, md5.ok && quiet.ok ? "" : "  (a run failed)");
            std::fflush(stdout);
        }
    }
    std::printf("targets: quiet at most 3x md5, at most 2 bytes per pixel; N = %u processors\n", cpus);
    return 0;
}
