// General helpers: text readers, string and number helpers, fixed-width
// binary I/O and the run-length codec.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <unistd.h>

#include "helpers.h"
#include "testutil.h"

using Bytes = std::vector<unsigned char>;

static Bytes B(const std::string &s) { return Bytes(s.begin(), s.end()); }

// A scratch stream holding the bytes of s (or /dev/null opened with mode),
// closed at scope end.
struct Stream {
    FILE *f;
    Stream(const std::string &s, const char *m = nullptr) : f(m ? std::fopen("/dev/null", m) : testutil::MemoryStream(B(s))) {}
    ~Stream() { std::fclose(f); }
    operator FILE *() const { return f; }
};

static Bytes Compress(const Bytes &in) {
    Bytes out(in.size() + in.size() / 127 + 1); // the worst case, exactly
    out.resize(static_cast<size_t>(RLECompress(out.data(), in.data(), static_cast<int>(in.size()))));
    return out;
}

// Decodes n bytes into a buffer of exactly size bytes (n by default).
static Bytes Uncompress(const Bytes &code, size_t n, size_t size = 0) {
    Bytes out(size ? size : n, '.');
    RLEUncompress(out.data(), code.data(), static_cast<int>(n));
    return out;
}

// CR and LF each end a line, so CR LF also ends an empty one; maxlen stored
// bytes end a line too (the buffer is exactly maxlen + 1, for the sanitizer).
// ReadToString's zero means found (past a word longer than a 100-byte buffer),
// and -2 that the input ended first.
TEST(Helpers, TextReadersOnByteStreams) {
    char line[4], buf[600];
    Stream lines("ab\r\nabcdef\rcd"), until("key=value;\xC8rest"), bytes("a\r\nbc0123;z"),
        words("alpha  beta\r\n\tgam gamma " + std::string(500, 'w') + " delta");
    for (auto [ok, text] : {std::pair<int, std::string>{1, "ab"}, {1, ""}, {1, "abc"}, {1, "def"}, {1, ""}, {0, "cd"}})
        EXPECT_TRUE(ReadLine(lines, line, 3) == ok && line == text) << text;
    for (auto [ch, ok, text] : {std::tuple<int, int, std::string>{'=', 1, "key"}, {0xC8, 1, "value;"}, {-1, 0, "rest"}})
        EXPECT_TRUE(ReadUntil(until, ch, buf) == ok && buf == text) << text; // 0xC8: a byte above 127
    EXPECT_TRUE(ReadToString(words, "gamma") == 0 && ReadToString(words, "delta") == 0 && ReadToString(words, "delta") == -2);
    EXPECT_TRUE(ReadString(bytes, buf, 4) == TRUE && std::string(buf) == "a\r\nb" && ReadString(bytes, buf, 0) == TRUE);
    EXPECT_TRUE(*buf == 0 && ReadSkip(bytes, -2) == TRUE && ReadSkip(bytes, 2) == TRUE && std::fgetc(bytes) == '1');
    EXPECT_TRUE(SkipUntil(bytes, ';') == ';' && ReadString(bytes, buf, 5) == FALSE && std::string(buf) == "z");
    EXPECT_TRUE(SkipUntil(bytes, ';') == 0 && ReadSkip(bytes, 1) == FALSE);
}

// StringClean tests its bytes as signed chars, so bytes 128-255 count as
// blanks at the ends; ClipInteger takes (x, lo, hi) but ClipDouble (x, hi, lo).
TEST(Helpers, StringAndClipHelpersWorkedValues) {
    const auto edit = [](void (*fn)(char *), std::string s) { fn(&s[0]); return std::string(s.c_str()); };
    const auto copy = [](int from, int to) { char d[8] = "#"; return std::to_string(IndexCopy("hello", d, from, to)) + d; };
    const std::pair<std::string, std::string> rows[] = {
        {edit(RightTrim, "a \t\r\n  "), "a \t\r\n"}, {edit(RightTrim, "   "), ""}, {edit(StringClean, "ok\xC8"), "ok"},
        {edit(StrToLower, "Hi, [@`{Z]\xC8"), "hi, [@`{z]\xC8"}, {edit(StrToUpper, "Hi, [@`{z]\xC8"), "HI, [@`{Z]\xC8"},
        {edit(StringClean, " \t hello world \r\n"), "hello world"}, {edit(StringClean, " \t\r\x7F"), ""},
        {edit(StringClean, "\x7F\x01\xC8 a \t\x01 b\xFF\x80 \x7F"), "a \t\x01 b"}, {edit(RightTrim, ""), ""},
        {copy(1, 3), "1ell"}, {copy(1, 5), "0"}, {copy(0, 4), "1hello"}, {copy(4, 4), "1o"}, {copy(3, 1), "1"}};
    for (const auto &[got, want] : rows) EXPECT_EQ(got, want);
    int i = 12, j = 10, k = -1;
    double x = 12, y = 5, z = NAN;
    EXPECT_TRUE(ClipInteger(&i, 0, 10) == TRUE && i == 10 && ClipInteger(&k, 0, 10) == TRUE && k == 0);
    EXPECT_TRUE(ClipInteger(&j, 0, 10) == FALSE && j == 10 && ClipDouble(&z, 10, 0) == FALSE && std::isnan(z));
    EXPECT_TRUE(ClipDouble(&x, 10, 0) == TRUE && x == 10 && ClipDouble(&y, 0, 10) == TRUE && y == 10); // bounds swapped
}

// Each writer on a worked value, read back by its reader. The value's bytes,
// least significant first, are what swap zero writes on the little-endian
// hosts served; swap non-zero reverses them. The float is a signalling NaN,
// 0x7FA00000 (raw bytes, never converted); 0.1 is 0x3FB999999999999A. A read
// one byte short fails, and so does a write to a stream open for reading.
TEST(Helpers, BinaryBytePatternsAndRoundTripsEveryWidth) {
    const auto field = [](auto put, auto get, auto v, auto r, const Bytes &lsb) { // v written, read back into r
        for (int swap : {0, 1, -7}) { // messages name the field by its first byte
            Stream io(""), read_only("", "rb");
            Bytes got(9);
            EXPECT_TRUE(put(io, v, swap) == TRUE && put(read_only, v, swap) == FALSE) << +lsb[0];
            got.resize(std::fseek(io, 0, SEEK_SET) == 0 ? std::fread(got.data(), 1, got.size(), io) : 0);
            EXPECT_EQ(got, swap ? Bytes(lsb.rbegin(), lsb.rend()) : lsb) << "swap " << swap;
            EXPECT_TRUE(!std::fseek(io, 0, SEEK_SET) && get(io, &r, swap) == TRUE && !std::memcmp(&r, &v, sizeof v)) << +lsb[0];
            EXPECT_TRUE(!std::fseek(io, 1, SEEK_SET) && get(io, &r, swap) == FALSE) << +lsb[0] << " swap " << swap;
        }
    };
    field(WriteShort, ReadShort, int16_t{-2}, int16_t{}, {0xFE, 0xFF});
    field(WriteUShort, ReadUShort, uint16_t{0xFEDC}, uint16_t{}, {0xDC, 0xFE});
    field(WriteInt, ReadInt, int32_t{0x01020304}, int32_t{}, {4, 3, 2, 1});
    field(WriteUInt, ReadUInt, uint32_t{0xA1B2C3D4}, uint32_t{}, {0xD4, 0xC3, 0xB2, 0xA1});
    field(WriteLong, ReadLong, int32_t{-0x11223344}, int32_t{}, {0xBC, 0xCC, 0xDD, 0xEE});
    field(WriteULong, ReadLong, uint32_t{0xF0E0D0C0}, int32_t{}, {0xC0, 0xD0, 0xE0, 0xF0});
    field(WriteFloat, ReadFloat, std::numeric_limits<float>::signaling_NaN(), 0.0f, {0, 0, 0xA0, 0x7F});
    field(WriteDouble, ReadDouble, 0.1, 0.0, {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F});
}

// Count bytes are signed: n > 0 repeats the next byte n times, n < 0 copies
// the next -n bytes. A literal ends only at the third of three equal bytes,
// giving them back to a run; literals split at 127 bytes (130 distinct bytes
// give -127 and -3); a zero count decodes to nothing, and a run passing the
// length asked for is written whole. Then round trips over inputs built from
// runs of the lengths around the codec's limits, with bytes from alphabets
// small enough that neighbouring runs share a value, and plain random bytes.
// Buffers are exactly the worst-case size (code) and the input size
// (decoding), so the sanitizer catches any overrun.
TEST(Helpers, RLEByteExamplesAndRoundTrips) {
    const unsigned char m1 = 0xFF, m2 = 0xFE, m3 = 0xFD, m5 = 0xFB; // -1, -2, -3, -5
    const std::pair<Bytes, Bytes> cases[] = {
        {B(std::string(200, 'b')), {127, 'b', 73, 'b'}}, {B("ABCDDDE"), {m3, 'A', 'B', 'C', 3, 'D', m1, 'E'}},
        {B("ABCDD"), {m5, 'A', 'B', 'C', 'D', 'D'}}, {B("AB"), {m2, 'A', 'B'}}, {B("AABB"), {2, 'A', 2, 'B'}},
        {B("ABBBB"), {m1, 'A', 4, 'B'}}, {B(std::string(128, 'x')), {127, 'x', m1, 'x'}}, {{}, {}},
        {B(std::string(129, 'x')), {127, 'x', 2, 'x'}}};
    for (const auto &[in, code] : cases)
        EXPECT_TRUE(Compress(in) == code && Uncompress(code, in.size()) == in) << testing::PrintToString(in);
    Bytes distinct(130);
    std::iota(distinct.begin(), distinct.end(), static_cast<unsigned char>(0));
    const Bytes dc = Compress(distinct);
    EXPECT_TRUE(dc.size() == 132 && dc[0] == 0x81 && dc[128] == m3);
    EXPECT_EQ(Uncompress({0, 2, 'x', 0, m1, 'y', 3, 'z'}, 4, 6), Bytes({'x', 'x', 'y', 'z', 'z', 'z'}));

    const int lengths[] = {1, 1, 1, 2, 2, 3, 3, 4, 126, 127, 128, 129, 254, 255};
    std::mt19937 gen(4711u), bytes(815u);
    for (int trial = 0; trial < 3000; trial++) {
        Bytes in;
        const unsigned alphabet = gen() % 255 + 2;
        for (int s = gen() % 40; s >= 0; s--)
            in.insert(in.end(), static_cast<size_t>(lengths[gen() % 14]), static_cast<unsigned char>(bytes() % alphabet));
        for (auto &b : in) b = trial % 10 ? b : static_cast<unsigned char>(bytes());
        ASSERT_EQ(Uncompress(Compress(in), in.size()), in) << "trial " << trial;
    }
}

// The remaining helpers where they can go wrong: copying a file byte for
// byte (and nothing for a missing one), single-key mode refused on a stream
// that is not a terminal, the bounding box and the swap.
TEST(Helpers, EchoKeyboardBoundsAndSwap) {
    testutil::TempDir dir;
    const Bytes all = [] { Bytes b(256); std::iota(b.begin(), b.end(), 0); return b; }();
    testutil::WriteBytes(dir.file("in"), all);
    FILE *out = std::fopen(dir.file("out").c_str(), "wb");
    EchoFile(dir.file("in").c_str(), out);
    EchoFile(dir.file("missing").c_str(), out);
    std::fclose(out);
    EXPECT_EQ(testutil::ReadBytes(dir.file("out")), all);
    if (!isatty(0)) {
        EXPECT_EQ(SetKeyboardIO(1), -1);
    }
    XYZ lo = {1, 2, 3}, hi = lo;
    MinMaxXYZ({-4, 7, 3}, &lo, &hi);
    EXPECT_EQ(std::vector<double>({lo.x, lo.y, lo.z, hi.x, hi.y, hi.z}), std::vector<double>({-4, 2, 3, 1, 7, 3}));
    double a = 2.385, b = -1;
    SwapDouble(&a, &b);
    EXPECT_EQ(std::vector<double>({a, b}), std::vector<double>({-1, 2.385}));
    const double t0 = GetRunTime();
    EXPECT_GT(t0, 1.7e9) << "seconds since the epoch";
    EXPECT_GE(GetRunTime(), t0);
}
