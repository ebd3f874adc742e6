#include "pixel.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

static_assert(sizeof(BitmapPixel) == 4, "a pixel is exactly four bytes, handed to OpenGL as is");

size_t Bitmap_PixelCount(int width, int height)
{
    if (width < 1 || height < 1)
        return 0;
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

BitmapPixel *Create_Bitmap(int width, int height)
{
    const size_t n = Bitmap_PixelCount(width, height);
    if (n > SIZE_MAX / sizeof(BitmapPixel))
        return nullptr;
    // malloc(0) may return null; an empty image must still be a valid pointer.
    const size_t bytes = n == 0 ? sizeof(BitmapPixel) : n * sizeof(BitmapPixel);
    return static_cast<BitmapPixel *>(std::malloc(bytes));
}

void Destroy_Bitmap(BitmapPixel *bitmap)
{
    std::free(bitmap);
}

void Erase_Bitmap(BitmapPixel *bitmap, int width, int height, BitmapPixel colour)
{
    const size_t n = Bitmap_PixelCount(width, height);
    for (size_t i = 0; i < n; i++)
        bitmap[i] = colour;
}

static bool Inside(int width, int height, int x, int y)
{
    return x >= 0 && x < width && y >= 0 && y < height;
}

static size_t Index(int width, int x, int y)
{
    return static_cast<size_t>(x) + static_cast<size_t>(y) * static_cast<size_t>(width);
}

int Draw_Pixel(BitmapPixel *bitmap, int width, int height, int x, int y, BitmapPixel colour)
{
    if (!Inside(width, height, x, y))
        return 0;
    bitmap[Index(width, x, y)] = colour;
    return 1;
}

BitmapPixel Get_Pixel(const BitmapPixel *bitmap, int width, int height, int x, int y)
{
    if (!Inside(width, height, x, y))
        return BitmapPixel{0, 0, 0, 255};
    return bitmap[Index(width, x, y)];
}

int Same_BitmapPixel(BitmapPixel p1, BitmapPixel p2)
{
    return p1.r == p2.r && p1.g == p2.g && p1.b == p2.b && p1.a == p2.a;
}

void Flip_Bitmap(BitmapPixel *bitmap, int width, int height, int direction)
{
    if (width < 1 || height < 1)
        return;
    if (direction == 0) {
        for (int j = 0; j < height / 2; j++) {
            BitmapPixel *lo = bitmap + Index(width, 0, j);
            BitmapPixel *hi = bitmap + Index(width, 0, height - 1 - j);
            for (int i = 0; i < width; i++)
                std::swap(lo[i], hi[i]);
        }
    } else if (direction == 1) {
        for (int j = 0; j < height; j++) {
            BitmapPixel *row = bitmap + Index(width, 0, j);
            for (int i = 0; i < width / 2; i++)
                std::swap(row[i], row[width - 1 - i]);
        }
    }
}

void Draw_Line(BitmapPixel *bitmap, int width, int height, int x1, int y1, int x2, int y2,
               BitmapPixel colour)
{
    // Differences in 64 bits: the ends may lie anywhere in the int range.
    const double dx = static_cast<double>(static_cast<int64_t>(x2) - x1);
    const double dy = static_cast<double>(static_cast<int64_t>(y2) - y1);
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length <= 0) {
        Draw_Pixel(bitmap, width, height, x1, y1, colour);
        return;
    }
    for (double t = 0; t <= 2 * length; t += 1) {
        const double mu = t * 0.5;
        const double fx = std::trunc(dx * mu / length + x1);
        const double fy = std::trunc(mu * dy / length + y1);
        // Samples beyond the int range are outside every image.
        if (fx < 0 || fy < 0 || fx >= width || fy >= height)
            continue;
        Draw_Pixel(bitmap, width, height, static_cast<int>(fx), static_cast<int>(fy), colour);
    }
}

static unsigned char ClampChannel(double v)
{
    // A NaN factor makes every product NaN; it is taken as 0 rather than
    // converted, which would be undefined.
    if (!(v >= 0))
        return 0;
    if (v > 255)
        return 255;
    return static_cast<unsigned char>(v);
}

BitmapPixel Scale_Pixel(BitmapPixel pixel, double factor)
{
    return BitmapPixel{ClampChannel(pixel.r * factor), ClampChannel(pixel.g * factor),
                       ClampChannel(pixel.b * factor), ClampChannel(pixel.a * factor)};
}

static unsigned char ClampInt(int v)
{
    if (v < 0)
        return 0;
    if (v > 255)
        return 255;
    return static_cast<unsigned char>(v);
}

BitmapPixel YUV_to_Bitmap(int y, int u, int v)
{
    const double du = static_cast<double>(u) - 128;
    const double dv = static_cast<double>(v) - 128;
    // Truncated toward zero first, clamped afterwards; clamping the double
    // before conversion keeps absurd inputs from overflowing the int.
    auto toint = [](double x) {
        if (x < -1000)
            return -1000;
        if (x > 1000)
            return 1000;
        return static_cast<int>(x);
    };
    const int r = toint(y + 1.370705 * dv);
    const int g = toint(y - 0.698001 * dv - 0.337633 * du);
    const int b = toint(y + 1.732446 * du);
    return BitmapPixel{ClampInt(r), ClampInt(g), ClampInt(b), 0};
}
