/* The box overlay: the occupied boxes of the grid in progress, painted over
 * the screen image. */
#ifndef TALVOR_OVERLAY_H
#define TALVOR_OVERLAY_H

/* Draws every box of boxlist clipped to the region, in screen pixels
 * (image pixels / scale): translucent green fills first, then red outlines on
 * boxes wider than 4 screen pixels. Draws nothing in quiet mode. Expects an
 * orthographic projection in screen pixels and blending enabled. */
void DisplayBoxes(void);

#endif
