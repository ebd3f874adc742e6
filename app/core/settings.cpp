#include "settings.h"

#include <cstring>

OPTIONS options;
const int versionnumber = 101;
char inputname[256];
REGION regionargs;

BitmapPixel *image = nullptr;
unsigned char *bwimage = nullptr;
BitmapPixel *viewimage = nullptr;

BOX *boxlist = nullptr;
int nboxlist = 0;
RESULT *results = nullptr;
int nresults = 0;

void SetDefaultOptions(void)
{
    options.quiet = 0;
    options.debug = 0;
    options.screenwidth = 400;
    options.screenheight = 300;
    options.width = 0;
    options.height = 0;
    options.depth = 0;
    options.scale = 1;
    std::memset(options.imagename, 0, sizeof options.imagename);
    std::strcpy(options.imagename, "no image");
    options.writerequest = 0;
    options.mousebutton = -1;
    options.invert = 0;
    options.noffsets = 10;
    options.processing = 0;
    options.boxstart = -1;
    options.boxend = 6;
    options.boxfactor = 1.2f;
    options.useregion = 0;
    options.left = 0;
    options.right = 100000;
    options.top = 100000;
    options.bottom = 0;

    inputname[0] = '\0';
    regionargs = REGION{0, 100000, 100000, 0};
}
