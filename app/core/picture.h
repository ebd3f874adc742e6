/* Pictures in the formats that carry a signature in their first bytes: PNG,
 * TIFF (also BigTIFF), JPEG, PNM (PBM, PGM, PPM) and BMP, each read with the
 * library made for it. TGA has no signature: a file that carries none of
 * these is a TGA file and goes through the TGA reader.
 *
 * A reader delivers the picture the right way up, row by row, to a sink:
 * rows are counted from the top of the picture as it is meant to be seen
 * (orientation tags applied), pixels are 8-bit and opaque (transparency
 * composited over white, deeper samples scaled to 8 bits by rounding). */
#ifndef TALVOR_PICTURE_H
#define TALVOR_PICTURE_H

#include <cstddef>
#include <cstdio>
#include <string>

enum class PictureFormat { TGA, PNG, TIFF, JPEG, PNM, BMP };

/* The format whose signature starts the n bytes at head (as many of the
 * file's first bytes as could be read); TGA when none does. */
PictureFormat SniffPictureFormat(const unsigned char *head, size_t n);

/* Receives a picture from a reader: its size once, then every row once. */
class PictureSink {
public:
    virtual ~PictureSink() = default;

    /* The picture is width x height pixels (both at least 1) as it is seen;
     * depth is the file's bits per pixel, for information. Returns false
     * when the sink cannot hold such a picture, having said why; the reader
     * then stops. */
    virtual bool Begin(int width, int height, int depth) = 0;

    /* Row y of the picture, 0 being the top row: width pixels of `channels`
     * bytes each, 1 = grey, 3 = red, green, blue, 4 = red, green, blue and an
     * alpha byte that plays no part. Every row comes exactly once, in an
     * order of the reader's choosing. */
    virtual void Row(int y, const unsigned char *pixels, int channels) = 0;
};

/* Reads the picture in fp, a file of the given format (not TGA) opened for
 * binary reading at its start, into sink. Returns true when every row was
 * delivered; otherwise false, with the library's reason in *why (left empty
 * when the sink refused the picture). *pages receives the number of pages or
 * images in the file (1 for most); only the first is read. Prints nothing. */
bool ReadPicture(FILE *fp, PictureFormat format, PictureSink *sink, std::string *why, int *pages);

#endif
