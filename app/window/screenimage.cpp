#include "screenimage.h"

#include <cstdio>

#include "settings.h"
#include "window.h"

void ChooseScreenSize(int width, int height, int screenw, int screenh, int *outw, int *outh, int *scale)
{
    int w = width, h = height, s = 1;
    const int wlimit = (3 * screenw) / 4;
    const int hlimit = (3 * screenh) / 4;
    while (w > wlimit) {
        w /= 2;
        h /= 2;
        s *= 2;
    }
    while (h > hlimit) {
        w /= 2;
        h /= 2;
        s *= 2;
    }
    *outw = w;
    *outh = h;
    *scale = s;
}

void BuildScreenImage(int sw, int sh)
{
    std::fprintf(stderr, "Creating screen version\n");
    ChooseScreenSize(options.width, options.height, sw, sh, &options.screenwidth, &options.screenheight,
                     &options.scale);
    std::fprintf(stderr, "   Full screen size: %d x %d\n", sw, sh);
    std::fprintf(stderr, "   Display size:     %d x %d\n", options.screenwidth, options.screenheight);
    std::fprintf(stderr, "   Scale factor:     %d\n", options.scale);

    Destroy_Bitmap(viewimage);
    viewimage = Create_Bitmap(options.screenwidth, options.screenheight);
    if (viewimage == nullptr) {
        std::fprintf(stderr, "   Failed to create image\n");
        CleanExit();
    }
    BiCubicScale(image, options.width, options.height, viewimage, options.screenwidth,
                 options.screenheight);
    const size_t n = Bitmap_PixelCount(options.screenwidth, options.screenheight);
    for (size_t i = 0; i < n; i++) {
        BitmapPixel &p = viewimage[i];
        p.a = 0;
        if (options.invert) {
            p.r = static_cast<unsigned char>(255 - p.r);
            p.g = static_cast<unsigned char>(255 - p.g);
            p.b = static_cast<unsigned char>(255 - p.b);
        }
    }
    options.invert = 0;
}
