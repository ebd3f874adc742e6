// One fuzz input through the reader as the program uses it: TGA_Info, a
// bitmap of the reported size, TGA_Read. Shared by the libFuzzer target and
// the corpus replay test.
#ifndef FUZZ_TGA_ENTRY_H
#define FUZZ_TGA_ENTRY_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "bitmap.h"

// Images above this many pixels are skipped: the reader would only allocate
// and then stop at the end of the (small) input, and the fuzzer's memory
// limit would count the allocation as a failure.
constexpr size_t kFuzzMaxPixels = size_t(1) << 22;

inline int ReadTgaBytes(const uint8_t *data, size_t size)
{
    FILE *f = std::tmpfile();
    if (!f)
        return -1;
    if (size > 0)
        std::fwrite(data, 1, size, f);
    std::rewind(f);
    int w = 0, h = 0, d = 0;
    TGA_Info(f, &w, &h, &d);
    int rc = -1;
    if (Bitmap_PixelCount(w, h) <= kFuzzMaxPixels) {
        BitmapPixel *bm = Create_Bitmap(w, h);
        if (bm) {
            int w2 = 0, h2 = 0;
            rc = TGA_Read(f, bm, &w2, &h2);
            Destroy_Bitmap(bm);
        }
    }
    std::fclose(f);
    return rc;
}

#endif
