/* The two libraries seen from C: both umbrella headers compile as C, and a
 * C program links and calls the libraries by their plain names. */
#include <stdio.h>
#include <string.h>

#include "bitmap.h"
#include "util.h"

int main(void)
{
    BitmapPixel *bm = Create_Bitmap(2, 2);
    BitmapPixel red = {255, 0, 0, 255};
    XYZ a = {1, 2, 3}, lo = {0, 0, 0}, hi = {0, 0, 0};
    double x[3] = {0, 1, 2}, y[3] = {1, 3, 2}, ia, slope, r;
    int failures = 0;

    if (bm == NULL)
        return 1;
    Erase_Bitmap(bm, 2, 2, red);
    failures += !Same_BitmapPixel(Get_Pixel(bm, 2, 2, 1, 1), red);
    Destroy_Bitmap(bm);
    MinMaxXYZ(a, &lo, &hi);
    failures += hi.z != 3;
    failures += LinRegress(x, y, 3, &ia, &slope, &r) != 1 || slope != 0.5;
    failures += GetRunTime() <= 0;
    if (failures)
        fprintf(stderr, "%d C API checks failed\n", failures);
    return failures != 0;
}
