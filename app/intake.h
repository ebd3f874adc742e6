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

#endif
