// The binary streams: exact bytes, lenient and strict reading, hostile input.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>

#include "binary_testing.h"
#include "yon/yon.h"

/// Blocks that were taken from the heap.
static std::size_t allocations = 0;

void * operator new(std::size_t size) {
    ++allocations;
    if (void * const p = std::malloc(size)) return p;
    throw std::bad_alloc();
}
void * operator new(std::size_t size, std::nothrow_t const &) noexcept { return std::malloc(size); }
void operator delete(void * p) noexcept { std::free(p); }
void operator delete(void * p, std::size_t) noexcept { std::free(p); }

namespace yon {
namespace {

template <class Stream, class T>
concept Writes = requires(Stream & s, T value) {
    s.write(value);
};
static_assert(Writes<BinaryOutStream, char *> && Writes<BinaryOutStream, unsigned char const *>);
static_assert(!Writes<BinaryOutStream, void *> && !Writes<BinaryOutStream, int *> &&
              !Writes<BinaryOutStream, std::nullptr_t> && !Writes<BinaryOutStream, void (*)()>);

/// Calls `row(value, hex)` for values of every type and the bytes that each stands for, on every target.
template <class Row>
void forEachGoldenScalar(Row row) {
    auto const all = [&](auto value, char const * bytes, auto... others) {
        row(value, bytes);
        (row(others, bytes), ...);
    };
    all(0, "01 01 00", char(0), 0u, 0l, 0ul, 0ll, 0ull, short(0), ushort(0), 0.0f, 0.0, Time(), false, Bit(false));
    all(true, "01 01 01", Bit(true), '\1', Char('\1'), static_cast<unsigned char>(1), Byte(1), 1, Time(1));
    all(127, "01 01 7F", '\x7F', short(127), 127u, 127l, 127ul, 127ll, 127ull, Long(127), Ulonglong(127));
    all(128, "01 02 80 00", short(128), ushort(128), 128l, 128ul, 128ll, Short(128), Ulong(128));
    all(static_cast<unsigned char>(200), "01 01 C8", Byte(200));
    all(255u, "01 02 FF 00", 255, short(255), ushort(255), 255ll);
    all(-1, "01 04 FF FF FF FF", -1l, Long(-1), 0xFFFFFFFFu, 0xFFFFFFFFul, Ulong(0xFFFFFFFF));
    all(short(-1), "01 02 FF FF", char(-1), static_cast<signed char>(-1), Short(-1), Char(char(-1)), ushort(0xFFFF));
    all(-2ll, "01 08 FE FF FF FF FF FF FF FF", Longlong(-2), Time(-2));
    all(0x8000, "01 03 00 80 00", 0x8000u, 0x8000ll, Ulonglong(0x8000));
    all(std::numeric_limits<slong>::min(), "01 04 00 00 00 80", static_cast<long>(-2147483647 - 1), 0x80000000u);
    all(0x123456789ALL, "01 05 9A 78 56 34 12", Time(0x123456789A), Ulonglong(0x123456789A));
    all(std::numeric_limits<ulonglong>::max(), "01 08 FF FF FF FF FF FF FF FF", -1ll);
    all(1.0f, "01 04 00 00 80 3F", Float(1.0f));
    all(-2.5, "01 08 00 00 00 00 00 00 04 C0", Double(-2.5));
}

TEST(BinaryStreams, ScalarsHaveTheirBytesOnEveryTargetAndComeBack) {
    forEachGoldenScalar([](auto value, char const * bytes) {
        EXPECT_EQ(hex(BinaryOutStream().write(value).str()), bytes);
        EXPECT_EQ(hex((nbr::OutputStream() << value).str()), bytes);
        decltype(value) fromTree{};
        nbr::InputStream(unhex(bytes)).get()->simpleValue()->readStrict(fromTree);
        EXPECT_TRUE(fromTree == value) << bytes;
        // Short of bytes behind the item, and with some.
        for (std::size_t more : {0, 9}) {
            std::string const input = unhex(bytes) + std::string(more, '\x7F');
            decltype(value) lenient{}, strict{};
            BinaryInStream in{input}, strictIn{input};
            in.read(lenient);
            strictIn.readStrict(strict);
            EXPECT_TRUE(lenient == value && strict == value) << bytes;
            EXPECT_EQ(in.rest().size(), more);
            EXPECT_EQ(strictIn.rest().size(), more);
        }
    });
    for (std::string const bytes : {"01 08 00 00 00 00 01 00 00 00", "01 05 01 00 00 00 01"}) {
        longlong whole = 0;
        long narrow = 7;
        BinaryInStream(unhex(bytes)).read(whole).str(unhex(bytes)).read(narrow);
        EXPECT_EQ(narrow, whole & 0xFFFFFFFF) << "the top is lost";
    }
    BinaryOutStream out;
    out.write(null_type()).write(empty_type()).writeRaw("ab", 2).writeRaw(0x41).writeRaw(istr("c"));
    EXPECT_EQ(hex(out.str()), "00 01 00 61 62 41 63");
    if constexpr (sizeof(long) > 4) {
        longlong const tooWide = 0x80000000;
        EXPECT_THROW(out.write(static_cast<long>(tooWide)), OutOfRangeException);
        EXPECT_THROW(out.write(static_cast<long>(-tooWide - 1)), OutOfRangeException);
        EXPECT_THROW(out.write(static_cast<unsigned long>(2 * tooWide)), OutOfRangeException);
        EXPECT_EQ(out.str().size(), 7u);
    }
}

TEST(BinaryStreams, ByteStringsAndText) {
    wchar const wide[] = {'z', 0xE4, 0x20AC, 0xD83D, 0xDE00, 0};
    std::string const utf8 = "z\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
    // In as few bytes as leave the top bit clear, as any number.
    for (auto const & [size, head] : {std::pair{0, "01 00"},
                                      {1, "01 01"},
                                      {127, "01 7F"},
                                      {128, "02 80 00"},
                                      {300, "02 2C 01"},
                                      {0x8000, "03 00 80 00"},
                                      {0x800000, "04 00 00 80 00"}}) {
        std::string const text(static_cast<std::size_t>(size), 'x');
        BinaryOutStream out;
        out.write(istr(text)).write(String(text)).write(wstring(text.begin(), text.end())).write(Bytes(text));
        std::string const item = unhex(head) + text;
        EXPECT_TRUE(out.str() == item + item + item + item) << size;
        String narrow;
        wstring broad;
        Bytes bytes;
        istr view;
        BinaryInStream in(out.str());
        in.read(view).read(narrow).read(broad).read(bytes);
        EXPECT_TRUE(view == text && narrow == text && bytes == text && broad == wstring(text.begin(), text.end()));
        in.str(out.str()).readStrict(view).readStrict(narrow).readStrict(broad).readStrict(bytes);
        EXPECT_TRUE(in.eof() && view == text && narrow == text && bytes == text) << size;
    }
    BinaryOutStream out;
    out.write(wide).write("abc").write(static_cast<char const *>(nullptr)).write(istr(utf8));
    EXPECT_EQ(hex(out.str()), "01 0A " + hex(utf8) + " 01 03 61 62 63 01 00 01 0A " + hex(utf8));
    wstring back;
    EXPECT_EQ(BinaryInStream(out.str()).read(back).rest().size(), out.str().size() - 12);
    EXPECT_TRUE(back == wide);

    wchar const broken[] = {'a', 0xD800, 'b', 0};
    BinaryOutStream const copy(out);
    EXPECT_THROW(out.write(broken), UTFConversionException);
    EXPECT_TRUE(out.str() == copy.str()) << "a failed write leaves nothing";
    EXPECT_THROW(BinaryInStream(istr("\1\2\xC3(", 4)).read(back), UTFConversionException);
}

TEST(BinaryStreams, WhatIsReadLenientlyAndStrictly) {
    std::string const at = " src/yon/util/BinaryInStream yon::BinaryInStream::read ";
    // What a number, a text and a strictly read number give: a value, or why there is none; then what was reported.
    struct {
        std::string bytes, number, text, strict;
    } const rows[] = {
        {"", "0", "", "no item"},
        {"00", "0", "", "null item"},
        {"05", "0", "!invalid los", "invalid los"},
        {"01", "0", "", "incomplete size"},
        {"01 00", "0", "", "empty number"},
        {"01 04 41 42 43", "0 uncompleted data size 3, expected 4", "ABC uncompleted data size 3, expected 4",
         "incomplete data"},
        {"02 01 00 41", "!invalid los", "A", "invalid los"},
        {"01 09 41 41 41 41 41 41 41 41 41", "!invalid size", "AAAAAAAAA", "too wide a number"},
        {"01 80 41", "!invalid size", "A uncompleted data size 1, expected 128", "incomplete data"},
        {"05 01 41", "!invalid los", "!invalid los", "invalid los"},
        {"04 FF FF FF FF 41", "!invalid los", "A uncompleted data size 1, expected 4294967295", "incomplete data"},
        {"04 FF FF", "!invalid los", " uncompleted data size 0, expected 65535", "incomplete size"},
    };
    for (auto const & [bytes, number, text, strict] : rows) {
        std::string const input = unhex(bytes);
        auto const check = [&](std::string expected, auto read) {
            Reports reports;
            BinaryInStream in{input};
            std::string got;
            try {
                got = read(in);
            } catch (BinaryDecodeException const & e) {
                EXPECT_EQ(reports.text, "thrown" + at + e.msg());
                reports.text.clear();
                got = e.msg();
            }
            if (!reports.text.empty()) got += reports.text.substr(("NOTICE" + at).size() - 1);
            if (expected.starts_with('!')) expected.replace(0, 1, "BinaryDecodeException: ");
            EXPECT_EQ(got, expected) << bytes;
        };
        check(number, [](auto & in) {
            longlong n = 9;
            in.read(n);
            return std::to_string(n);
        });
        check(text, [](auto & in) {
            std::string s = "before";
            in.read(s);
            return s;
        });
        check("!" + strict, [&](auto & in) {
            longlong n = 9;
            try {
                in.readStrict(n);
            } catch (BinaryDecodeException const &) {
                EXPECT_TRUE(n == 9 && in.rest().size() == input.size());
                throw;
            }
            return std::string();
        });
    }
}

TEST(BinaryStreams, WritingAllocatesOnlyWhereTheBufferGrows) {
    BinaryOutStream out;
    nbr::OutputStream nbr;
    String const text = std::string(40, 'x');
    wstring const wide(40, 'x');
    for (int round = 0; round < 2; ++round) {
        out.buffer().reset();
        nbr.reset();
        std::size_t const before = allocations;
        nbr.beginComplex();
        for (int i = 0; i < 1000; ++i) {
            out.write(i).write(2.5).write(text).write(wide).write("abc").write(istr(text));
            nbr.tag(5) << i << 2.5 << text << wide << "abc" << istr(text);
        }
        EXPECT_TRUE(round == 0 || allocations == before);
    }
}

TEST(BinaryStreams, IntegersAndTheScrambler) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 2000; ++i) {
        ulonglong const value = random() >> random() % 64;
        for (unsigned width = 0; width <= 9; ++width) {
            char bytes[9] = {};
            char const size = BinaryStream::writeInt(bytes, value, width);
            unsigned const used = std::min(width, 8u);
            ulonglong const kept = used == 0 ? 0 : detail::lowBytes(value, used);
            EXPECT_EQ(BinaryStream::readUint(bytes, size, width), kept);
            EXPECT_EQ(BinaryStream::readInt(istr(bytes, static_cast<ulong>(size)), 8), static_cast<longlong>(kept));
            // As few bytes as hold the value, and one more behind a byte with its top bit set.
            unsigned expected = 1;
            while (expected < 8 && (value >> 8 * expected != 0 || bytes[expected - 1] < 0)) ++expected;
            EXPECT_EQ(static_cast<unsigned>(size), std::min(expected, used)) << value;
        }
    }
    EXPECT_EQ(BinaryStream::readUint(static_cast<char const *>(nullptr), 4, 4), 0u);
    EXPECT_EQ(BinaryStream::readUint("\1", -1, 4), 0u);
    char text[] = {'a', '\0', '\xFF'};
    BinaryStream::encrypt(ostr(text, 3));
    EXPECT_EQ(hex(istr(text, 3)), "9E FF 00");
    BinaryStream::decrypt(ostr(text, 3));
    EXPECT_EQ(hex(istr(text, 3)), "61 00 FF");
}

TEST(BinaryStreams, RawReadingStopsAtTheEnd) {
    BinaryInStream in("abc");
    char c = 0, room[4] = "xyz";
    unsigned char u = 0;
    ulong n = 3;
    in.readRaw(c).readRaw(room, &n).readRaw(u);
    EXPECT_TRUE(c == 'a' && n == 2 && istr(room) == "bcz" && u == 0 && in.eof() && in.readLos() == 0);
}

}  // namespace
}  // namespace yon
