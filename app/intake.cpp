#include "intake.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "settings.h"

namespace {
struct FileCloser {
    void operator()(FILE *f) const { std::fclose(f); }
};
using File = std::unique_ptr<FILE, FileCloser>;
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
