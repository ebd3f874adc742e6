/* General helpers: the run-time clock, single-key terminal input, text and
 * fixed-width binary stream readers and writers, a byte run-length codec,
 * in-place string clean-up, clamping and bounding boxes.
 * Streams are opened and closed by the caller; buffers are the caller's and
 * their sizes are never checked. Truth values are TRUE (1) and FALSE (0).
 * Binary widths are fixed: Short 2 bytes; Int, Long and Float 4; Double 8. */
#ifndef UTIL_HELPERS_H
#define UTIL_HELPERS_H

#include <stdint.h>
#include <stdio.h>

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Wall-clock seconds since the epoch, with microsecond resolution (from
 * gettimeofday); subtract two readings for an elapsed time. */
double GetRunTime(void);

/* set non-zero: saves the settings of standard input and switches it to
 * non-canonical input (ICANON cleared, VMIN 1, VTIME 0, echo untouched);
 * set zero: restores the saved settings. Returns tcsetattr's result (0, or -1
 * when standard input is not a terminal or the host has no terminal control). */
int SetKeyboardIO(int set);

/* Reads a line into buf (maxlen + 1 bytes): stops at LF or CR (consumed, not
 * stored), TRUE, or after maxlen stored bytes, TRUE; FALSE at end of file with
 * what was read kept. A CR LF pair ends one line and then an empty one. */
int ReadLine(FILE *fptr, char *buf, int maxlen);

/* Reads into buf up to the byte ch (consumed, not stored): TRUE when found,
 * FALSE at end of file (so always FALSE for ch -1). */
int ReadUntil(FILE *fptr, int ch, char *buf);

/* Reads blank-separated words until one equals word: 0 when found, non-zero
 * (-2) when the input ends first. */
int ReadToString(FILE *fptr, const char *word);

/* Reads exactly n bytes into buf (n + 1 bytes) and terminates it: TRUE, or
 * FALSE at end of file with the bytes read so far kept; n below 1 is TRUE. */
int ReadString(FILE *fptr, char *buf, int n);

/* Discards n bytes: TRUE, or FALSE at end of file; n below 1 is TRUE. */
int ReadSkip(FILE *fptr, int n);

/* Discards bytes up to and including ch: returns ch, or 0 at end of file. */
int SkipUntil(FILE *fptr, int ch);

/* Copies the file named path byte for byte to out; does nothing when the
 * file cannot be opened. */
void EchoFile(const char *path, FILE *out);

/* Removes trailing space characters (only byte 32) from s. */
void RightTrim(char *s);

/* Turns the ASCII letters A-Z of s into a-z; other bytes are unchanged. */
void StrToLower(char *s);

/* Turns the ASCII letters a-z of s into A-Z; other bytes are unchanged. */
void StrToUpper(char *s);

/* Strips from the end every byte that is at most 32 or 127 as a signed char
 * (so 128-255 too), and from the start every byte outside 33-126. */
void StringClean(char *s);

/* Copies src[from..to] inclusive into dst and terminates it: FALSE (dst
 * empty) when to lies beyond the end of src, TRUE otherwise (dst empty when
 * to < from). */
int IndexCopy(const char *src, char *dst, int from, int to);

/* Fixed-width binary readers: one item of 2, 4 or 8 bytes stored into *n,
 * byte order reversed when swap is non-zero (on a little-endian host: swap
 * non-zero reads most significant byte first). TRUE, or FALSE on a short read
 * (then *n is unchanged). Floats and doubles are reversed as raw bytes. */
int ReadShort(FILE *fptr, int16_t *n, int swap);
int ReadUShort(FILE *fptr, uint16_t *n, int swap);
int ReadInt(FILE *fptr, int32_t *n, int swap);
int ReadUInt(FILE *fptr, uint32_t *n, int swap);
int ReadLong(FILE *fptr, int32_t *n, int swap);
int ReadFloat(FILE *fptr, float *n, int swap);
int ReadDouble(FILE *fptr, double *n, int swap);

/* Fixed-width binary writers, the mirror of the readers: TRUE, or FALSE when
 * the item was not written whole. */
int WriteShort(FILE *fptr, int16_t n, int swap);
int WriteUShort(FILE *fptr, uint16_t n, int swap);
int WriteInt(FILE *fptr, int32_t n, int swap);
int WriteUInt(FILE *fptr, uint32_t n, int swap);
int WriteLong(FILE *fptr, int32_t n, int swap);
int WriteULong(FILE *fptr, uint32_t n, int swap);
int WriteFloat(FILE *fptr, float n, int swap);
int WriteDouble(FILE *fptr, double n, int swap);

/* Run-length codes length bytes of input into output and returns the number
 * of bytes written: a count byte 1..127 followed by one byte to repeat, or a
 * count byte -1..-127 (as a signed char) followed by that many literal bytes.
 * output must hold length + length / 127 + 1 bytes. */
int RLECompress(unsigned char *output, const unsigned char *input, int length);

/* Decodes runs from input until at least length bytes have been produced; a
 * zero count byte is skipped. Neither buffer is bounds-checked: a final run
 * is written whole even when it passes length. */
void RLEUncompress(unsigned char *output, const unsigned char *input, int length);

/* Clamps *x into [lo, hi]: TRUE if *x was changed. */
int ClipInteger(int *x, int lo, int hi);

/* Clamps *x into [lo, hi], upper bound first: TRUE if *x was changed; a NaN
 * is left alone (FALSE). */
int ClipDouble(double *x, double hi, double lo);

/* Exchanges *a and *b. */
void SwapDouble(double *a, double *b);

/* Widens the box [*min, *max] component by component to hold p. */
void MinMaxXYZ(XYZ p, XYZ *min, XYZ *max);

#ifdef __cplusplus
}
#endif

#endif
