// Reading a large grey TGA file: the cost every run pays before counting.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "bitmap.h"
#include "fractals.h"

static void BM_TgaReadGrey(benchmark::State &state)
{
    const int size = static_cast<int>(state.range(0));
    Raster r;
    MakeFractal("carpet", size, &r);
    const std::string path = "/tmp/talvor-bench-" + std::to_string(size) + ".tga";
    WriteGreyTGA(path, r);
    BitmapPixel *pixels = Create_Bitmap(size, size);
    for (auto _ : state) {
        FILE *f = std::fopen(path.c_str(), "rb");
        int w, h, d;
        TGA_Info(f, &w, &h, &d);
        benchmark::DoNotOptimize(TGA_Read(f, pixels, &w, &h));
        std::fclose(f);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size) * size);
    Destroy_Bitmap(pixels);
    std::remove(path.c_str());
}
BENCHMARK(BM_TgaReadGrey)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);
