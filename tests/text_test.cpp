// Slices, buffers and formatting.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>

#include "raise_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

TEST(StringSliceTest, ReadsToTheEndAndNotBeyond) {
    std::string const text("abc");
    StringSlice s(text);
    EXPECT_TRUE(*s++ == 'a' && *++s == 'c' && s.cursor() == 2 && s.rest() == "c" && s.str() == "abc");
    for (ulong const n : {ulong{2}, npos, npos - 1}) EXPECT_THROW(s.advance(n), OutOfRangeException);
    EXPECT_EQ(s.left(), 1u);
    EXPECT_TRUE(s.advance(1).empty());
    EXPECT_EQ(s.advance(0).rest(), "");
    for (StringSlice end : {s, StringSlice(), StringSlice("")}) {
        EXPECT_TRUE(end.empty() && end.rest().empty());
        EXPECT_THROW(*end, OutOfRangeException);
        EXPECT_THROW(++end, OutOfRangeException);
        EXPECT_THROW(end++, OutOfRangeException);
    }
}

TEST(ByteRefTest, TakesTheWantedBitsOfOneByte) {
    StringSlice s("\xAB\xAB");
    unsigned char byte = 0;
    ByteRef(byte, 0x0F)(s);
    EXPECT_EQ(byte, 0x0B);
    ByteRef(byte, 0xFF)(s);
    EXPECT_THROW(ByteRef(byte, 0)(s), OutOfRangeException);
    EXPECT_EQ(byte, 0xAB);
}

TEST(StringBufferTest, AgreesWithAString) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        StringBuffer buffer;
        std::string model;
        for (auto steps = random() % 60; steps > 0; --steps) {
            char const c = static_cast<char>(random());
            ulong const n = static_cast<ulong>(random() % 70);
            auto const action = random() % 7;
            if (action == 0) {
                buffer.append(c).append(c, n), model.append(n + 1, c);
            } else if (action == 1) {
                buffer.append(static_cast<int>(n)).append(0.1f).append(true), model += std::to_string(n) + "0.11";
            } else if (action == 2) {
                buffer.append(std::string(n, c)), model.append(n, c);
            } else if (action == 3) {
                std::fill_n(buffer.extend(n), n, c), model.append(n, c);
            } else if (action == 4) {
                ulong const at = static_cast<ulong>(random() % (model.size() + 1));
                model += model.substr(at, n);
                buffer.append(buffer.str().substr(at, n));
            } else if (action == 5) {
                StringBuffer copy(buffer);
                copy = static_cast<StringBuffer const &>(copy);
                buffer = StringBuffer(3);
                EXPECT_TRUE(buffer.empty());
                buffer = copy;
            } else {
                buffer.append(wstring{'w'}).append("text").append(nullptr).append("12", 1), model += "wtext1";
            }
            ASSERT_EQ(buffer.str(), model);
            ASSERT_LE(buffer.size(), buffer.capacity());
        }
        char const * const block = buffer.data();
        ulong const capacity = buffer.capacity();
        buffer.reset().append('x', capacity);
        ASSERT_TRUE(buffer.data() == block && buffer.capacity() == capacity && buffer.size() == capacity);
    }
}

TEST(StringBufferTest, GrowsSeldomAndIsKnownToTheLeakChecker) {
    MemLeakChecker::enable(true);
    std::size_t const before = MemLeakChecker::count();
    {
        StringBuffer buffer;
        int growths = 0;
        for (int i = 0; i < 1000000; ++i) {
            ulong const capacity = buffer.capacity();
            buffer.append('x');
            if (buffer.capacity() != capacity) ++growths;
        }
        EXPECT_LE(growths, 20);
        EXPECT_EQ(MemLeakChecker::count(), before + 1);
        EXPECT_THROW(buffer.extend(npos - 5), std::length_error);
        StringBuffer other(7);
        other.append("other").swap(buffer);
        EXPECT_TRUE(buffer.str() == "other" && other.size() == 1000000);
    }
    EXPECT_EQ(MemLeakChecker::count(), before);
    MemLeakChecker::enable(false);
}

template <class... Args>
std::string snprintfText(std::string const & format, Args... args) {
    char room[2000];
    int const n = std::snprintf(room, sizeof room, format.c_str(), args...);
    return std::string(room, static_cast<std::size_t>(n));
}

/// A conversion with flags, width and precision picked at random.
std::string randomConversion(std::mt19937_64 & random, std::string const & flags, std::string const & modifier,
                             char letter, bool withPrecision = true) {
    std::string s = "<%";
    for (char const flag : flags) {
        if (random() % 3 == 0) s += flag;
    }
    if (random() % 2 == 0) s += std::to_string(1 + random() % 30);
    if (withPrecision && random() % 2 == 0) s += "." + (random() % 8 == 0 ? "" : std::to_string(random() % 25));
    return s + modifier + letter + ">%%";
}

template <class T>
void compareIntegers(std::mt19937_64 & random, std::string const & modifier) {
    using U = std::make_unsigned_t<T>;
    T const value = random() % 8 == 0 ? T(0) : static_cast<T>(random() >> random() % 64);
    for (char const letter : {'d', 'i'}) {
        std::string const format = randomConversion(random, "-+ 0", modifier, letter);
        ASSERT_EQ(Printf(format, value), snprintfText(format, value)) << format;
    }
    for (char const letter : {'u', 'o', 'x', 'X'}) {
        // "%#.0o" of 0 is a "0", which not every C library knows.
        bool const plain = letter == 'u' || (letter == 'o' && value == 0);
        std::string const format = randomConversion(random, plain ? "-0" : "-0#", modifier, letter);
        ASSERT_EQ(Printf(format, static_cast<U>(value)), snprintfText(format, static_cast<U>(value))) << format;
        ASSERT_EQ(Printf(format, value), snprintfText(format, value)) << format;
    }
}

TEST(PrintfTest, FormatsAsTheCLibrary) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 4000; ++i) {
        ASSERT_NO_FATAL_FAILURE(compareIntegers<signed char>(random, "hh"));
        ASSERT_NO_FATAL_FAILURE(compareIntegers<short>(random, "h"));
        ASSERT_NO_FATAL_FAILURE(compareIntegers<int>(random, ""));
        ASSERT_NO_FATAL_FAILURE(compareIntegers<long>(random, "l"));
        ASSERT_NO_FATAL_FAILURE(compareIntegers<long long>(random, "ll"));
        double real = static_cast<double>(static_cast<long long>(random())) / std::pow(10.0, random() % 40);
        if (i % 4 == 0) real = std::ldexp(real, static_cast<int>(random() % 2000) - 1000);
        if (i % 50 == 0) real = 0.0;
        if (i % 50 == 1) real = -std::round(std::fmod(real, 1000.0));
        if (i % 50 == 2) real = std::numeric_limits<double>::infinity();
        for (char const letter : {'e', 'f', 'g', 'E', 'F', 'G'}) {
            std::string const format = randomConversion(random, "-+ 0#", "", letter);
            ASSERT_EQ(Printf(format, real), snprintfText(format, real)) << format;
        }
        std::string const text(static_cast<std::size_t>(random() % 30), 't');
        std::string const s = randomConversion(random, "-", "", 's'),
                          c = randomConversion(random, "-", "", 'c', false);
        ASSERT_EQ(Printf(s, text), snprintfText(s, text.c_str())) << s;
        ASSERT_EQ(Printf(c, static_cast<char>(i)), snprintfText(c, static_cast<char>(i))) << c;
        int const width = static_cast<int>(random() % 40) - 20;
        int const precision = static_cast<int>(random() % 40) - 20;
        ASSERT_EQ(Printf("%*.*d|%-*s", width, precision, i, width, text),
                  snprintfText("%*.*d|%-*s", width, precision, i, width, text.c_str()));
    }
    for (char const * format : {"%.150f", "%.300e", "%#.120g", "%.120g", "%200.101f"}) {
        EXPECT_EQ(Printf(format, 1.0 / 3), snprintfText(format, 1.0 / 3));
        EXPECT_EQ(Printf(format, std::numeric_limits<double>::max()),
                  snprintfText(format, std::numeric_limits<double>::max()));
    }
}

TEST(PrintfTest, KnowsTheTypesOfItsArguments) {
    enum Colour : unsigned char { red = 3 };
    wstring const wide{'w', 'i', 'd', 'e'};
    char const * const null = nullptr;
    std::pair<String, char const *> const rows[] = {
        {Printf("plain 100%%") + Printf("") + Printf(nullptr), "plain 100%"},
        {Printf("%s %s %s %s", String("a"), std::string_view("b"), istr("c"), Bytes("d")), "a b c d"},
        {Printf("[%6s][%-6s][%.2ls]", wide, wide.c_str(), iwstr(wide)), "[  wide][wide  ][wi]"},
        {Printf("%s|%6s|%s|%s", null, static_cast<wchar const *>(nullptr), istr(), Bytes()), "<null>|<null>||"},
        {Printf("%d %hhd %lld %I64d", 70000LL, 70000, short(-7), 7u), "70000 70000 -7 7"},
        {Printf("%d %u", 18446744073709551615ull, short(-1)), "18446744073709551615 65535"},
        {Printf("%d %d %d", true, 'A', static_cast<unsigned char>(200)), "1 65 200"},
        {Printf("%x %c %c", static_cast<signed char>(-1), 98, static_cast<unsigned char>('c')), "ff b c"},
        {Printf("%d %s", red, Printf("%d", Long(-5))), "3 -5"},
        {Printf("%#.0o %#o %#x", 0, 8, 0), "0 010 0"},
        {Printf("%.1f %g", 0.25f, Double(1e100)), "0.2 1e+100"},
        {Printf("%a %A %.1a %a", 1.0, -26.5, 1.09, 0.0), "0x1p+0 -0X1.A8P+4 0x1.1p+0 0x0p+0"},
        {Printf("%08.1f|%-+8.1f|%f", -0.25, 2.5, -std::numeric_limits<double>::infinity()), "-00000.2|+2.5    |-inf"},
        {Printf("%8p|%-8p", reinterpret_cast<void *>(0xABC), reinterpret_cast<int *>(0x1)), "   0xabc|0x1     "},
        {Printf("%p", static_cast<void *>(nullptr)), "0x0"},
    };
    for (auto const & [text, expected] : rows) EXPECT_EQ(text, expected);
    EXPECT_EQ(istr(Printf("%s", std::string("a\0b", 3))).size(), 3u);
}

TEST(PrintfTest, RefusesWhatDoesNotFit) {
    std::pair<std::function<void()>, std::string> const rows[] = {
        {[] { Printf("a %5d b", "text"); }, "\"%5d\" does not take argument 1, which is text"},
        {[] { Printf("%d %s", 1, 2); }, "\"%s\" does not take argument 2, which is an integer"},
        {[] { Printf("%s", 2.5); }, "\"%s\" does not take argument 1, which is a real number"},
        {[] { Printf("%.3f", 2); }, "\"%.3f\" does not take argument 1, which is an integer"},
        {[] { Printf("%c", wstring()); }, "\"%c\" does not take argument 1, which is wide text"},
        {[] { Printf("%p", 1); }, "\"%p\" does not take argument 1, which is an integer"},
        {[] { Printf("%x", static_cast<void *>(nullptr)); }, "\"%x\" does not take argument 1, which is a pointer"},
        {[] { Printf("%*d", "2", 2); }, "\"%*\" does not take argument 1, which is text"},
        {[] { Printf("%d %5s", 1); }, "\"%5s\" has no argument"},
        {[] { Printf("%.*d", 1); }, "\"%.*d\" has no argument"},
        {[] { Printf("%d", 1, 2, 3); }, "\"%d\" has no conversion for argument 2"},
        {[] { Printf("%n", 1); }, "\"%n\" is no conversion"},
        {[] { Printf("%1$d", 1); }, "\"%1$\" is no conversion"},
        {[] { Printf("%.-5d", 1); }, "\"%.-\" is no conversion"},
        {[] { Printf("100%"); }, "\"%\" is no conversion"},
        {[] { Printf("%-5.3ll"); }, "\"%-5.3ll\" is no conversion"},
        {[] { Printf("%9999999999d", 1); }, "\"%9999999999\": this width or precision is too large"},
        {[] { Printf("%*d", LLONG_MIN, 1); }, "\"%*\": this width or precision is too large"},
        {[] { Printf("%.*d", ULLONG_MAX, 1); }, "\"%.*\": this width or precision is too large"},
    };
    for (auto const & [call, message] : rows) {
        EXPECT_EQ(raised<InvalidDataException>(call), "InvalidDataException: " + message);
        EXPECT_TRUE(raisedAt<InvalidDataException>(call).ends_with(" yon::Printf::Printf"));
    }
}

}  // namespace
}  // namespace yon
