// The binary streams: exact bytes, lenient and strict reading, hostile input.
#include <gtest/gtest.h>

#include <random>

#include "binary_testing.h"
#include "yon/string/unicode.h"
#include "yon/util/binary_in_stream.h"
#include "yon/util/binary_out_stream.h"

namespace yon {
namespace {

template <class Stream, class T>
concept Writes = requires(Stream & s, T value) {
    s.write(value);
};
static_assert(Writes<BinaryOutStream, char *> && Writes<BinaryOutStream, unsigned char const *>);
static_assert(!Writes<BinaryOutStream, void *> && !Writes<BinaryOutStream, int *> &&
              !Writes<BinaryOutStream, std::nullptr_t> && !Writes<BinaryOutStream, void (*)()>);

TEST(BinaryStreams, ScalarsHaveTheirBytesOnEveryTargetAndComeBack) {
    forEachGoldenScalar([](auto value, char const * bytes) {
        EXPECT_EQ(hex(BinaryOutStream().write(value).str()), bytes);
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
    for (ulong size : {0u, 1u, 40u, 127u, 128u, 300u, 0x8000u, 0x800000u}) {
        std::string const text(size, 'x');
        std::string const head = size < 128        ? hex(istr("\1" + std::string(1, static_cast<char>(size))))
                                 : size == 128     ? "02 80 00"
                                 : size == 300     ? "02 2C 01"
                                 : size == 0x8000u ? "03 00 80 00"
                                                   : "04 00 00 80 00";
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
    ulong const before = out.str().size();
    EXPECT_THROW(out.write(broken), UTFConversionException);
    EXPECT_EQ(out.str().size(), before) << "a failed write leaves nothing";
    EXPECT_THROW(BinaryInStream(istr("\1\2\xC3(", 4)).read(back), UTFConversionException);
    BinaryOutStream const copy(out);
    out.write(1);
    EXPECT_EQ(copy.str().size(), before);
}

TEST(BinaryStreams, WhatIsReadLeniently) {
    struct {
        char const * bytes;
        longlong number;      ///< -1: raises
        char const * text;    ///< "!": raises
        char const * notice;  ///< of the number
        char const * strict;  ///< what readStrict says of the number
    } const rows[] = {
        {"", 0, "", "", "no item"},
        {"00", 0, "", "", "null item"},
        {"05", 0, "!", "", "invalid los"},
        {"01", 0, "", "", "incomplete size"},
        {"01 00", 0, "", "", "empty number"},
        {"01 04 41 42 43", 0, "ABC", "uncompleted data size 3, expected 4", "incomplete data"},
        {"02 01 00 41", -1, "A", "", "invalid los"},
        {"01 09 41 41 41 41 41 41 41 41 41", -1, "AAAAAAAAA", "", "too wide a number"},
        {"01 80 41", -1, "A", "", "incomplete data"},
        {"05 01 41", -1, "!", "", "invalid los"},
        {"04 FF FF FF FF 41", -1, "A", "", "incomplete data"},
        {"04 FF FF", -1, "", "", "incomplete size"},
    };
    for (auto const & row : rows) {
        Reports reports;
        std::string const input = unhex(row.bytes);
        longlong number = 9;
        String text("before");
        BinaryInStream in{input};
        try {
            in.read(number);
            EXPECT_EQ(number, row.number) << row.bytes;
        } catch (BinaryDecodeException const & e) {
            EXPECT_EQ(row.number, -1) << row.bytes;
            EXPECT_EQ(number, 0);
            std::string const what = input[0] == 1 ? "invalid size" : "invalid los";
            EXPECT_EQ(e.msg(), "BinaryDecodeException: " + what);
            EXPECT_EQ(reports.lines.at(0),
                      std::string("thrown src/yon/util/BinaryInStream yon::BinaryInStream::read ") +
                          "BinaryDecodeException: " + what);
        }
        if (*row.notice != '\0') {
            EXPECT_EQ(reports.lines.at(0),
                      std::string("NOTICE src/yon/util/BinaryInStream yon::BinaryInStream::read ") + row.notice);
        }
        try {
            EXPECT_EQ(in.str(input).read(text).rest().size(), 0u) << row.bytes;
            EXPECT_EQ(text, row.text) << row.bytes;
        } catch (BinaryDecodeException const & e) {
            EXPECT_STREQ(row.text, "!") << e.msg();
        }
        try {
            number = 9;
            in.str(input).readStrict(number);
            ADD_FAILURE() << row.bytes;
        } catch (BinaryDecodeException const & e) {
            EXPECT_EQ(e.msg(), std::string("BinaryDecodeException: ") + row.strict) << row.bytes;
            EXPECT_EQ(number, 9);
            EXPECT_EQ(in.rest().size(), input.size());
        }
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
            // Byte by byte, as long as something is left or the last one has its top bit set.
            unsigned expected = 0;
            for (ulonglong left = value;
                 expected < used && (expected == 0 || left != 0 || bytes[expected - 1] < 0);) {
                left = ++expected == 8 ? 0 : value >> 8 * expected;
            }
            EXPECT_EQ(static_cast<unsigned>(size), expected) << value;
        }
    }
    char eight[8];
    EXPECT_EQ(BinaryStream::writeInt(eight, -3, 4), 4);
    EXPECT_EQ(BinaryStream::readUint(static_cast<char const *>(nullptr), 4, 4), 0u);
    EXPECT_EQ(BinaryStream::readUint("\1", -1, 4), 0u);
    char text[] = {'a', '\0', '\xFF'};
    BinaryStream::encrypt(ostr(text, 3));
    EXPECT_EQ(hex(istr(text, 3)), "9E FF 00");
    BinaryStream::decrypt(ostr(text, 3));
    EXPECT_EQ(hex(istr(text, 3)), "61 00 FF");
    EXPECT_EQ(BinaryStream::decrypt(BinaryStream::encrypt(0x5A)), 0x5A);
}

TEST(BinaryStreams, RawReadingStopsAtTheEnd) {
    BinaryInStream in("abc");
    char c = 0;
    unsigned char u = 0;
    char room[4] = "xyz";
    ulong n = 3;
    in.readRaw(c).readRaw(room, &n).readRaw(u);
    EXPECT_TRUE(c == 'a' && n == 2 && istr(room) == "bcz" && u == 0 && in.eof() && in.readLos() == 0);
}

}  // namespace
}  // namespace yon
