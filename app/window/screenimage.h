/* The screen image: the picture reduced by a power of two so that the window
 * fits the screen. Interactive mode only. */
#ifndef TALVOR_SCREENIMAGE_H
#define TALVOR_SCREENIMAGE_H

/* The screen image size for an image of width x height on a screen of
 * screenw x screenh: halved (truncating) until the width is at most three
 * quarters of the screen width, then until the height is at most three
 * quarters of the screen height; *scale is the power of two used. */
void ChooseScreenSize(int width, int height, int screenw, int screenh, int *outw, int *outh,
                      int *scale);

/* Rebuilds viewimage from image for a screen of screenw x screenh: chooses
 * the size and scale, resamples, clears alpha and applies a pending -bw
 * inversion (then clears it). Ends the program (status 0) when the memory
 * cannot be had. */
void BuildScreenImage(int screenw, int screenh);

#endif
