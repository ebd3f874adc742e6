#include "intake.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "blacktable.h"
#include "boxcount.h"
#include "frontend.h"
#include "settings.h"

namespace {
struct FileCloser {
    void operator()(FILE *f) const { std::fclose(f); }
};
using File = std::unique_ptr<FILE, FileCloser>;

// Bytes currently held by bwimage, so that a rebuild of the same size
// reuses the memory.
size_t bwbytes = 0;
} // namespace

int LoadTGA(const char *filename)
{
    if (!options.quiet)
        std::fprintf(stderr, "Reading file \"%s\"\n", filename);
    File fp(std::fopen(filename, "rb"));
    if (!fp) {
        std::fprintf(stderr, "Failed to open file \"%s\"\n", filename);
        return 0;
    }
    TGA_Info(fp.get(), &options.width, &options.height, &options.depth);
    if (!options.quiet)
        std::fprintf(stderr, "   Image dimensions: %d x %d x %d\n", options.width, options.height,
                     options.depth);

    Destroy_Bitmap(image);
    image = Create_Bitmap(options.width, options.height);
    if (image == nullptr) {
        std::fprintf(stderr, "   Failed to create image\n");
        return 0;
    }
    int w = 0, h = 0;
    if (TGA_Read(fp.get(), image, &w, &h) != 0) {
        std::fprintf(stderr, "   Image read failed\n");
        return 0;
    }
    std::snprintf(options.imagename, sizeof options.imagename, "%s", filename);
    return 1;
}

void MakeTestImage(void)
{
    Destroy_Bitmap(image);
    options.width = 400;
    options.height = 300;
    image = Create_Bitmap(options.width, options.height);
    if (image == nullptr) {
        std::fprintf(stderr, "   Failed to create image - fatal\n");
        std::exit(-1);
    }
    Erase_Bitmap(image, options.width, options.height, BitmapPixel{255, 255, 255, 255});
    std::snprintf(options.imagename, sizeof options.imagename, "%s", "No Image");
}

void InvertImage(void)
{
    const size_t n = Bitmap_PixelCount(options.width, options.height);
    for (size_t i = 0; i < n; i++) {
        image[i].r = static_cast<unsigned char>(255 - image[i].r);
        image[i].g = static_cast<unsigned char>(255 - image[i].g);
        image[i].b = static_cast<unsigned char>(255 - image[i].b);
    }
}

int UpdateImages(void)
{
    const size_t n = Bitmap_PixelCount(options.width, options.height);
    if (bwimage == nullptr || n != bwbytes) {
        // One byte at least, so that an empty image still has a valid array.
        void *p = std::realloc(bwimage, n > 0 ? n : 1);
        if (p == nullptr) {
            std::fprintf(stderr, "   Failed to create image - fatal\n");
            std::exit(-1);
        }
        bwimage = static_cast<unsigned char *>(p);
        bwbytes = n;
    }

    // Integer squares and one comparison: black is below 128 squared. Row by
    // row, so that each row goes into the black table while it is still in
    // the cache.
    const bool table = BeginBlackTable(bwimage, options.width, options.height);
    const unsigned char flip = options.invert ? 255 : 0;
    unsigned char darkest = 255;
    const size_t w = n > 0 ? static_cast<size_t>(options.width) : 0;
    for (size_t y = 0; w > 0 && y < static_cast<size_t>(options.height); y++) {
        const BitmapPixel *in = image + y * w;
        unsigned char *out = bwimage + y * w;
        for (size_t x = 0; x < w; x++) {
            const int sum = in[x].r * in[x].r + in[x].g * in[x].g + in[x].b * in[x].b;
            const unsigned char v = static_cast<unsigned char>((sum > 16383 ? 255 : 0) ^ flip);
            out[x] = v;
            darkest = v < darkest ? v : darkest;
        }
        if (table)
            BlackTableAddRow(static_cast<int>(y));
    }
    if (darkest >= 128)
        std::fprintf(stderr, "Warning, image contains no black\n");

    if (const Frontend *f = ActiveFrontend())
        f->imageschanged();

    if (!options.useregion) {
        options.left = 0;
        options.right = 100000;
        options.top = 100000;
        options.bottom = 0;
    }
    return BoxCount(0);
}
