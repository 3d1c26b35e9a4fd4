#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <vector>

#include "yon/base/environment.h"
#include "yon/base/exception.h"
#include "yon/base/net.h"
#include "yon/base/octets.h"
#include "yon/base/std_streams.h"
#include "yon/base/string.h"

namespace yon {
namespace {

int sign(int r) { return (r > 0) - (r < 0); }

TEST(Memory, ComparesAndCopiesWithNullAndOverlap) {
    EXPECT_EQ(MemCmp("a", "b", 1), -1);
    EXPECT_EQ(MemCmp("z", "a", 1), 1);
    EXPECT_EQ(MemCmp("\xFF", "\x01", 1), 1);
    EXPECT_EQ(MemCmp("ab", "ac", 1), 0);
    EXPECT_EQ(MemCmp(nullptr, "a", 0), 0);
    EXPECT_EQ(MemCmp(nullptr, "a", 1), -1);
    EXPECT_EQ(MemCmp("a", nullptr, 1), 1);
    EXPECT_EQ(MemCmp(nullptr, nullptr, 9), 0);

    char b[] = "0123456789";
    EXPECT_EQ(MemCopyZ(b, "abc", 3), b);
    EXPECT_EQ(std::string(b, 10), std::string("abc\0"
                                              "456789",
                                              10));
    EXPECT_EQ(MemCopyZ(b, b, 3), b);
    EXPECT_EQ(b[3], '\0');
    MemCopyZ(b + 4, nullptr, 3);
    EXPECT_EQ(b[4], '\0');
    EXPECT_EQ(b[5], '5');
    MemCopy(b + 6, b + 5, 4);
    EXPECT_STREQ(b + 5, "55678");
    EXPECT_EQ(MemCopy(nullptr, b, 3), nullptr);
    EXPECT_EQ(MemCopyZ(nullptr, b, 3), nullptr);
    EXPECT_EQ(MemSet(nullptr, 1, 3), nullptr);
    EXPECT_EQ(MemSet(b, 'x', 2), b);
    EXPECT_STREQ(b, "xxc");
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
    CharAt(text, 3, 3) = '\0';
    CharAt(bytes, 2, 1) = 9;
    EXPECT_EQ(bytes[1], 9);
    for (auto const & fault : {+[] { CharAt(static_cast<char *>(nullptr), 3, 0); },
                               +[] {
                                   unsigned char b[2];
                                   CharAt(b, 1, 2);
                               }}) {
        try {
            fault();
            ADD_FAILURE() << "nothing raised";
        } catch (OutOfRangeException const & e) {
            EXPECT_STREQ(e.msg(), "yon::OutOfRangeException: yon::OutOfRangeException");
            EXPECT_STREQ(e.func(), "yon::CharAt");
            EXPECT_NE(e.line(), 0u);
            EXPECT_STREQ(e.file(), "src/yon/base/chars.cpp");
        }
    }
}

TEST(CStrings, LengthsAndCopiesKeepToTheirRoom) {
    EXPECT_EQ(StrLen("abc"), 3u);
    EXPECT_EQ(StrLen("abc", 7), 7u);
    EXPECT_EQ(StrLen(static_cast<char const *>(nullptr), 7), 0u);
    EXPECT_EQ(StrLen(static_cast<wchar const *>(nullptr)), 0u);
    EXPECT_EQ(StrLenN(std::array{'a', 'b'}.data(), 2), 2u);
    EXPECT_EQ(StrLenN("a", 2), 1u);
    EXPECT_EQ(StrLenN(nullptr, 2), 0u);
    EXPECT_STREQ(SafeStr(static_cast<char const *>(nullptr)), "<null>");

    struct Row {
        char const * what;
        void (*act)(char *);
        std::string expected;
    };
    using namespace std::string_literals;
    for (Row const & row : std::initializer_list<Row>{
             {"copy all", [](char * b) { StrCopy(b, "hi"); }, "hi\0......."s},
             {"copy some", [](char * b) { StrCopy(b, "hello", 2); }, "he\0......."s},
             {"copy pads", [](char * b) { StrCopy(b, "hi", 4); }, "hi\0\0\0....."s},
             {"copy null", [](char * b) { StrCopy(b, nullptr, 4); }, "\0........."s},
             {"copy itself", [](char * b) { StrCopy(b, b); }, ".........."s},
             {"copy tail", [](char * b) { StrCopy(StrCopy(b, "abcd"), b + 1, 3); }, "bcd\0\0....."s},
             {"append", [](char * b) { StrCat(StrCopy(b, "ab"), "cdef", 2); }, "abcd\0....."s},
             {"append all", [](char * b) { StrCat(StrCopy(b, "ab"), "cd"); }, "abcd\0....."s},
             {"append itself", [](char * b) { StrCat(StrCopy(b, "ab"), b); }, "abab\0....."s},
             {"append null", [](char * b) { StrCat(StrCopy(b, "ab"), nullptr, 1); }, "ab\0......."s},
             {"append none", [](char * b) { StrCat(b, "x", 0); }, ".........."s},
             {"upper", [](char * b) { StrToUpper(StrCopy(b, "ab1c"), 3); }, "AB1c\0....."s},
             {"lower", [](char * b) { StrToLower(StrCopy(b, "AB")); }, "ab\0......."s},
         }) {
        std::string b(10, '.');
        row.act(b.data());
        EXPECT_EQ(b, row.expected) << row.what;
    }
    EXPECT_EQ(StrCopy(nullptr, "a"), nullptr);
    EXPECT_EQ(StrToUpper(nullptr), nullptr);

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
    struct Row {
        char const * a;
        char const * b;
        ulong n;
        bool noCase;
        int expected;
    };
    for (Row const & row : std::initializer_list<Row>{
             {nullptr, "", npos, false, 0},
             {"", "a", npos, false, -1},
             {"a", nullptr, npos, false, 1},
             {"x", "y", 0, false, 0},
             {"abc", "abd", 2, false, 0},
             {"ABC", "abc", npos, false, -1},
             {"ABC", "abc", npos, true, 0},
             {"abd", "ABC", npos, true, 1},
             {"ab", "ABC", npos, true, -1},
             {"ab", "ABC", 2, true, 0},
             {"\xE0", "a", npos, false, 1},
             {"a", "\xE0", npos, true, -1},
         }) {
        EXPECT_EQ(sign(StrCmp(row.a, row.b, row.n, row.noCase)), row.expected) << row.a << row.b;
        EXPECT_EQ(sign(StrCmp(row.b, row.a, row.n, row.noCase)), -row.expected) << row.a << row.b;
        EXPECT_EQ(sign(StrCmp(istr(row.a), istr(row.b), row.n, row.noCase)), row.expected) << row.a << row.b;
    }
    EXPECT_EQ(StrCmp(istr("ab"), istr("abcde")), -3);
    EXPECT_EQ(StrCmp(istr("ab"), istr("abc"), 2), 0);
    char const * const text = "abc";
    EXPECT_EQ(StrCmp(istr(text, 1), istr(text, 3)), 0) << "one start, whatever the lengths";
    // No byte behind a view may be read: the checkers would tell.
    std::vector<char> const a{'a', 'b'}, b{'A', 'B'};
    EXPECT_EQ(StrCmp(istr(a.data(), 2), istr(b.data(), 2), npos, true), 0);
    EXPECT_EQ(StrCmp(istr(a.data(), 2), istr("ABC"), npos, true), -1);
    EXPECT_EQ(StrCmpUnsafe("", "b", 1, true), -'b');
    EXPECT_EQ(StrCmpUnsafe("", "b", 0, true), 0);
}

TEST(Print, ShowsEveryByte) {
    auto printed = [](char c) {
        std::ostringstream os;
        Print(os << std::hex << std::setfill('0'), c) << 16;
        bool const decimal = static_cast<unsigned char>(c) >= 127;
        EXPECT_TRUE(os.str().ends_with(decimal ? "16" : "10"));
        return os.str().substr(0, os.str().size() - 2);
    };
    char const * const names[] = {"<NUL>", "^A",   "^G", "<BS>", "<HT>",  "<LF>",  "<VT>",
                                  "<FF>",  "<CR>", "^N", "^Z",   "<ESC>", "^\\",   "^]",
                                  "^^",    "^_",   " ",  "~",    "\\177", "\\310", "\\377"};
    int const codes[] = {0, 1, 7, 8, 9, 10, 11, 12, 13, 14, 26, 27, 28, 29, 30, 31, 32, 126, 127, 200, 255};
    for (std::size_t i = 0; i < std::size(codes); ++i) EXPECT_EQ(printed(static_cast<char>(codes[i])), names[i]);
    std::ostringstream os;
    Print(Print(os, "a\n"), nullptr);
    EXPECT_EQ(os.str(), "a\n<null>");
}

TEST(Streams, ErrorAndLogAreOne) {
    EXPECT_EQ(&std_log(), &std_err());
    EXPECT_NE(&std_out(), &std_err());
    EXPECT_EQ(std_in().tie(), &std_out());
}

TEST(Environment, ReadsVariablesAndErrors) {
    EXPECT_EQ(yon::getenv(nullptr), "");
    EXPECT_EQ(yon::getenv("YON_SURELY_NOT_SET"), "");
    EXPECT_EQ(yon::getenv("PATH"), std::getenv("PATH"));

    EXPECT_EQ(getLastErrorMsg(2), "(2) No such file or directory");
    errno = 33;
    EXPECT_EQ(getLastErrno(), 33);
    EXPECT_EQ(getLastErrorMsg(10035), "(10035) " + std::string(std::strerror(11)));
    EXPECT_EQ(getLastErrorMsg(), getLastErrorMsg(33));
    for (int const code : {-1, 1326, 99999}) {
        String const message = getLastErrorMsg(code);
        EXPECT_TRUE(message.starts_with("(" + std::to_string(code) + ") ")) << message;
        EXPECT_GT(message.size(), 10u) << message;
    }
    EXPECT_EQ(errno, 33);
}

TEST(Net, NamesAndAddresses) {
    for (auto const & [name, expected] : std::initializer_list<std::pair<char const *, char const *>>{
             {"", ""}, {"yon::pml::File", "yon.pml.File"}, {"::a", ".a"}, {"a.:b", "a.b"}, {"a:.:.:", "a."}}) {
        EXPECT_EQ(normalizeName(name), expected) << name;
    }
    for (auto const & [text, expected] :
         std::initializer_list<std::pair<char const *, char const *>>{{"1.2.3.4", "1.2.3.4"},
                                                                      {"0.0.0.0", "0.0.0.0"},
                                                                      {"255.255.255.254", "255.255.255.254"},
                                                                      {"1.2.772", "1.2.3.4"},
                                                                      {"16909060", "1.2.3.4"},
                                                                      {"0x7f.1", "127.0.0.1"},
                                                                      {"010.0.0.1", "8.0.0.1"},
                                                                      {"1.2.3.4 x", "1.2.3.4"}}) {
        EXPECT_EQ(ip_ntoa(ip_aton(text)), expected) << text;
    }
    for (char const * text : {"", " ", ".", "1.2.3.", "1.2.3.256", "1.2.3.4.5", "256.1", "1.2.65536", "a.b.c.d",
                              "-1.2.3.4", "1..2", "1.2.3.4x", "0x", "09.1", "4294967296", "1.2.3.2555555555"}) {
        EXPECT_EQ(ip_aton(text), npos) << text;
    }
    EXPECT_EQ(ip_aton(nullptr), npos);
    EXPECT_EQ(ip_aton(istr("1.2.3.45", 7)), ip_aton("1.2.3.4"));
    ulong address = 0;
    std::memcpy(&address, "\1\2\3\4", 4);
    EXPECT_EQ(ip_aton("1.2.3.4"), address);
}

TEST(Octets, HoldNetworkOrder) {
    octets<2> const two = hton(static_cast<unsigned short>(0x0102));
    EXPECT_TRUE(two[0] == 1 && two[1] == 2 && ntoh(two) == 0x0102);
    octets<4> const four = hton(ulong{0x01020304});
    EXPECT_TRUE(four[0] == 1 && four[3] == 4 && ntoh(four) == 0x01020304u);
    octets<8> const eight = hton(0x8102030405060708ull);
    EXPECT_TRUE(eight[0] == 0x81 && eight[7] == 8 && ntoh(eight) == 0x8102030405060708ull);
    EXPECT_EQ(hton(7u), hton(ulong{7}));
    EXPECT_EQ(ntoh(octets<4>("\1\2\3\4\5", 5)), 0x01020304u);
    EXPECT_EQ(ntoh(octets<4>("\1\2", 2)), 0x01020000u);
    EXPECT_EQ(octets<2>(nullptr), octets<2>());
}

}  // namespace
}  // namespace yon
