#include "sound.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

void PutBE16(FILE *f, uint32_t v)
{
    std::fputc(static_cast<int>((v >> 8) & 0xFF), f);
    std::fputc(static_cast<int>(v & 0xFF), f);
}

void PutBE32(FILE *f, uint32_t v)
{
    PutBE16(f, v >> 16);
    PutBE16(f, v & 0xFFFF);
}

void PutLE16(FILE *f, uint32_t v)
{
    std::fputc(static_cast<int>(v & 0xFF), f);
    std::fputc(static_cast<int>((v >> 8) & 0xFF), f);
}

void PutLE32(FILE *f, uint32_t v)
{
    PutLE16(f, v & 0xFFFF);
    PutLE16(f, v >> 16);
}

void PutTag(FILE *f, const char *tag)
{
    for (int i = 0; i < 4; i++)
        std::fputc(tag[i], f);
}

/* A 16-bit two's-complement sample as the 16 low bits of an unsigned value. */
uint32_t SampleBits(int s)
{
    return static_cast<uint32_t>(s) & 0xFFFF;
}

/* Truncates toward zero into the 16-bit full scale. Only non-finite data
 * (or data whose range overflows a double) can fall outside +/-32760; it is
 * pinned to the scale, and NaN becomes silence, instead of an undefined
 * conversion. */
int ToSample(double v)
{
    if (std::isnan(v))
        return 0;
    if (v <= -32760.0)
        return -32760;
    if (v >= 32760.0)
        return 32760;
    return static_cast<int>(v);
}

/* Number of samples the header declares: none for n below 1. Sizes are
 * formed modulo 2^32 like the 32-bit fields that hold them. */
uint32_t Count(int n)
{
    return n > 0 ? static_cast<uint32_t>(n) : 0u;
}

/* Writes n samples scaled to +/-32760 about the mid-point of their range,
 * most significant byte first. */
void PutNormalised(FILE *f, const double *samples, int n)
{
    if (n < 1)
        return;
    double lo = samples[0], hi = samples[0];
    for (int i = 1; i < n; i++) {
        if (samples[i] < lo)
            lo = samples[i];
        if (samples[i] > hi)
            hi = samples[i];
    }
    if (!(lo < hi)) {
        lo -= 1;
        hi += 1;
    }
    const double mid = (lo + hi) / 2;
    const double below = std::fabs(lo - mid), above = hi - mid;
    const double half = below > above ? below : above;
    for (int i = 0; i < n; i++)
        PutBE16(f, SampleBits(ToSample((samples[i] - mid) * 32760 / half)));
}

} // namespace

void Write_AIFF(FILE *fptr, const double *samples, int n, int rate)
{
    const uint32_t count = Count(n);
    PutTag(fptr, "FORM");
    PutBE32(fptr, 2 * count + 46);
    PutTag(fptr, "AIFF");
    PutTag(fptr, "COMM");
    PutBE32(fptr, 18);
    PutBE16(fptr, 1);     /* channels */
    PutBE32(fptr, count); /* sample frames */
    PutBE16(fptr, 16);    /* bits per sample */
    /* The rate as an 80-bit IEEE extended number: 0xAC44 is 44100 with
     * exponent 0x400E; halving the exponent gives 22050 and 11025. No other
     * rate is expressed, so every other request is written as 44100. */
    int exponent = 0x0E;
    if (rate == 11025)
        exponent = 0x0C;
    else if (rate == 22050)
        exponent = 0x0D;
    const unsigned char extended[10] = {0x40, static_cast<unsigned char>(exponent), 0xAC, 0x44,
                                        0,    0,                                    0,    0,
                                        0,    0};
    for (unsigned char b : extended)
        std::fputc(b, fptr);
    PutTag(fptr, "SSND");
    PutBE32(fptr, 2 * count + 8);
    PutBE32(fptr, 0); /* offset */
    PutBE32(fptr, 0); /* block size */
    PutNormalised(fptr, samples, n);
}

void Write_AU(FILE *fptr, const double *samples, int n, int rate)
{
    PutTag(fptr, ".snd");
    PutBE32(fptr, 24);            /* header size */
    PutBE32(fptr, 2 * Count(n));  /* data size */
    PutBE32(fptr, 3);             /* encoding: 16-bit linear */
    PutBE32(fptr, static_cast<uint32_t>(rate));
    PutBE32(fptr, 1);             /* channels */
    PutNormalised(fptr, samples, n);
}

void Write_WAVE(FILE *fptr, const float *samples, int n, int rate)
{
    const uint32_t count = Count(n);
    const uint32_t r = static_cast<uint32_t>(rate);
    PutTag(fptr, "RIFF");
    PutLE32(fptr, 2 * count + 36);
    PutTag(fptr, "WAVE");
    PutTag(fptr, "fmt ");
    PutLE32(fptr, 16);    /* chunk size */
    PutLE16(fptr, 1);     /* PCM */
    PutLE16(fptr, 1);     /* channels */
    PutLE32(fptr, r);     /* samples per second */
    PutLE32(fptr, 2 * r); /* bytes per second */
    PutLE16(fptr, 2);     /* block align */
    PutLE16(fptr, 16);    /* bits per sample */
    PutTag(fptr, "data");
    PutLE32(fptr, 2 * count);
    for (int i = 0; i < n; i++) {
        const float s = samples[i];
        int v;
        if (s < -1)
            v = -32760;
        else if (s > 1)
            v = 32760;
        else /* the product of a float and 32760 is exact in double */
            v = ToSample(static_cast<double>(s) * 32760);
        PutLE16(fptr, SampleBits(v));
    }
}
