// General helpers: clock, terminal mode, text readers, string helpers,
// fixed-width binary I/O, the run-length codec and the numeric helpers.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "helpers.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes B(const std::string &s) { return Bytes(s.begin(), s.end()); }

// A stream over the bytes (or an empty scratch stream), closed at scope end.
struct Stream {
    FILE *f;
    explicit Stream(const std::string &s = "") : f(testutil::MemoryStream(B(s))) {}
    ~Stream() { std::fclose(f); }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    Bytes bytes()
    {
        std::fflush(f);
        Bytes b(static_cast<size_t>(std::ftell(f)));
        std::rewind(f);
        EXPECT_EQ(std::fread(b.data(), 1, b.size(), f), b.size());
        return b;
    }
};

// Puts fd on standard input until scope end, so the runner's terminal is
// never touched.
struct StdinFrom {
    int saved = dup(0);
    explicit StdinFrom(int fd) { EXPECT_EQ(dup2(fd, 0), 0); }
    ~StdinFrom()
    {
        dup2(saved, 0);
        close(saved);
    }
};

// The modes and control characters of two terminal settings are equal
// (the record itself has padding, so it is not compared bytewise).
bool SameSettings(const struct termios &a, const struct termios &b)
{
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag &&
           a.c_lflag == b.c_lflag && std::memcmp(a.c_cc, b.c_cc, sizeof a.c_cc) == 0;
}

} // namespace

TEST(Helpers, GetRunTimeIsWallClockSeconds)
{
    const double before = static_cast<double>(std::time(nullptr));
    const double t = GetRunTime();
    EXPECT_GE(t, before);
    EXPECT_LT(t, static_cast<double>(std::time(nullptr)) + 1);
}

TEST(Helpers, SetKeyboardIOFailsWhenStdinIsNotATerminal)
{
    const int devnull = open("/dev/null", O_RDONLY);
    {
        StdinFrom redirect(devnull);
        EXPECT_EQ(SetKeyboardIO(1), -1);
        EXPECT_EQ(SetKeyboardIO(0), -1);
    }
    close(devnull);
}

// On a pseudo-terminal standing in for standard input: only ICANON is
// cleared, VMIN 1 and VTIME 0 set, so one key is readable at once; switching
// back restores every setting.
TEST(Helpers, SetKeyboardIOSwitchesAPseudoTerminalToSingleKeysAndBack)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(grantpt(master), 0);
    ASSERT_EQ(unlockpt(master), 0);
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    ASSERT_GE(slave, 0);
    struct termios start, now;
    ASSERT_EQ(tcgetattr(slave, &start), 0);
    start.c_lflag |= ICANON | ECHO;
    start.c_cc[VMIN] = 4;
    start.c_cc[VTIME] = 7;
    ASSERT_EQ(tcsetattr(slave, TCSANOW, &start), 0);
    ASSERT_EQ(tcgetattr(slave, &start), 0);
    {
        StdinFrom redirect(slave);
        EXPECT_EQ(SetKeyboardIO(1), 0);
        ASSERT_EQ(tcgetattr(0, &now), 0);
        struct termios want = start;
        want.c_lflag &= ~static_cast<tcflag_t>(ICANON);
        want.c_cc[VMIN] = 1;
        want.c_cc[VTIME] = 0;
        EXPECT_TRUE(SameSettings(now, want));
        EXPECT_TRUE(now.c_lflag & ECHO);

        // A key without a line end arrives (the poll limit only guards a hang).
        ASSERT_EQ(write(master, "x", 1), 1);
        struct pollfd p = {0, POLLIN, 0};
        ASSERT_EQ(poll(&p, 1, 5000), 1);
        char c = 0;
        EXPECT_EQ(read(0, &c, 1), 1);
        EXPECT_EQ(c, 'x');

        EXPECT_EQ(SetKeyboardIO(0), 0);
        ASSERT_EQ(tcgetattr(0, &now), 0);
        EXPECT_TRUE(SameSettings(now, start));
    }
    close(slave);
    close(master);
}

TEST(Helpers, ReadLineEndsAtCrOrLfAndAtMaxlen)
{
    Stream in("ab\r\ncd");
    char buf[16];
    const std::pair<int, const char *> calls[] = {{TRUE, "ab"}, {TRUE, ""}, {FALSE, "cd"}, {FALSE, ""}};
    for (const auto &call : calls) {
        EXPECT_EQ(ReadLine(in.f, buf, 10), call.first);
        EXPECT_STREQ(buf, call.second);
    }
    Stream lines("abcdef\rxy");
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(ReadLine(lines.f, buf, 3), TRUE);
    EXPECT_STREQ(buf, "abc");
    EXPECT_EQ(buf[4], '#'); // maxlen + 1 bytes used
    EXPECT_EQ(std::fgetc(lines.f), 'd');
    EXPECT_EQ(ReadLine(lines.f, buf, 3), TRUE);
    EXPECT_STREQ(buf, "ef");
}

TEST(Helpers, WordAndByteReaders)
{
    char buf[600];
    Stream in("key=value;\xC8rest");
    EXPECT_EQ(ReadUntil(in.f, '=', buf), TRUE);
    EXPECT_STREQ(buf, "key");
    EXPECT_EQ(ReadUntil(in.f, 0xC8, buf), TRUE); // passes ';', finds a byte above 127
    EXPECT_STREQ(buf, "value;");
    EXPECT_EQ(ReadUntil(in.f, -1, buf), FALSE);
    EXPECT_STREQ(buf, "rest");

    // Zero means found; the blank after the word stays unread, as with %s.
    Stream words("alpha  beta\r\n\tgam gamma " + std::string(500, 'w') + " delta");
    EXPECT_EQ(ReadToString(words.f, "gamma"), 0);
    EXPECT_EQ(std::fgetc(words.f), ' ');
    EXPECT_EQ(ReadToString(words.f, "delta"), 0);
    EXPECT_EQ(ReadToString(words.f, "delta"), -2);

    Stream bytes("a\r\nbc0123;z");
    EXPECT_EQ(ReadString(bytes.f, buf, 4), TRUE);
    EXPECT_STREQ(buf, "a\r\nb");
    EXPECT_EQ(ReadString(bytes.f, buf, 0), TRUE);
    EXPECT_EQ(ReadSkip(bytes.f, -2), TRUE);
    EXPECT_EQ(ReadSkip(bytes.f, 2), TRUE);
    EXPECT_EQ(std::fgetc(bytes.f), '1');
    EXPECT_EQ(SkipUntil(bytes.f, ';'), ';');
    EXPECT_EQ(ReadString(bytes.f, buf, 5), FALSE);
    EXPECT_STREQ(buf, "z");
    EXPECT_EQ(SkipUntil(bytes.f, ';'), 0);
    EXPECT_EQ(ReadSkip(bytes.f, 1), FALSE);
}

TEST(Helpers, EchoFileCopiesEveryByte)
{
    testutil::TempDir dir;
    Bytes all;
    for (int b = 0; b < 512; b++)
        all.push_back(static_cast<unsigned char>(b));
    testutil::WriteBytes(dir.file("in"), all);
    Stream out, none;
    EchoFile(dir.file("in").c_str(), out.f);
    EchoFile(dir.file("missing").c_str(), none.f);
    EXPECT_EQ(out.bytes(), all);
    EXPECT_TRUE(none.bytes().empty());
}

TEST(Helpers, StringHelpersTable)
{
    struct Case {
        void (*fn)(char *);
        const char *in, *out;
    };
    const Case cases[] = {
        {RightTrim, "abc   ", "abc"},         {RightTrim, "   ", ""},
        {RightTrim, "a \t\r\n ", "a \t\r\n"},  {RightTrim, "", ""},
        {StrToLower, "Hello, [@`{Z]\xC8", "hello, [@`{z]\xC8"},
        {StrToUpper, "Hello, [@`{z]\xC8", "HELLO, [@`{Z]\xC8"},
        {StringClean, " \t hello world \r\n", "hello world"},
        {StringClean, "ok\xC8", "ok"}, // signed test: byte 200 is negative
        {StringClean, "\x7F\x01\xC8 a \t\x01 b\xFF\x80 \x7F", "a \t\x01 b"},
        {StringClean, " \t\r\n\x7F ", ""},
    };
    for (const auto &cs : cases) {
        char buf[32];
        std::strcpy(buf, cs.in);
        cs.fn(buf);
        EXPECT_STREQ(buf, cs.out) << '"' << cs.in << '"';
    }
    const std::tuple<int, int, int, const char *> copies[] = {
        {1, 3, TRUE, "ell"}, {1, 5, FALSE, ""}, {0, 4, TRUE, "hello"}, {4, 4, TRUE, "o"}, {3, 1, TRUE, ""}};
    for (const auto &cs : copies) {
        char dst[16] = "########";
        EXPECT_EQ(IndexCopy("hello", dst, std::get<0>(cs), std::get<1>(cs)), std::get<2>(cs));
        EXPECT_STREQ(dst, std::get<3>(cs));
    }
}

// Expected bytes least significant first (swap zero on a little-endian
// host); swap non-zero reverses them. 0.1f is 0x3DCCCCCD and 0.1 is
// 0x3FB999999999999A in IEEE 754.
TEST(Helpers, BinaryWritersBytePatterns)
{
    const uint16_t one = 1;
    const bool little = *reinterpret_cast<const unsigned char *>(&one) == 1;
    const std::pair<std::function<int(FILE *, int)>, Bytes> writers[] = {
        {[](FILE *f, int s) { return WriteShort(f, -2, s); }, {0xFE, 0xFF}},
        {[](FILE *f, int s) { return WriteUShort(f, 0xFEDC, s); }, {0xDC, 0xFE}},
        {[](FILE *f, int s) { return WriteInt(f, 0x01020304, s); }, {4, 3, 2, 1}},
        {[](FILE *f, int s) { return WriteUInt(f, 0xA1B2C3D4u, s); }, {0xD4, 0xC3, 0xB2, 0xA1}},
        {[](FILE *f, int s) { return WriteLong(f, -0x11223344, s); }, {0xBC, 0xCC, 0xDD, 0xEE}},
        {[](FILE *f, int s) { return WriteULong(f, 0xF0E0D0C0u, s); }, {0xC0, 0xD0, 0xE0, 0xF0}},
        {[](FILE *f, int s) { return WriteFloat(f, 0.1f, s); }, {0xCD, 0xCC, 0xCC, 0x3D}},
        {[](FILE *f, int s) { return WriteDouble(f, 0.1, s); }, {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F}},
    };
    for (int swap : {0, 1, -7}) {
        for (const auto &w : writers) {
            Stream out;
            EXPECT_EQ(w.first(out.f, swap), TRUE);
            const Bytes &lsb = w.second;
            EXPECT_EQ(out.bytes(), ((swap != 0) == little) ? Bytes(lsb.rbegin(), lsb.rend()) : lsb)
                << "swap " << swap << " width " << lsb.size();
        }
        // A read-only stream takes no writes.
        FILE *ro = std::fopen("/dev/null", "rb");
        EXPECT_EQ(WriteDouble(ro, 1.0, swap), FALSE);
        std::fclose(ro);
    }
    // With too few bytes left a reader fails and leaves the destination alone.
    Stream three("\x01\x02\x03");
    int32_t i = 77;
    EXPECT_EQ(ReadInt(three.f, &i, 0), FALSE);
    EXPECT_EQ(i, 77);
}

// Random values through every width and both byte orders read back equal
// (so the readers decode the writers' patterns above); reading with the
// other order gives the byte-reversed value.
TEST(Helpers, BinaryRoundTripsEveryWidth)
{
    std::mt19937_64 gen(2385u);
    for (int trial = 0; trial < 500; trial++) {
        const uint64_t r = gen();
        const int swap = trial % 2;
        int16_t s = static_cast<int16_t>(r), s2;
        uint16_t us = static_cast<uint16_t>(r >> 16), us2, rev;
        int32_t i = static_cast<int32_t>(r >> 32), i2, l2, ul2;
        uint32_t ui = static_cast<uint32_t>(r), ui2;
        float fl, fl2;
        double d, d2;
        std::memcpy(&fl, &ui, 4); // raw bits: NaNs and denormals included
        std::memcpy(&d, &r, 8);
        Stream io;
        WriteShort(io.f, s, swap), WriteUShort(io.f, us, swap), WriteInt(io.f, i, swap);
        WriteUInt(io.f, ui, swap), WriteLong(io.f, i, swap), WriteULong(io.f, ui, swap);
        WriteFloat(io.f, fl, swap), WriteDouble(io.f, d, swap);
        ASSERT_EQ(io.bytes().size(), 32u);
        std::rewind(io.f);
        ReadShort(io.f, &s2, swap), ReadUShort(io.f, &us2, swap), ReadInt(io.f, &i2, swap);
        ReadUInt(io.f, &ui2, swap), ReadLong(io.f, &l2, swap), ReadLong(io.f, &ul2, swap);
        ReadFloat(io.f, &fl2, swap);
        ASSERT_EQ(ReadDouble(io.f, &d2, swap), TRUE);
        EXPECT_TRUE(s2 == s && us2 == us && i2 == i && ui2 == ui && l2 == i && static_cast<uint32_t>(ul2) == ui);
        EXPECT_EQ(std::memcmp(&fl2, &fl, 4), 0);
        EXPECT_EQ(std::memcmp(&d2, &d, 8), 0);
        std::rewind(io.f);
        ReadUShort(io.f, &rev, !swap);
        EXPECT_EQ(rev, static_cast<uint16_t>(static_cast<uint16_t>(s) << 8 | static_cast<uint16_t>(s) >> 8));
    }
}

namespace {

Bytes Compress(const Bytes &in)
{
    Bytes out(in.size() + in.size() / 127 + 1);
    out.resize(static_cast<size_t>(RLECompress(out.data(), in.data(), static_cast<int>(in.size()))));
    return out;
}

} // namespace

TEST(Helpers, RLECompressByteExamples)
{
    const unsigned char m1 = 0xFF, m2 = 0xFE, m3 = 0xFD, m5 = 0xFB; // -1, -2, -3, -5
    const std::pair<Bytes, Bytes> cases[] = {
        {Bytes(200, 'b'), {127, 'b', 73, 'b'}},
        {B("ABCDDDE"), {m3, 'A', 'B', 'C', 3, 'D', m1, 'E'}},
        {B("ABCDD"), {m5, 'A', 'B', 'C', 'D', 'D'}},
        {B("AB"), {m2, 'A', 'B'}},
        {B("AABB"), {2, 'A', 2, 'B'}},
        {B("ABBBB"), {m1, 'A', 4, 'B'}},
        {Bytes(128, 7), {127, 7, m1, 7}},
        {Bytes(129, 7), {127, 7, 2, 7}},
    };
    for (const auto &cs : cases) {
        EXPECT_EQ(Compress(cs.first), cs.second) << cs.first.size();
        Bytes out(cs.first.size());
        RLEUncompress(out.data(), cs.second.data(), static_cast<int>(out.size()));
        EXPECT_EQ(out, cs.first);
    }
    EXPECT_EQ(RLECompress(nullptr, nullptr, 0), 0);
    // Literals split at 127 bytes: 130 distinct bytes give -127 and -3.
    Bytes distinct;
    for (int i = 0; i < 130; i++)
        distinct.push_back(static_cast<unsigned char>(i));
    const Bytes dc = Compress(distinct);
    EXPECT_TRUE(dc.size() == 132 && dc[0] == 0x81 && dc[128] == m3);
    // A zero count is skipped; a run passing length is written whole.
    const Bytes code = {0, 2, 'x', 0, m1, 'y', 3, 'z'};
    Bytes out(6, '.');
    RLEUncompress(out.data(), code.data(), 4);
    EXPECT_EQ(out, B("xxyzzz"));
}

// Inputs built from runs of the lengths around the codec's limits, with
// bytes from alphabets small enough that neighbouring runs share a value,
// and plain random bytes: every code decodes exactly. Buffers are exactly
// the worst-case size (output) and the input size (decoding), so the
// sanitizer build catches any overrun.
TEST(Helpers, RLERoundTripsAcrossRunAndLiteralBoundaries)
{
    const int lengths[] = {1, 1, 1, 2, 2, 3, 3, 4, 126, 127, 128, 129, 254, 255};
    std::mt19937 gen(4711u);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(gen); };
    for (int trial = 0; trial < 3000; trial++) {
        Bytes in;
        const int alphabet = pick(2, 256);
        for (int s = pick(1, 40); s > 0; s--) {
            const int len = lengths[pick(0, 13)];
            in.insert(in.end(), static_cast<size_t>(len), static_cast<unsigned char>(pick(0, alphabet - 1)));
        }
        if (trial % 10 == 0)
            for (auto &b : in)
                b = static_cast<unsigned char>(gen());
        const Bytes code = Compress(in);
        Bytes out(in.size());
        RLEUncompress(out.data(), code.data(), static_cast<int>(in.size()));
        ASSERT_EQ(out, in) << "trial " << trial;
    }
}

TEST(Helpers, ClipSwapAndMinMax)
{
    const int ints[][5] = {{12, 0, 10, 10, TRUE}, {-1, 0, 10, 0, TRUE}, {0, 0, 10, 0, FALSE}, {10, 0, 10, 10, FALSE}};
    for (const auto &c : ints) {
        int x = c[0];
        EXPECT_EQ(ClipInteger(&x, c[1], c[2]), c[4]);
        EXPECT_EQ(x, c[3]);
    }
    // ClipDouble takes (x, hi, lo); the last row gives them the other way round.
    const double dbls[][5] = {{12, 10, 0, 10, TRUE}, {-0.5, 10, 0, 0, TRUE}, {2.385, 10, 0, 2.385, FALSE}, {5, 0, 10, 10, TRUE}};
    for (const auto &c : dbls) {
        double x = c[0];
        EXPECT_EQ(ClipDouble(&x, c[1], c[2]), c[4]);
        EXPECT_EQ(x, c[3]);
    }
    double nan = std::nan(""), a = 2.385, b = -7.5;
    EXPECT_EQ(ClipDouble(&nan, 10, 0), FALSE);
    EXPECT_TRUE(std::isnan(nan));
    SwapDouble(&a, &b);
    EXPECT_TRUE(a == -7.5 && b == 2.385);

    const XYZ pts[] = {{1, 2, 3}, {-1, 5, 0.5}, {4, -2, 2}, {0, 0, 9}};
    XYZ lo = pts[0], hi = pts[0];
    for (const XYZ &p : pts)
        MinMaxXYZ(p, &lo, &hi);
    EXPECT_TRUE(lo.x == -1 && lo.y == -2 && lo.z == 0.5 && hi.x == 4 && hi.y == 5 && hi.z == 9);
}
