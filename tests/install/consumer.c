/* A program built only from an installed Talvor: headers found and linked
 * through pkg-config. It draws a Sierpinski triangle, writes it as an
 * uncompressed TGA, reads it back, and fits a line with the utility library.
 *
 *   consumer OUT.tga    status 0 when every check holds */
#include <stdio.h>

#include <bitmap.h>
#include <util.h>

int main(int argc, char **argv)
{
    enum { N = 256 };
    BitmapPixel black = {0, 0, 0, 255}, white = {255, 255, 255, 255};
    BitmapPixel *bm = Create_Bitmap(N, N), *back = Create_Bitmap(N, N);
    double x[3] = {1, 2, 3}, y[3] = {2, 4, 6}, a, b, r;
    int w = 0, h = 0, depth = 0, x0, y0, failures = 0;
    FILE *f;

    if (argc != 2 || bm == NULL || back == NULL)
        return 2;
    Erase_Bitmap(bm, N, N, white);
    for (y0 = 0; y0 < N; y0++)
        for (x0 = 0; x0 < N; x0++)
            if ((x0 & y0) == 0)
                Draw_Pixel(bm, N, N, x0, y0, black);
    if ((f = fopen(argv[1], "wb")) == NULL)
        return 2;
    Write_Bitmap(f, bm, N, N, 1);
    fclose(f);

    if ((f = fopen(argv[1], "rb")) == NULL)
        return 2;
    TGA_Info(f, &w, &h, &depth);
    failures += w != N || h != N || depth != 24;
    failures += TGA_Read(f, back, &w, &h) != 0;
    fclose(f);
    for (y0 = 0; y0 < N; y0++)
        for (x0 = 0; x0 < N; x0++)
            failures += !Same_BitmapPixel(Get_Pixel(bm, N, N, x0, y0), Get_Pixel(back, N, N, x0, y0));

    failures += LinRegress(x, y, 3, &a, &b, &r) != 1 || b != 2 || a != 0 || r != 1;
    Destroy_Bitmap(bm);
    Destroy_Bitmap(back);
    if (failures)
        fprintf(stderr, "consumer: %d checks failed\n", failures);
    return failures != 0;
}
