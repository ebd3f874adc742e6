#include "results.h"

#include <cmath>
#include <string>

#include "frontend.h"
#include "settings.h"

void WriteResults(FILE *fp)
{
    for (int i = 0; i < nresults; i++) {
        RESULT &r = results[i];
        r.merged = (r.size <= 0 || r.count <= 0) ? 1 : 0;
    }
    for (int i = 0; i < nresults; i++) {
        if (results[i].merged)
            continue;
        const int size = results[i].size;
        double m = 1e32;
        for (int j = i; j < nresults; j++) {
            if (!results[j].merged && results[j].size == size) {
                if (results[j].count < m)
                    m = results[j].count;
                results[j].merged = 1;
            }
        }
        std::fprintf(fp, "%d %g %g %g\n", size, m, std::log(1.0 / size), std::log(m));
    }
}

void SaveResults(void)
{
    if (nresults < 4)
        return;
    const Frontend *f = ActiveFrontend();
    if (f == nullptr) {
        WriteResults(stdout);
        return;
    }
    const char *chosen = f->askfilename("Results file");
    if (chosen == nullptr || chosen[0] == '\0')
        return;
    const std::string name = chosen; // the selector may reuse its buffer
    FILE *fp = std::fopen(name.c_str(), "w");
    if (fp == nullptr) {
        std::fprintf(stderr, "Failed to open file \"%s\"\n", name.c_str());
        return;
    }
    WriteResults(fp);
    const bool failed = std::ferror(fp) != 0;
    if (std::fclose(fp) != 0 || failed)
        std::fprintf(stderr, "Failed to write file \"%s\"\n", name.c_str());
}
