// One fuzz input through the reader as the program uses it: TGA_Info, a
// bitmap of the reported size, TGA_Read. Shared by the libFuzzer target and
// the corpus replay test.
#ifndef FUZZ_TGA_ENTRY_H
#define FUZZ_TGA_ENTRY_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "bitmap.h"

// Images above this many pixels are skipped: the reader would only allocate
// and then stop at the end of the (small) input, and the fuzzer's memory
// limit would count the allocation as a failure.
constexpr size_t kFuzzMaxPixels = size_t(1) << 22;

inline int ReadTgaBytes(const uint8_t *data, size_t size)
{
    // A stream over a copy of the bytes; fmemopen refuses a zero size, so an
    // empty input reads from an empty buffer of one byte's room instead.
    std::vector<char> copy(data, data + size);
    copy.push_back('\0');
    FILE *f = fmemopen(copy.data(), size > 0 ? size : 1, "rb");
    if (!f)
        return -1;
    if (size == 0)
        std::fgetc(f); // consume the placeholder: the stream is at its end
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
