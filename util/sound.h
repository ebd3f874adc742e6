/* Sound file writers: a whole single-channel, 16-bit file (AIFF, AU or RIFF
 * WAVE) from an array of samples, header first, byte by byte, so the byte
 * order is fixed by the format and not by the host (AIFF and AU big-endian,
 * WAVE little-endian). The caller opens the stream in binary mode and closes
 * it; write errors are not reported. */
#ifndef UTIL_SOUND_H
#define UTIL_SOUND_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes n samples (at least one) as an AIFF file, scaled so that the data's
 * range fills +/-32760 about its mid-point; the header's rate is 11025 or
 * 22050 when asked for, and 44100 for any other rate. */
void Write_AIFF(FILE *fptr, const double *samples, int n, int rate);

/* Writes n samples (at least one) as an AU (.snd) file of 16-bit linear
 * samples at rate, scaled like Write_AIFF. */
void Write_AU(FILE *fptr, const double *samples, int n, int rate);

/* Writes n samples expected in [-1, 1] as a PCM WAVE file at rate: each is
 * clamped to [-1, 1] and written as sample x 32760, truncated toward zero. */
void Write_WAVE(FILE *fptr, const float *samples, int n, int rate);

#ifdef __cplusplus
}
#endif

#endif
