#include "helpers.h"

#include <sys/time.h>

#include <algorithm>
#include <cstdio>
#include <cctype>
#include <cstring>
#include <string>

#if defined(__has_include)
#if __has_include(<termios.h>) && __has_include(<unistd.h>)
#define UTIL_HAVE_TERMIOS 1
#include <termios.h>
#include <unistd.h>
#endif
#endif

static_assert(sizeof(float) == 4, "Float fields are 4 bytes wide");
static_assert(sizeof(double) == 8, "Double fields are 8 bytes wide");

namespace {

/* A byte taken as a two's-complement signed char, computed without relying on
 * the implementation-defined narrowing conversion. */
int SignedByte(unsigned char b)
{
    return b > 127 ? static_cast<int>(b) - 256 : static_cast<int>(b);
}

/* Reads one item of sizeof(T) bytes, reversing the bytes when swap is set;
 * the destination is touched only after a complete read. */
template <typename T>
int ReadItem(FILE *fptr, T *n, int swap)
{
    unsigned char b[sizeof(T)];
    if (std::fread(b, sizeof(T), 1, fptr) != 1)
        return FALSE;
    if (swap)
        std::reverse(b, b + sizeof(T));
    std::memcpy(n, b, sizeof(T));
    return TRUE;
}

/* Writes one item of sizeof(T) bytes, reversing a local copy when swap is
 * set. */
template <typename T>
int WriteItem(FILE *fptr, T n, int swap)
{
    unsigned char b[sizeof(T)];
    std::memcpy(b, &n, sizeof(T));
    if (swap)
        std::reverse(b, b + sizeof(T));
    return std::fwrite(b, sizeof(T), 1, fptr) == 1 ? TRUE : FALSE;
}

} // namespace

double GetRunTime(void)
{
    struct timeval tp;
    gettimeofday(&tp, nullptr);
    return static_cast<double>(tp.tv_sec) + static_cast<double>(tp.tv_usec) / 1e6;
}

#ifdef UTIL_HAVE_TERMIOS
/* The settings of standard input as they were when single-key mode was last
 * switched on; all zero until then. */
static struct termios saved_termios;

int SetKeyboardIO(int set)
{
    if (!set)
        return tcsetattr(0, TCSANOW, &saved_termios);
    tcgetattr(0, &saved_termios);
    struct termios raw = saved_termios;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON);
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    return tcsetattr(0, TCSANOW, &raw);
}
#else
int SetKeyboardIO(int set)
{
    (void)set;
    return -1;
}
#endif

namespace {

// Appends bytes to buf (kept terminated) until a byte for which ends(c) is
// true, which is consumed but not stored: TRUE. End of file first: FALSE.
// maxlen stored bytes (when positive) also end the call with TRUE.
template <typename Ends>
int ReadInto(FILE *fptr, char *buf, int maxlen, Ends ends)
{
    int n = 0;
    buf[0] = '\0';
    for (;;) {
        const int c = std::fgetc(fptr);
        if (c == EOF)
            return FALSE;
        if (ends(c))
            return TRUE;
        buf[n++] = static_cast<char>(c);
        buf[n] = '\0';
        if (maxlen > 0 && n >= maxlen)
            return TRUE;
    }
}

} // namespace

int ReadLine(FILE *fptr, char *buf, int maxlen)
{
    // maxlen below 1 still stores one byte before it ends the line.
    return ReadInto(fptr, buf, maxlen < 1 ? 1 : maxlen, [](int c) { return c == '\n' || c == '\r'; });
}

int ReadUntil(FILE *fptr, int ch, char *buf)
{
    return ReadInto(fptr, buf, 0, [ch](int c) { return c == ch; });
}

int ReadToString(FILE *fptr, const char *word)
{
    /* Words are split exactly as fscanf's %s splits them (on isspace), but
     * gathered without a length limit, so no word can overrun a buffer. */
    std::string w;
    for (;;) {
        int c;
        do
            c = std::fgetc(fptr);
        while (c != EOF && std::isspace(c));
        if (c == EOF)
            return EOF - 1; /* fscanf's EOF minus one */
        w.clear();
        while (c != EOF && !std::isspace(c)) {
            w.push_back(static_cast<char>(c));
            c = std::fgetc(fptr);
        }
        /* %s leaves the blank that ended the word unread. */
        if (c != EOF)
            std::ungetc(c, fptr);
        if (std::strcmp(w.c_str(), word) == 0)
            return 0;
    }
}

int ReadString(FILE *fptr, char *buf, int n)
{
    buf[0] = '\0';
    for (int i = 0; i < n; i++) {
        const int c = std::fgetc(fptr);
        if (c == EOF)
            return FALSE;
        buf[i] = static_cast<char>(c);
        buf[i + 1] = '\0';
    }
    return TRUE;
}

int ReadSkip(FILE *fptr, int n)
{
    for (int i = 0; i < n; i++)
        if (std::fgetc(fptr) == EOF)
            return FALSE;
    return TRUE;
}

int SkipUntil(FILE *fptr, int ch)
{
    for (;;) {
        const int c = std::fgetc(fptr);
        if (c == EOF)
            return 0;
        if (c == ch)
            return ch;
    }
}

void EchoFile(const char *path, FILE *out)
{
    FILE *in = std::fopen(path, "rb");
    if (in == nullptr)
        return;
    int c;
    while ((c = std::fgetc(in)) != EOF)
        std::fputc(c, out);
    std::fclose(in);
}

void RightTrim(char *s)
{
    for (size_t i = std::strlen(s); i > 0 && s[i - 1] == ' '; i--)
        s[i - 1] = '\0';
}

void StrToLower(char *s)
{
    for (; *s; s++)
        if (*s >= 'A' && *s <= 'Z')
            *s = static_cast<char>(*s + ('a' - 'A'));
}

void StrToUpper(char *s)
{
    for (; *s; s++)
        if (*s >= 'a' && *s <= 'z')
            *s = static_cast<char>(*s - ('a' - 'A'));
}

void StringClean(char *s)
{
    /* The trailing test takes the byte as a signed char, so bytes 128-255
     * (negative) go as well as blanks, controls and DEL. */
    size_t len = std::strlen(s);
    while (len > 0) {
        const int b = SignedByte(static_cast<unsigned char>(s[len - 1]));
        if (b > 32 && b != 127)
            break;
        s[--len] = '\0';
    }
    size_t lead = 0;
    while (lead < len) {
        const unsigned char b = static_cast<unsigned char>(s[lead]);
        if (b >= 33 && b <= 126)
            break;
        lead++;
    }
    if (lead > 0)
        std::memmove(s, s + lead, len - lead + 1);
}

int IndexCopy(const char *src, char *dst, int from, int to)
{
    dst[0] = '\0';
    const long last = static_cast<long>(std::strlen(src)) - 1;
    if (last < to)
        return FALSE;
    if (to < from)
        return TRUE;
    const size_t count = static_cast<size_t>(to - from) + 1;
    std::memcpy(dst, src + from, count);
    dst[count] = '\0';
    return TRUE;
}

int ReadShort(FILE *fptr, int16_t *n, int swap) { return ReadItem(fptr, n, swap); }
int ReadUShort(FILE *fptr, uint16_t *n, int swap) { return ReadItem(fptr, n, swap); }
int ReadInt(FILE *fptr, int32_t *n, int swap) { return ReadItem(fptr, n, swap); }
int ReadUInt(FILE *fptr, uint32_t *n, int swap) { return ReadItem(fptr, n, swap); }
int ReadLong(FILE *fptr, int32_t *n, int swap) { return ReadItem(fptr, n, swap); }
int ReadFloat(FILE *fptr, float *n, int swap) { return ReadItem(fptr, n, swap); }
int ReadDouble(FILE *fptr, double *n, int swap) { return ReadItem(fptr, n, swap); }

int WriteShort(FILE *fptr, int16_t n, int swap) { return WriteItem(fptr, n, swap); }
int WriteUShort(FILE *fptr, uint16_t n, int swap) { return WriteItem(fptr, n, swap); }
int WriteInt(FILE *fptr, int32_t n, int swap) { return WriteItem(fptr, n, swap); }
int WriteUInt(FILE *fptr, uint32_t n, int swap) { return WriteItem(fptr, n, swap); }
int WriteLong(FILE *fptr, int32_t n, int swap) { return WriteItem(fptr, n, swap); }
int WriteULong(FILE *fptr, uint32_t n, int swap) { return WriteItem(fptr, n, swap); }
int WriteFloat(FILE *fptr, float n, int swap) { return WriteItem(fptr, n, swap); }
int WriteDouble(FILE *fptr, double n, int swap) { return WriteItem(fptr, n, swap); }

int RLECompress(unsigned char *output, const unsigned char *input, int length)
{
    int i = 0, o = 0;
    while (i < length) {
        const unsigned char b = input[i];
        int run = 1;
        while (i + run < length && run < 127 && input[i + run] == b)
            run++;
        if (run >= 2) {
            output[o++] = static_cast<unsigned char>(run);
            output[o++] = b;
            i += run;
            continue;
        }
        /* A literal ends only at the third of three equal bytes (a pair is
         * cheaper inside the literal), or at 127 bytes. At k == i + 1 the
         * first comparison already fails, so input[k - 2] is never read
         * before the literal's start. */
        int k = i + 1;
        while (k < length && k - i < 127) {
            if (input[k] == input[k - 1] && input[k] == input[k - 2])
                break;
            k++;
        }
        /* Hand a trailing pair or triple back to the following repeat run. */
        while (k < length && input[k] == input[k - 1])
            k--;
        output[o++] = static_cast<unsigned char>(i - k); /* -1..-127 as a signed byte */
        std::memcpy(output + o, input + i, static_cast<size_t>(k - i));
        o += k - i;
        i = k;
    }
    return o;
}

void RLEUncompress(unsigned char *output, const unsigned char *input, int length)
{
    int produced = 0;
    while (produced < length) {
        const int c = SignedByte(*input++);
        if (c > 0) {
            std::memset(output + produced, *input++, static_cast<size_t>(c));
            produced += c;
        } else if (c < 0) {
            std::memcpy(output + produced, input, static_cast<size_t>(-c));
            input += -c;
            produced += -c;
        }
    }
}

int ClipInteger(int *x, int lo, int hi)
{
    if (*x < lo) {
        *x = lo;
        return TRUE;
    }
    if (*x > hi) {
        *x = hi;
        return TRUE;
    }
    return FALSE;
}

int ClipDouble(double *x, double hi, double lo)
{
    if (lo > *x) {
        *x = lo;
        return TRUE;
    }
    if (*x > hi) {
        *x = hi;
        return TRUE;
    }
    return FALSE;
}

void SwapDouble(double *a, double *b)
{
    const double t = *a;
    *a = *b;
    *b = t;
}

void MinMaxXYZ(XYZ p, XYZ *min, XYZ *max)
{
    min->x = std::min(min->x, p.x);
    min->y = std::min(min->y, p.y);
    min->z = std::min(min->z, p.z);
    max->x = std::max(max->x, p.x);
    max->y = std::max(max->y, p.y);
    max->z = std::max(max->z, p.z);
}
