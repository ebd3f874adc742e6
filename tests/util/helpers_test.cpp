// General helpers: clock, terminal mode, text readers, string helpers,
// fixed-width binary I/O, the run-length codec and the numeric helpers.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "helpers.h"
#include "testutil.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes B(const std::string &s)
{
    return Bytes(s.begin(), s.end());
}

// A readable stream over the bytes, closed when the object goes.
struct In {
    FILE *f;
    explicit In(const Bytes &b) : f(testutil::MemoryStream(b)) {}
    explicit In(const std::string &s) : In(B(s)) {}
    ~In() { std::fclose(f); }
    In(const In &) = delete;
    In &operator=(const In &) = delete;
};

// A scratch stream for writers; bytes() returns everything written so far.
struct Out {
    FILE *f = std::tmpfile();
    ~Out() { std::fclose(f); }
    Out() = default;
    Out(const Out &) = delete;
    Out &operator=(const Out &) = delete;
    Bytes bytes()
    {
        std::fflush(f);
        const long end = std::ftell(f);
        Bytes b(static_cast<size_t>(end));
        std::rewind(f);
        EXPECT_EQ(std::fread(b.data(), 1, b.size(), f), b.size());
        return b;
    }
};

bool HostIsLittleEndian()
{
    const uint16_t one = 1;
    unsigned char b[2];
    std::memcpy(b, &one, 2);
    return b[0] == 1;
}

// The bytes a writer must produce: least significant first for swap zero on a
// little-endian host, reversed for swap non-zero (and the other way round on a
// big-endian host).
Bytes Expected(const Bytes &lsb_first, int swap)
{
    const bool reversed = (swap != 0) == HostIsLittleEndian();
    return reversed ? Bytes(lsb_first.rbegin(), lsb_first.rend()) : lsb_first;
}

} // namespace

// ---------------------------------------------------------------- clock

TEST(Helpers, GetRunTimeIsWallClockSecondsWithMicroseconds)
{
    const double before = static_cast<double>(std::time(nullptr));
    const double t = GetRunTime();
    const double after = static_cast<double>(std::time(nullptr));
    EXPECT_GE(t, before);
    EXPECT_LT(t, after + 1);
    // Sub-second digits are present: not every reading is a whole second.
    bool fractional = false;
    for (int i = 0; i < 100 && !fractional; i++) {
        const double r = GetRunTime();
        fractional = r != std::floor(r);
    }
    EXPECT_TRUE(fractional);
}

// ---------------------------------------------------------------- terminal

namespace {

// Puts fd on standard input for the object's lifetime and then puts the
// original standard input back, so the test runner's terminal is never
// touched.
class StdinFrom {
public:
    explicit StdinFrom(int fd) : saved_(dup(0)) { EXPECT_EQ(dup2(fd, 0), 0); }
    ~StdinFrom()
    {
        dup2(saved_, 0);
        close(saved_);
    }
    StdinFrom(const StdinFrom &) = delete;
    StdinFrom &operator=(const StdinFrom &) = delete;

private:
    int saved_;
};

// A pseudo-terminal pair, closed when the object goes.
struct Pty {
    int master = -1, slave = -1;
    Pty()
    {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        if (master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0)
            slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    }
    ~Pty()
    {
        if (slave >= 0)
            close(slave);
        if (master >= 0)
            close(master);
    }
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;
};

bool Readable(int fd, int timeout_ms)
{
    struct pollfd p = {fd, POLLIN, 0};
    return poll(&p, 1, timeout_ms) == 1 && (p.revents & POLLIN);
}

void ExpectSameSettings(const struct termios &a, const struct termios &b)
{
    EXPECT_EQ(a.c_iflag, b.c_iflag);
    EXPECT_EQ(a.c_oflag, b.c_oflag);
    EXPECT_EQ(a.c_cflag, b.c_cflag);
    EXPECT_EQ(a.c_lflag, b.c_lflag);
    for (int i = 0; i < NCCS; i++)
        EXPECT_EQ(a.c_cc[i], b.c_cc[i]) << "c_cc[" << i << "]";
}

} // namespace

TEST(Helpers, SetKeyboardIOFailsWhenStdinIsNotATerminal)
{
    const int devnull = open("/dev/null", O_RDONLY);
    ASSERT_GE(devnull, 0);
    {
        StdinFrom redirect(devnull);
        EXPECT_EQ(SetKeyboardIO(1), -1);
        EXPECT_EQ(SetKeyboardIO(0), -1);
    }
    close(devnull);
}

// On a pseudo-terminal standing in for standard input: single-key mode
// clears only ICANON and sets VMIN 1, VTIME 0, so a key without a line end
// is readable at once; switching back restores every setting.
TEST(Helpers, SetKeyboardIOSwitchesAPseudoTerminalToSingleKeysAndBack)
{
    Pty pty;
    ASSERT_GE(pty.slave, 0) << "no pseudo-terminal available";
    struct termios start;
    ASSERT_EQ(tcgetattr(pty.slave, &start), 0);
    start.c_lflag |= ICANON | ECHO;
    start.c_cc[VMIN] = 4;
    start.c_cc[VTIME] = 7;
    ASSERT_EQ(tcsetattr(pty.slave, TCSANOW, &start), 0);
    ASSERT_EQ(tcgetattr(pty.slave, &start), 0);

    StdinFrom redirect(pty.slave);
    ASSERT_EQ(SetKeyboardIO(1), 0);
    struct termios now;
    ASSERT_EQ(tcgetattr(0, &now), 0);
    struct termios want = start;
    want.c_lflag &= ~static_cast<tcflag_t>(ICANON);
    want.c_cc[VMIN] = 1;
    want.c_cc[VTIME] = 0;
    ExpectSameSettings(now, want);
    EXPECT_TRUE(now.c_lflag & ECHO);

    // One byte, no line end: delivered (the poll limit only guards a hang).
    ASSERT_EQ(write(pty.master, "x", 1), 1);
    ASSERT_TRUE(Readable(0, 5000));
    char c = 0;
    ASSERT_EQ(read(0, &c, 1), 1);
    EXPECT_EQ(c, 'x');

    ASSERT_EQ(SetKeyboardIO(0), 0);
    ASSERT_EQ(tcgetattr(0, &now), 0);
    ExpectSameSettings(now, start);

    // Canonical again: a byte is held back until its line ends.
    ASSERT_EQ(write(pty.master, "y", 1), 1);
    EXPECT_FALSE(Readable(0, 200));
    ASSERT_EQ(write(pty.master, "\n", 1), 1);
    ASSERT_TRUE(Readable(0, 5000));
    char line[4] = {};
    EXPECT_EQ(read(0, line, sizeof line), 2);
    EXPECT_STREQ(line, "y\n");

    // Two captures in a row save the already modified settings: restoring
    // then keeps single-key mode, which is why the calls must be paired.
    ASSERT_EQ(SetKeyboardIO(1), 0);
    ASSERT_EQ(SetKeyboardIO(1), 0);
    ASSERT_EQ(SetKeyboardIO(0), 0);
    ASSERT_EQ(tcgetattr(0, &now), 0);
    EXPECT_FALSE(now.c_lflag & ICANON);
}

// ---------------------------------------------------------------- text input

TEST(Helpers, ReadLineEndsAtCrOrLfSoCrLfGivesAnEmptyLine)
{
    In in(B("ab\r\ncd"));
    char buf[16];
    EXPECT_EQ(ReadLine(in.f, buf, 10), TRUE);
    EXPECT_STREQ(buf, "ab");
    EXPECT_EQ(ReadLine(in.f, buf, 10), TRUE);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(ReadLine(in.f, buf, 10), FALSE);
    EXPECT_STREQ(buf, "cd");
    EXPECT_EQ(ReadLine(in.f, buf, 10), FALSE);
    EXPECT_STREQ(buf, "");
}

TEST(Helpers, ReadLineLinesTable)
{
    struct Case {
        const char *input;
        std::vector<std::pair<int, std::string>> calls; // (result, buffer)
    };
    const Case cases[] = {
        {"one\ntwo\n", {{TRUE, "one"}, {TRUE, "two"}, {FALSE, ""}}},
        {"one\rtwo\r", {{TRUE, "one"}, {TRUE, "two"}, {FALSE, ""}}},
        {"\n\r\n", {{TRUE, ""}, {TRUE, ""}, {TRUE, ""}, {FALSE, ""}}},
        {"", {{FALSE, ""}}},
        {"tab\tand  blanks\x01\xC8\n", {{TRUE, "tab\tand  blanks\x01\xC8"}, {FALSE, ""}}},
    };
    for (const auto &cs : cases) {
        In in(std::string(cs.input));
        for (const auto &call : cs.calls) {
            char buf[64];
            EXPECT_EQ(ReadLine(in.f, buf, 60), call.first) << cs.input;
            EXPECT_EQ(std::string(buf), call.second) << cs.input;
        }
    }
}

TEST(Helpers, ReadLineStopsAfterMaxlenBytesWithoutReadingOn)
{
    In in(B("abcdef\nxy"));
    char buf[8];
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(ReadLine(in.f, buf, 3), TRUE);
    EXPECT_STREQ(buf, "abc");
    EXPECT_EQ(buf[4], '#'); // maxlen + 1 bytes used, no more
    EXPECT_EQ(std::fgetc(in.f), 'd');
    EXPECT_EQ(ReadLine(in.f, buf, 3), TRUE);
    EXPECT_STREQ(buf, "ef");
    EXPECT_EQ(ReadLine(in.f, buf, 3), FALSE);
    EXPECT_STREQ(buf, "xy");
}

TEST(Helpers, ReadUntilConsumesTheTerminator)
{
    In in(B("key=value;\xC8rest"));
    char buf[32];
    EXPECT_EQ(ReadUntil(in.f, '=', buf), TRUE);
    EXPECT_STREQ(buf, "key");
    EXPECT_EQ(ReadUntil(in.f, ';', buf), TRUE);
    EXPECT_STREQ(buf, "value");
    EXPECT_EQ(ReadUntil(in.f, 0xC8, buf), TRUE); // a byte above 127
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(ReadUntil(in.f, ';', buf), FALSE);
    EXPECT_STREQ(buf, "rest");

    // Line ends are ordinary data; asking for end of file reads all, FALSE.
    In all(B("a\r\nb"));
    EXPECT_EQ(ReadUntil(all.f, -1, buf), FALSE);
    EXPECT_STREQ(buf, "a\r\nb");
}

TEST(Helpers, ReadToStringReturnsZeroWhenFound)
{
    const std::string long_word(500, 'w');
    In in("alpha  beta\r\n\tgam gamma" + std::string(" ") + long_word + " delta\n");
    EXPECT_EQ(ReadToString(in.f, "gamma"), 0);
    // Like fscanf's %s, the blank after the word is left unread.
    EXPECT_EQ(std::fgetc(in.f), ' ');
    EXPECT_EQ(ReadToString(in.f, "delta"), 0);
    EXPECT_EQ(ReadToString(in.f, "delta"), -2);

    In missing(B("one two three\n"));
    EXPECT_EQ(ReadToString(missing.f, "tw"), -2);
    In empty(B(""));
    EXPECT_EQ(ReadToString(empty.f, "x"), -2);
}

TEST(Helpers, ReadStringReadsExactlyNBytes)
{
    In in(B("a\r\nbcdef"));
    char buf[16];
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(ReadString(in.f, buf, 4), TRUE);
    EXPECT_STREQ(buf, "a\r\nb");
    EXPECT_EQ(ReadString(in.f, buf, 0), TRUE);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(ReadString(in.f, buf, -3), TRUE);
    EXPECT_EQ(std::fgetc(in.f), 'c'); // nothing consumed by n below 1
    EXPECT_EQ(ReadString(in.f, buf, 10), FALSE);
    EXPECT_STREQ(buf, "def");
}

TEST(Helpers, ReadSkipAndSkipUntil)
{
    In in(B("0123456789;tail"));
    EXPECT_EQ(ReadSkip(in.f, 3), TRUE);
    EXPECT_EQ(std::fgetc(in.f), '3');
    EXPECT_EQ(ReadSkip(in.f, 0), TRUE);
    EXPECT_EQ(ReadSkip(in.f, -2), TRUE);
    EXPECT_EQ(std::fgetc(in.f), '4');
    EXPECT_EQ(SkipUntil(in.f, ';'), ';');
    EXPECT_EQ(std::fgetc(in.f), 't');
    EXPECT_EQ(SkipUntil(in.f, ';'), 0);
    In shortin(B("ab"));
    EXPECT_EQ(ReadSkip(shortin.f, 3), FALSE);
}

TEST(Helpers, EchoFileCopiesEveryByte)
{
    testutil::TempDir dir;
    Bytes all;
    for (int i = 0; i < 3; i++)
        for (int b = 0; b < 256; b++)
            all.push_back(static_cast<unsigned char>(b));
    testutil::WriteBytes(dir.file("in.bin"), all);
    Out out;
    EchoFile(dir.file("in.bin").c_str(), out.f);
    EXPECT_EQ(out.bytes(), all);

    Out none;
    EchoFile(dir.file("missing").c_str(), none.f);
    EXPECT_TRUE(none.bytes().empty());
}

// ---------------------------------------------------------------- strings

TEST(Helpers, RightTrimRemovesOnlyTrailingSpaces)
{
    const std::pair<const char *, const char *> cases[] = {
        {"abc   ", "abc"}, {"   ", ""},       {"", ""},          {" a b ", " a b"},
        {"a \t ", "a \t"}, {"x\r\n", "x\r\n"}, {"no", "no"},
    };
    for (const auto &cs : cases) {
        char buf[32];
        std::strcpy(buf, cs.first);
        RightTrim(buf);
        EXPECT_STREQ(buf, cs.second) << '"' << cs.first << '"';
    }
}

TEST(Helpers, CaseChangesTouchOnlyAsciiLetters)
{
    for (int b = 1; b < 256; b++) {
        char lower[2] = {static_cast<char>(b), 0}, upper[2] = {static_cast<char>(b), 0};
        StrToLower(lower);
        StrToUpper(upper);
        const int want_lower = (b >= 'A' && b <= 'Z') ? b + 32 : b;
        const int want_upper = (b >= 'a' && b <= 'z') ? b - 32 : b;
        EXPECT_EQ(static_cast<unsigned char>(lower[0]), want_lower) << b;
        EXPECT_EQ(static_cast<unsigned char>(upper[0]), want_upper) << b;
    }
    char s[] = "Hello, World [@`{]";
    StrToLower(s);
    EXPECT_STREQ(s, "hello, world [@`{]");
    StrToUpper(s);
    EXPECT_STREQ(s, "HELLO, WORLD [@`{]");
    char empty[] = "";
    StrToLower(empty);
    StrToUpper(empty);
    EXPECT_STREQ(empty, "");
}

TEST(Helpers, StringCleanStripsBothEnds)
{
    const std::pair<const char *, const char *> cases[] = {
        {" \t hello world \r\n", "hello world"},
        {"ok\xC8", "ok"},          // signed test: byte 200 is negative
        {"ok\xFF\x80 \x7F", "ok"}, // 255, 128, blank, DEL
        {"\x7F\x01\xC8 abc", "abc"},
        {"a \t\x01 b", "a \t\x01 b"}, // interior untouched
        {" \t\r\n\x7F ", ""},
        {"", ""},
        {"~!", "~!"},
    };
    for (const auto &cs : cases) {
        char buf[32];
        std::strcpy(buf, cs.first);
        StringClean(buf);
        EXPECT_STREQ(buf, cs.second) << '"' << cs.first << '"';
    }
}

TEST(Helpers, IndexCopyCopiesInclusiveRange)
{
    struct Case {
        const char *src;
        int from, to, result;
        const char *dst;
    };
    const Case cases[] = {
        {"hello", 1, 3, TRUE, "ell"}, {"hello", 1, 5, FALSE, ""},  {"hello", 0, 4, TRUE, "hello"},
        {"hello", 2, 2, TRUE, "l"},   {"hello", 3, 1, TRUE, ""},   {"", 0, 0, FALSE, ""},
        {"hello", 4, 4, TRUE, "o"},
    };
    for (const auto &cs : cases) {
        char dst[16];
        std::memset(dst, '#', sizeof dst);
        EXPECT_EQ(IndexCopy(cs.src, dst, cs.from, cs.to), cs.result) << cs.src << cs.from << cs.to;
        EXPECT_STREQ(dst, cs.dst) << cs.src << cs.from << cs.to;
    }
}

// ---------------------------------------------------------------- binary I/O

// Bytes of each writer, least significant first; 0.1f is 0x3DCCCCCD and 0.1
// is 0x3FB999999999999A in IEEE 754.
TEST(Helpers, BinaryWritersProduceFixedWidthBytePatterns)
{
    struct Case {
        const char *name;
        std::function<int(FILE *, int)> write;
        Bytes lsb_first;
    };
    const Case cases[] = {
        {"WriteShort", [](FILE *f, int s) { return WriteShort(f, -2, s); }, {0xFE, 0xFF}},
        {"WriteShort", [](FILE *f, int s) { return WriteShort(f, 0x1234, s); }, {0x34, 0x12}},
        {"WriteUShort", [](FILE *f, int s) { return WriteUShort(f, 0xFEDC, s); }, {0xDC, 0xFE}},
        {"WriteInt", [](FILE *f, int s) { return WriteInt(f, 0x01020304, s); }, {4, 3, 2, 1}},
        {"WriteInt", [](FILE *f, int s) { return WriteInt(f, -2, s); }, {0xFE, 0xFF, 0xFF, 0xFF}},
        {"WriteUInt", [](FILE *f, int s) { return WriteUInt(f, 0xA1B2C3D4u, s); }, {0xD4, 0xC3, 0xB2, 0xA1}},
        {"WriteLong", [](FILE *f, int s) { return WriteLong(f, 0x11223344, s); }, {0x44, 0x33, 0x22, 0x11}},
        {"WriteULong", [](FILE *f, int s) { return WriteULong(f, 0xF0E0D0C0u, s); }, {0xC0, 0xD0, 0xE0, 0xF0}},
        {"WriteFloat", [](FILE *f, int s) { return WriteFloat(f, 0.1f, s); }, {0xCD, 0xCC, 0xCC, 0x3D}},
        {"WriteDouble",
         [](FILE *f, int s) { return WriteDouble(f, 0.1, s); },
         {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F}},
    };
    for (const auto &cs : cases)
        for (int swap : {0, 1, -7}) {
            Out out;
            EXPECT_EQ(cs.write(out.f, swap), TRUE);
            EXPECT_EQ(out.bytes(), Expected(cs.lsb_first, swap)) << cs.name << " swap " << swap;
        }
}

TEST(Helpers, BinaryReadersDecodeBytePatterns)
{
    const Bytes two = {0x01, 0x80};
    const Bytes four = {0x01, 0x02, 0x03, 0x84};
    const Bytes eight = {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F};
    for (int swap : {0, 1}) {
        {
            In in(Expected(two, swap));
            int16_t s = 0;
            EXPECT_EQ(ReadShort(in.f, &s, swap), TRUE);
            EXPECT_EQ(s, -32767);
        }
        {
            In in(Expected(two, swap));
            uint16_t s = 0;
            EXPECT_EQ(ReadUShort(in.f, &s, swap), TRUE);
            EXPECT_EQ(s, 0x8001);
        }
        {
            In in(Expected(four, swap));
            int32_t i = 0, l = 0;
            uint32_t ui = 0;
            float fl = 0;
            EXPECT_EQ(ReadInt(in.f, &i, swap), TRUE);
            std::rewind(in.f);
            EXPECT_EQ(ReadLong(in.f, &l, swap), TRUE);
            std::rewind(in.f);
            EXPECT_EQ(ReadUInt(in.f, &ui, swap), TRUE);
            std::rewind(in.f);
            EXPECT_EQ(ReadFloat(in.f, &fl, swap), TRUE);
            EXPECT_EQ(i, static_cast<int32_t>(-0x7BFCFDFF)); // 0x84030201
            EXPECT_EQ(l, i);
            EXPECT_EQ(ui, 0x84030201u);
            uint32_t bits;
            std::memcpy(&bits, &fl, 4);
            EXPECT_EQ(bits, 0x84030201u);
        }
        {
            In in(Expected(eight, swap));
            double d = 0;
            EXPECT_EQ(ReadDouble(in.f, &d, swap), TRUE);
            EXPECT_EQ(d, 0.1);
        }
    }
}

// Every width: what is written is read back with the same swap, and with
// the other swap the bytes come back reversed. Float and double NaN payloads
// survive because they move as raw bytes.
TEST(Helpers, BinaryRoundTripsEveryWidth)
{
    std::mt19937 gen(2385u);
    auto bits32 = [&] { return static_cast<uint32_t>(gen()); };
    for (int trial = 0; trial < 300; trial++)
        for (int swap : {0, 1}) {
            const uint32_t r1 = bits32(), r2 = bits32();
            const uint64_t r64 = (static_cast<uint64_t>(r1) << 32) | r2;
            const int16_t s = static_cast<int16_t>(r1 & 0xFFFF);
            const uint16_t us = static_cast<uint16_t>(r2 >> 16);
            const int32_t i = static_cast<int32_t>(r1 >> 1) - static_cast<int32_t>(r2 >> 1);
            float fl;
            double d;
            const uint32_t flbits = trial == 0 ? 0x7FC12345u : r2;
            const uint64_t dbits = trial == 0 ? 0x7FF0000000C0FFEEull : r64;
            std::memcpy(&fl, &flbits, 4);
            std::memcpy(&d, &dbits, 8);

            Out out;
            ASSERT_EQ(WriteShort(out.f, s, swap), TRUE);
            ASSERT_EQ(WriteUShort(out.f, us, swap), TRUE);
            ASSERT_EQ(WriteInt(out.f, i, swap), TRUE);
            ASSERT_EQ(WriteUInt(out.f, r1, swap), TRUE);
            ASSERT_EQ(WriteLong(out.f, i, swap), TRUE);
            ASSERT_EQ(WriteULong(out.f, r2, swap), TRUE);
            ASSERT_EQ(WriteFloat(out.f, fl, swap), TRUE);
            ASSERT_EQ(WriteDouble(out.f, d, swap), TRUE);
            ASSERT_EQ(out.bytes().size(), 2u + 2 + 4 + 4 + 4 + 4 + 4 + 8);
            std::rewind(out.f);

            int16_t s2;
            uint16_t us2;
            int32_t i2, l2, ul2;
            uint32_t ui2;
            float fl2;
            double d2;
            ASSERT_EQ(ReadShort(out.f, &s2, swap), TRUE);
            ASSERT_EQ(ReadUShort(out.f, &us2, swap), TRUE);
            ASSERT_EQ(ReadInt(out.f, &i2, swap), TRUE);
            ASSERT_EQ(ReadUInt(out.f, &ui2, swap), TRUE);
            ASSERT_EQ(ReadLong(out.f, &l2, swap), TRUE);
            ASSERT_EQ(ReadLong(out.f, &ul2, swap), TRUE); // no unsigned Long reader
            ASSERT_EQ(ReadFloat(out.f, &fl2, swap), TRUE);
            ASSERT_EQ(ReadDouble(out.f, &d2, swap), TRUE);
            EXPECT_EQ(s2, s);
            EXPECT_EQ(us2, us);
            EXPECT_EQ(i2, i);
            EXPECT_EQ(ui2, r1);
            EXPECT_EQ(l2, i);
            EXPECT_EQ(static_cast<uint32_t>(ul2), r2);
            uint32_t flbits2;
            uint64_t dbits2;
            std::memcpy(&flbits2, &fl2, 4);
            std::memcpy(&dbits2, &d2, 8);
            EXPECT_EQ(flbits2, flbits);
            EXPECT_EQ(dbits2, dbits);

            // Read with the opposite swap: byte-reversed values.
            std::rewind(out.f);
            uint16_t rs;
            ASSERT_EQ(ReadUShort(out.f, &rs, !swap), TRUE);
            const uint16_t us_s = static_cast<uint16_t>(s);
            EXPECT_EQ(rs, static_cast<uint16_t>((us_s >> 8) | (us_s << 8)));
        }
}

TEST(Helpers, BinaryShortReadsAndFailedWritesReturnFalse)
{
    In in(B("\x01\x02\x03"));
    int32_t i = 77;
    EXPECT_EQ(ReadInt(in.f, &i, 0), FALSE);
    EXPECT_EQ(i, 77);
    In in2(B("\x01\x02\x03\x04\x05\x06\x07"));
    double d = 2.385;
    EXPECT_EQ(ReadDouble(in2.f, &d, 1), FALSE);
    EXPECT_EQ(d, 2.385);
    In in3(B("\x01"));
    int16_t s = 5;
    EXPECT_EQ(ReadShort(in3.f, &s, 0), FALSE);
    EXPECT_EQ(s, 5);

    // A stream opened for reading only takes no writes.
    FILE *ro = std::fopen("/dev/null", "rb");
    ASSERT_NE(ro, nullptr);
    EXPECT_EQ(WriteShort(ro, 1, 0), FALSE);
    EXPECT_EQ(WriteInt(ro, 1, 1), FALSE);
    EXPECT_EQ(WriteDouble(ro, 1.0, 0), FALSE);
    std::fclose(ro);
}

// ---------------------------------------------------------------- RLE

namespace {

Bytes Compress(const Bytes &in)
{
    Bytes out(in.size() + in.size() / 127 + 1);
    const int n = RLECompress(out.data(), in.data(), static_cast<int>(in.size()));
    out.resize(static_cast<size_t>(n));
    return out;
}

// Independent reading of the code: counts 1..127 repeat one byte, -1..-127
// (as signed bytes) copy literals. Reports whether the stream is well formed
// and decodes to exactly `length` bytes using all of it.
bool WellFormed(const Bytes &code, size_t length, Bytes *decoded)
{
    size_t p = 0;
    decoded->clear();
    while (p < code.size()) {
        const int c = code[p] < 128 ? code[p] : code[p] - 256;
        if (c == 0 || c == -128)
            return false;
        p++;
        if (c > 0) {
            if (p >= code.size())
                return false;
            decoded->insert(decoded->end(), static_cast<size_t>(c), code[p++]);
        } else {
            if (p + static_cast<size_t>(-c) > code.size())
                return false;
            decoded->insert(decoded->end(), code.begin() + static_cast<long>(p),
                            code.begin() + static_cast<long>(p) - c);
            p += static_cast<size_t>(-c);
        }
    }
    return decoded->size() == length;
}

} // namespace

// Count bytes are written here as signed values: -3 is 0xFD.
TEST(Helpers, RLECompressByteExamples)
{
    auto S = [](int c) { return static_cast<unsigned char>(c & 0xFF); };
    struct Case {
        Bytes input, code;
    };
    const Case cases[] = {
        {Bytes(200, 'b'), {127, 'b', 73, 'b'}},
        {B("ABCDDDE"), {S(-3), 'A', 'B', 'C', 3, 'D', S(-1), 'E'}},
        {B("ABCDD"), {S(-5), 'A', 'B', 'C', 'D', 'D'}},
        {B("AB"), {S(-2), 'A', 'B'}},
        {B("AABB"), {2, 'A', 2, 'B'}},
        {B("A"), {S(-1), 'A'}},
        {B("AAAB"), {3, 'A', S(-1), 'B'}},
        {B("ABBBB"), {S(-1), 'A', 4, 'B'}},
        {B("ABBCCCD"), {S(-3), 'A', 'B', 'B', 3, 'C', S(-1), 'D'}},
        {Bytes(127, 7), {127, 7}},
        {Bytes(128, 7), {127, 7, S(-1), 7}},
        {Bytes(129, 7), {127, 7, 2, 7}},
        {Bytes(254, 0), {127, 0, 127, 0}},
    };
    for (const auto &cs : cases) {
        EXPECT_EQ(Compress(cs.input), cs.code) << std::string(cs.input.begin(), cs.input.end());
        Bytes out(cs.input.size());
        RLEUncompress(out.data(), cs.code.data(), static_cast<int>(cs.input.size()));
        EXPECT_EQ(out, cs.input);
    }
    unsigned char out[4], in[4] = {1, 2, 3, 4};
    EXPECT_EQ(RLECompress(out, in, 0), 0);
    EXPECT_EQ(RLECompress(out, in, -5), 0);
}

TEST(Helpers, RLECompressSplitsLiteralsAt127Bytes)
{
    Bytes in;
    for (int i = 0; i < 300; i++)
        in.push_back(static_cast<unsigned char>(i * 7 + i / 5)); // no two neighbours equal
    const Bytes code = Compress(in);
    ASSERT_EQ(code.size(), 300u + 3);
    EXPECT_EQ(code[0], 0x81); // -127
    EXPECT_EQ(code[128], 0x81);
    EXPECT_EQ(code[256], static_cast<unsigned char>(-46 & 0xFF));

    // A pair straddling the 127-byte limit is handed to a repeat run.
    Bytes pair(in.begin(), in.begin() + 126);
    pair.push_back(0xEE);
    pair.push_back(0xEE);
    pair.push_back(0x01);
    const Bytes pc = Compress(pair);
    const Bytes want_tail = {2, 0xEE, 0xFF, 0x01};
    ASSERT_EQ(pc.size(), 1u + 126 + 4);
    EXPECT_EQ(pc[0], static_cast<unsigned char>(-126 & 0xFF));
    EXPECT_EQ(Bytes(pc.end() - 4, pc.end()), want_tail);
}

TEST(Helpers, RLEUncompressSkipsZeroCountsAndWritesWholeRuns)
{
    const Bytes code = {0, 2, 'x', 0, 0xFF, 'y'};
    Bytes out(3, 0);
    RLEUncompress(out.data(), code.data(), 3);
    EXPECT_EQ(out, B("xxy"));

    // Asked for one byte, the five-byte run is written whole.
    const Bytes run = {5, 'z', 9, 9};
    Bytes big(8, '.');
    RLEUncompress(big.data(), run.data(), 1);
    EXPECT_EQ(big, B("zzzzz..."));

    Bytes untouched(2, '.');
    RLEUncompress(untouched.data(), run.data(), 0);
    EXPECT_EQ(untouched, B(".."));
}

// Inputs built from runs of the lengths around the codec's limits (1, 2, 3,
// 126, 127, 128, ...) with bytes drawn from a small alphabet, so that runs of
// one value touch and merge, and plain random bytes: every code is well
// formed, decodes exactly, and stays within the worst-case size. Buffers are
// exactly sized, so the sanitizer build catches any overrun.
TEST(Helpers, RLERoundTripsAcrossRunAndLiteralBoundaries)
{
    const int lengths[] = {1, 1, 1, 2, 2, 3, 3, 4, 126, 127, 128, 129, 253, 254, 255};
    std::mt19937 gen(4711u);
    for (int trial = 0; trial < 3000; trial++) {
        Bytes in;
        const int segments = std::uniform_int_distribution<int>(1, 40)(gen);
        const int alphabet = std::uniform_int_distribution<int>(2, 256)(gen);
        for (int s = 0; s < segments; s++) {
            const int len = lengths[std::uniform_int_distribution<int>(0, 14)(gen)];
            const auto b = static_cast<unsigned char>(std::uniform_int_distribution<int>(0, alphabet - 1)(gen));
            in.insert(in.end(), static_cast<size_t>(len), b);
        }
        if (trial % 10 == 0) {
            in.resize(static_cast<size_t>(std::uniform_int_distribution<int>(1, 1000)(gen)));
            for (auto &b : in)
                b = static_cast<unsigned char>(gen());
        }
        Bytes code(in.size() + in.size() / 127 + 1);
        const int n = RLECompress(code.data(), in.data(), static_cast<int>(in.size()));
        ASSERT_GT(n, 0);
        ASSERT_LE(static_cast<size_t>(n), code.size());
        code.resize(static_cast<size_t>(n));
        Bytes decoded;
        ASSERT_TRUE(WellFormed(code, in.size(), &decoded)) << "trial " << trial;
        ASSERT_EQ(decoded, in) << "trial " << trial;
        Bytes out(in.size());
        RLEUncompress(out.data(), code.data(), static_cast<int>(in.size()));
        ASSERT_EQ(out, in) << "trial " << trial;
    }
}

// ---------------------------------------------------------------- numbers

TEST(Helpers, ClipIntegerClampsAndReportsChange)
{
    struct Case {
        int x, lo, hi, want, changed;
    };
    const Case cases[] = {
        {12, 0, 10, 10, TRUE}, {-1, 0, 10, 0, TRUE},  {5, 0, 10, 5, FALSE},
        {0, 0, 10, 0, FALSE},  {10, 0, 10, 10, FALSE}, {-7, -5, -2, -5, TRUE},
    };
    for (const auto &cs : cases) {
        int x = cs.x;
        EXPECT_EQ(ClipInteger(&x, cs.lo, cs.hi), cs.changed) << cs.x;
        EXPECT_EQ(x, cs.want) << cs.x;
    }
}

TEST(Helpers, ClipDoubleTakesTheUpperBoundFirst)
{
    struct Case {
        double x, hi, lo, want;
        int changed;
    };
    const Case cases[] = {
        {12, 10, 0, 10, TRUE},   {-0.5, 10, 0, 0, TRUE}, {2.385, 10, 0, 2.385, FALSE},
        {10, 10, 0, 10, FALSE},  {0, 10, 0, 0, FALSE},
        {5, 0, 10, 10, TRUE}, // bounds given the ClipInteger way round: lo wins
    };
    for (const auto &cs : cases) {
        double x = cs.x;
        EXPECT_EQ(ClipDouble(&x, cs.hi, cs.lo), cs.changed) << cs.x;
        EXPECT_EQ(x, cs.want) << cs.x;
    }
    double nan = std::nan("");
    EXPECT_EQ(ClipDouble(&nan, 10, 0), FALSE);
    EXPECT_TRUE(std::isnan(nan));
}

TEST(Helpers, SwapDoubleAndMinMaxXYZ)
{
    double a = 2.385, b = -7.5;
    SwapDouble(&a, &b);
    EXPECT_EQ(a, -7.5);
    EXPECT_EQ(b, 2.385);

    const XYZ pts[] = {{1, 2, 3}, {-1, 5, 0.5}, {4, -2, 2}, {0, 0, 9}};
    XYZ lo = pts[0], hi = pts[0];
    for (const XYZ &p : pts)
        MinMaxXYZ(p, &lo, &hi);
    EXPECT_EQ(lo.x, -1);
    EXPECT_EQ(lo.y, -2);
    EXPECT_EQ(lo.z, 0.5);
    EXPECT_EQ(hi.x, 4);
    EXPECT_EQ(hi.y, 5);
    EXPECT_EQ(hi.z, 9);
}
