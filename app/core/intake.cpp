#include "intake.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "blackbits.h"
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

// Quiet runs read the file straight into the black bits: no colour picture
// and no byte image is ever held. True from such a load until the next
// UpdateImages has finished the bits.
bool bitspending = false;

void ThresholdTGARow(void *, int y, const BitmapPixel *pixels, int width)
{
    ThresholdRow(reinterpret_cast<const unsigned char *>(pixels), 4, width, BlackBitsRow(y));
}

// Whether a colour picture of this size could have been made: the black bits
// take its place, but a size the colour picture is refused for (one side
// negative) is refused here too, with the same message.
bool ColourPictureFeasible(int width, int height)
{
    if (width > 0 && height > 0)
        return true;
    BitmapPixel *probe = Create_Bitmap(width, height);
    Destroy_Bitmap(probe);
    return probe != nullptr;
}

// The rest of LoadTGA for a quiet run, once the header has been read.
int LoadTGAQuiet(FILE *fp)
{
    Destroy_Bitmap(image);
    image = nullptr;
    bitspending = false;
    if (!ColourPictureFeasible(options.width, options.height) || !AllocBlackBits(options.width, options.height)) {
        std::fprintf(stderr, "   Failed to create image\n");
        return 0;
    }
    int w = 0, h = 0;
    if (TGA_ReadRows(fp, &w, &h, ThresholdTGARow, nullptr) != 0) {
        std::fprintf(stderr, "   Image read failed\n");
        return 0;
    }
    bitspending = true;
    return 1;
}
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

    if (options.quiet) {
        if (!LoadTGAQuiet(fp.get()))
            return 0;
    } else {
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
    }
    std::snprintf(options.imagename, sizeof options.imagename, "%s", filename);
    return 1;
}

void MakeTestImage(void)
{
    bitspending = false;
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

namespace {

// bwimage and the black bits from image. Integer squares and one comparison:
// black is below 128 squared. Row by row, so that each row goes into the
// bits while it is still in the cache. Returns whether any pixel is black.
bool ThresholdImage(void)
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
    // Without room for the bits the counter scans bwimage instead.
    const bool bits = AllocBlackBits(options.width, options.height);
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
        if (bits)
            ThresholdRow(reinterpret_cast<const unsigned char *>(in), 4, options.width,
                         BlackBitsRow(static_cast<int>(y)));
    }
    if (bits)
        FinishBlackBits(options.invert != 0);
    return darkest < 128;
}

} // namespace

int UpdateImages(void)
{
    bool black;
    if (bitspending) {
        // A quiet run's bits, read straight from the file: the inversion
        // applies to them, as it would to bwimage.
        black = FinishBlackBits(options.invert != 0);
        bitspending = false;
    } else if (image != nullptr) {
        black = ThresholdImage();
    } else {
        black = FinishBlackBits(false);
    }
    if (!black)
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
