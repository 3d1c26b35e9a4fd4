#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <vector>

#include "raise_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

int sign(int r) { return (r > 0) - (r < 0); }

TEST(Memory, ComparesAndCopiesWithNullAndOverlap) {
    EXPECT_TRUE(MemCmp("a", "b", 1) == -1 && MemCmp("z", "a", 1) == 1 && MemCmp("\xFF", "\x01", 1) == 1);
    EXPECT_TRUE(MemCmp("ab", "ac", 1) == 0 && MemCmp(nullptr, "a", 0) == 0 && MemCmp(nullptr, nullptr, 9) == 0);
    EXPECT_TRUE(MemCmp(nullptr, "a", 1) == -1 && MemCmp("a", nullptr, 1) == 1);
    char b[] = "0123456789";
    EXPECT_EQ(MemCopyZ(b, "abc", 3), b);
    MemCopyZ(b, b, 3);
    MemCopyZ(b + 4, nullptr, 3);
    MemCopy(b + 6, b + 5, 4);
    MemSet(b, 'x', 2);
    EXPECT_EQ(std::string(b, 5) + (b + 5), std::string("xxc\0\0", 5) + "55678");
    EXPECT_TRUE(!MemCopy(nullptr, b, 3) && !MemCopyZ(nullptr, b, 3) && !MemSet(nullptr, 1, 3));
}

TEST(Characters, HexadecimalAndMembership) {
    for (int c = 0; c < 256; ++c) {
        char const digit = static_cast<char>(c);
        unsigned char const value = HexFromChar(digit);
        EXPECT_EQ(value != 255, std::isxdigit(c) != 0) << c;
        EXPECT_EQ(value == 255 ? CharToUpper(digit) : HexToChar(value), CharToUpper(digit));
    }
    EXPECT_EQ(HexToChar(0x3C), 'C');
    EXPECT_TRUE(CharIn('\0', "abc") && CharIn('c', "abc") && !CharIn('d', "abc") && !CharIn('a', nullptr));
    EXPECT_TRUE(CharIsSpace('\t') && CharIsSpace(wchar{' '}) && CharIsPrint(wchar{'a'}) && !CharIsPrint('\x01'));
}

TEST(CharAt, ReadsAnywhereAndWritesUpToTheTerminator) {
    char text[] = "abc";
    unsigned char bytes[] = {1, 2, 0};
    EXPECT_EQ(CharAt(static_cast<char const *>(text), 3, 2), 'c');
    EXPECT_EQ(CharAt(static_cast<char const *>(text), 1, 2), '\0');
    EXPECT_EQ(CharAt(static_cast<unsigned char const *>(nullptr), 3, 0), 0);
    EXPECT_EQ(CharAt(nullptr, 3, 0), '\0');
    CharAt(text, 3, 3) = '\0';
    CharAt(bytes, 2, 1) = 9;
    EXPECT_EQ(bytes[1], 9);
    auto const outside = [&] { CharAt(bytes, 1, 2); };
    auto const nowhere = [] { CharAt(static_cast<char *>(nullptr), 3, 0); };
    std::string const twice = "yon::OutOfRangeException: yon::OutOfRangeException";
    EXPECT_TRUE(raised(outside) == twice && raised(nowhere) == twice);
    EXPECT_TRUE(raisedAt<OutOfRangeException>(outside).ends_with(" yon::CharAt"));
}

TEST(CStrings, LengthsAndCopiesKeepToTheirRoom) {
    EXPECT_TRUE(StrLen("abc") == 3 && StrLen("abc", 7) == 7 && StrLen(static_cast<char const *>(nullptr), 7) == 0);
    EXPECT_EQ(StrLen(static_cast<wchar const *>(nullptr)), 0u);
    EXPECT_TRUE(StrLenN(std::array{'a', 'b'}.data(), 2) == 2 && StrLenN("a", 2) == 1 && StrLenN(nullptr, 2) == 0);
    EXPECT_STREQ(SafeStr(static_cast<char const *>(nullptr)), "<null>");

    using namespace std::string_literals;
    using Row = std::pair<void (*)(char *), std::string>;
    for (auto const & [act, expected] : {
             Row{[](char * b) { StrCopy(b, "hi"); }, "hi\0......."s},
             {[](char * b) { StrCopy(b, "hello", 2); }, "he\0......."s},
             {[](char * b) { StrCopy(b, "hi", 4); }, "hi\0\0\0....."s},
             {[](char * b) { StrCopy(b, nullptr, 4); }, "\0........."s},
             {[](char * b) { StrCopy(b, b); }, ".........."s},
             {[](char * b) { StrCopy(StrCopy(b, "abcd"), b + 1, 3); }, "bcd\0\0....."s},
             {[](char * b) { StrCat(StrCopy(b, "ab"), "cdef", 2); }, "abcd\0....."s},
             {[](char * b) { StrCat(StrCopy(b, "ab"), b); }, "abab\0....."s},
             {[](char * b) { StrCat(StrCopy(b, "ab"), nullptr, 1); }, "ab\0......."s},
             {[](char * b) { StrCat(b, "x", 0); }, ".........."s},
             {[](char * b) { StrToUpper(StrCopy(b, "ab1c"), 3); }, "AB1c\0....."s},
             {[](char * b) { StrToLower(StrCopy(b, "AB")); }, "ab\0......."s},
         }) {
        std::string b(10, '.');
        act(b.data());
        EXPECT_EQ(b, expected);
    }
    EXPECT_TRUE(StrCopy(nullptr, "a") == nullptr && StrToUpper(nullptr) == nullptr);
    EXPECT_TRUE(StrIsAllDigits("0123") && !StrIsAllDigits("12a") && !StrIsAllDigits("") && !StrIsAllDigits(nullptr));
    EXPECT_TRUE(StrBeginWith("abc", "ab") && StrBeginWith("abc", "") && StrBeginWith(nullptr, ""));
    EXPECT_TRUE(!StrBeginWith("ab", "abc") && !StrBeginWith("abc", "AB") && !StrBeginWith(nullptr, "a"));
    for (char const * text : {"", " ", "a", "a \t\n", " a b "}) {
        String s = text;
        StrTrimRight(s);
        EXPECT_TRUE(s.empty() || !CharIsSpace(s.back())) << text;
        EXPECT_TRUE(istr(text).beginWith(s)) << text;
    }
}

TEST(CStrings, CompareByCharactersThenByLength) {
    auto text = [](std::string const & s, ulong n, bool noCase) {
        std::string t = s.substr(0, n);
        return noCase ? std::string(StrToUpper(t.data())) : t;
    };
    char const * const texts[] = {"", "a", "A", "ab", "aB", "abc", "ABC", "abd", "[", "\x7F", "\xE0", "x\xE0"};
    for (char const * a : texts) {
        for (char const * b : texts) {
            for (ulong const n : {ulong{0}, ulong{1}, ulong{2}, ulong{3}, npos}) {
                for (bool const noCase : {false, true}) {
                    int const expected = sign(text(a, n, noCase).compare(text(b, n, noCase)));
                    EXPECT_EQ(sign(StrCmp(a, b, n, noCase)), expected) << a << ", " << b << ", " << n << noCase;
                    EXPECT_EQ(sign(StrCmp(istr(a), istr(b), n, noCase)), expected) << a << ", " << b << ", " << n;
                }
            }
        }
    }
    EXPECT_TRUE(StrCmp(nullptr, "") == 0 && StrCmp(nullptr, "a") == -1 && StrCmp("a", nullptr, npos, true) == 1);
    EXPECT_TRUE(StrCmp(istr("ab"), istr("abcde")) == -3 && StrCmp(istr("ab"), istr("abc"), 2) == 0);
    EXPECT_EQ(StrCmp(istr(texts[5], 1), istr(texts[5], 3)), 0) << "one start, whatever the lengths";
    EXPECT_TRUE(StrCmpUnsafe("", "b", 1, true) == -'b' && StrCmpUnsafe("", "b", 0, true) == 0);
    // No byte behind a view may be read: the checkers would tell.
    std::vector<char> const a{'a', 'b'}, b{'A', 'B'};
    EXPECT_EQ(StrCmp(istr(a.data(), 2), istr(b.data(), 2), npos, true), 0);
}

TEST(Print, ShowsEveryByte) {
    auto printed = [](char c) {
        std::ostringstream os;
        Print(os << std::hex << std::setfill('0'), c) << 16;
        bool const decimal = static_cast<unsigned char>(c) >= 127;
        EXPECT_TRUE(os.str().ends_with(decimal ? "16" : "10"));
        return os.str().substr(0, os.str().size() - 2);
    };
    std::string all;
    for (int c : {0, 1, 7, 8, 9, 10, 11, 12, 13, 14, 26, 27, 28, 31, 32, 126, 127, 200, 255})
        all += printed(static_cast<char>(c));
    EXPECT_EQ(all, "<NUL>^A^G<BS><HT><LF><VT><FF><CR>^N^Z<ESC>^\\^_ ~\\177\\310\\377");
    std::ostringstream os;
    Print(Print(os, "a\n"), nullptr);
    EXPECT_EQ(os.str(), "a\n<null>");
}

TEST(Environment, ReadsVariablesAndErrors) {
    EXPECT_TRUE(yon::getenv(nullptr).empty() && yon::getenv("YON_SURELY_NOT_SET").empty());
    EXPECT_EQ(yon::getenv("PATH"), std::getenv("PATH"));
    EXPECT_EQ(getLastErrorMsg(2), "(2) No such file or directory");
    errno = 33;
    EXPECT_EQ(getLastErrno(), 33);
    EXPECT_EQ(getLastErrorMsg(10035), "(10035) " + std::string(std::strerror(11)));
    EXPECT_EQ(getLastErrorMsg(), getLastErrorMsg(33));
    for (int const code : {-1, 1326, 99999}) {
        String const message = getLastErrorMsg(code);
        EXPECT_TRUE(message.starts_with("(" + std::to_string(code) + ") ") && message.size() > 10) << message;
    }
    EXPECT_EQ(errno, 33);
}

TEST(Net, NamesAndAddresses) {
    EXPECT_EQ(normalizeName("yon::pml::File"), "yon.pml.File");
    EXPECT_EQ(normalizeName("::a.:b:.:.:"), ".a.b.");
    ulong address = 0;
    std::memcpy(&address, "\1\2\3\4", 4);
    for (char const * text : {"1.2.3.4", "1.2.772", "16909060", "0x1.02.3.4", "1.2.3.4 x"}) {
        EXPECT_EQ(ip_aton(text), address) << text;
    }
    for (char const * text : {"0.0.0.0", "1.2.3.4", "255.255.255.254"}) EXPECT_EQ(ip_ntoa(ip_aton(text)), text);
    for (char const * text : {"", " ", ".", "1.2.3.", "1.2.3.256", "1.2.3.4.5", "1.2.65536", "a.b.c.d", "-1.2.3.4",
                              "1..2", "1.2.3.4x", "0x", "09.1", "4294967296", "1.2.3.2555555555"}) {
        EXPECT_EQ(ip_aton(text), npos) << text;
    }
    EXPECT_TRUE(ip_aton(nullptr) == npos && ip_aton(istr("1.2.3.45", 7)) == address);
}

TEST(Octets, HoldNetworkOrder) {
    auto holds = [](auto const & o, auto value) { return o.data()[0] == 1 && o[1] == 2 && ntoh(o) == value; };
    EXPECT_TRUE(holds(hton(static_cast<unsigned short>(0x0102)), 0x0102) && hton(7u) == hton(ulong{7}));
    EXPECT_TRUE(holds(hton(ulong{0x010203FF}), 0x010203FFu) && holds(octets<4>("\1\2", 2), 0x01020000u));
    EXPECT_TRUE(holds(hton(0x01020304050607FFull), 0x01020304050607FFull));
    EXPECT_TRUE(holds(octets<2>("\1\2\3", 9), 0x0102) && octets<2>(nullptr) == octets<2>());
}

}  // namespace
}  // namespace yon
