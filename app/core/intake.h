/* Image intake: loading a TGA file or making the blank image, and deriving
 * the black/white image (and, interactively, the screen image) from it. */
#ifndef TALVOR_INTAKE_H
#define TALVOR_INTAKE_H

/* Reads a TGA file into image and sets width, height, depth and imagename.
 * Returns 1 on success, 0 on failure after saying why on standard error. */
int LoadTGA(const char *filename);

/* Replaces image by an opaque white 400 x 300 image named "No Image"; ends the
 * process with status -1 if it cannot be allocated. */
void MakeTestImage(void);

/* Rebuilds bwimage (a pixel is black when r^2 + g^2 + b^2 <= 16383, then
 * complemented if invert is set), warns when it holds no black, builds the
 * screen image through the window in interactive mode, resets a default region and restarts the
 * counter. Returns what BoxCount(0) returns. */
int UpdateImages(void);

/* Complements red, green and blue of every pixel of image (alpha stays). */
void InvertImage(void);

#endif
