#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <sstream>

#include "yon/yon.h"

namespace yon {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

char const * const noText = nullptr;

template <class T>
std::string written(T const & value) {
    std::ostringstream os;
    os << value;
    return os.str();
}
template <class T>
std::string dumped(T const & value) {
    std::ostringstream os;
    value.dump(os);
    return os.str();
}

/// Whether all six comparisons of `a` with `b` agree with `order`.
template <class A, class B>
bool ordered(A const & a, B const & b, int order) {
    return (a == b) == (order == 0) && (a != b) == (order != 0) && (a < b) == (order < 0) && (a > b) == (order > 0) &&
           (a <= b) == (order <= 0) && (a >= b) == (order >= 0);
}

/// In both orders, for each pair of types of which one is our own.
template <class... Own>
void compareAll(char const * x, char const * y, int order) {
    auto against = [&](auto const & own) {
        return ordered(own, istr(y), order) && ordered(own, String(y), order) && ordered(own, Bytes(y), order) &&
               ordered(own, std::string(y), order) && ordered(own, std::string_view(y), order) &&
               ordered(own, y, order) && ordered(istr(y), own, -order) && ordered(String(y), own, -order) &&
               ordered(Bytes(y), own, -order) && ordered(std::string(y), own, -order) &&
               ordered(std::string_view(y), own, -order) && ordered(y, own, -order);
    };
    EXPECT_TRUE((against(Own(x)) && ...)) << x << " and " << y;
}

TEST(Texts, CompareInBothOrdersWithEachOther) {
    char const * const ascending[] = {"", "a", "ab", "abc", "abd", "b", "\x7F", "\x80", "\xFF"};
    for (char const * const & x : ascending) {
        for (char const * const & y : ascending) {
            compareAll<istr, String, Bytes>(x, y, (&x > &y) - (&x < &y));
            char room[8];
            Str s = Str(room, sizeof room).copy(x);
            EXPECT_TRUE(ordered(s, istr(y), (&x > &y) - (&x < &y))) << x << y;
            EXPECT_TRUE(ordered(istr(y), s, (&y > &x) - (&y < &x))) << x << y;
        }
    }
    EXPECT_TRUE(ordered(istr(), noText, 0) && ordered(String(), noText, 0) && ordered(nullptr, istr(""), 0));
    EXPECT_TRUE(istr("a\0b", 3) != "a" && String("a\0b", 3) == "a\0b"s && istr("a\0b", 3) == "a\0b"sv);
    EXPECT_EQ(istr("a").compare("z"), -1);
    EXPECT_EQ(std::hash<String>()("ab"), std::hash<istr>()("ab"));
}

TEST(WideTexts, CompareByTheirBytes) {
    wchar const a[] = {'a', 'b', 0}, b[] = {0x0161, 'b', 0};
    EXPECT_TRUE(ordered(iwstr(a), iwstr(a, 2), 0) && ordered(iwstr(a), wstring(a), 0) && ordered(a, iwstr(a), 0));
    EXPECT_TRUE(ordered(iwstr(a, 1), iwstr(a), -1) && ordered(iwstr(a, 1), iwstr(b, 1), -1));
    wchar const lowBig[] = {0x00FF, 0}, lowSmall[] = {0x0100, 0};
    EXPECT_EQ(iwstr(lowBig).compare(lowSmall), 1) << "the low byte counts first";
    EXPECT_EQ(iwstr(nullptr).size(), 0u);
    EXPECT_TRUE(iwstr(a).beginWith(iwstr(a, 1)) && iwstr(a).rightstr(1) == iwstr(a + 1));
}

TEST(Istr, KnowsItsLength) {
    static_assert(sizeof(istr) == 2 * sizeof(void *) && std::is_trivially_copyable_v<istr>);
    EXPECT_TRUE(istr(nullptr).is_null() && istr(nullptr).empty() && istr(noText, 5).size() == 0);
    EXPECT_TRUE(istr("").empty() && !istr("").is_null() && istr("abc", npos).size() == 3);
    EXPECT_TRUE(istr(istr("abc"), 2) == "ab" && istr(istr("abc"), 10) == "abc");
    EXPECT_EQ(istr(reinterpret_cast<unsigned char const *>("abc"), 2), "ab");
    EXPECT_TRUE(toLength(1u << 16) == 1u << 16 && toLength(~std::size_t{0}) == npos - 1);
}

TEST(Istr, CutsAndSearches) {
    istr const abc = "abc";
    std::string all;
    for (istr const & s :
         {abc.substr(1, 1), abc.substr(5, 2), abc.leftstr(2), abc.leftstr(9), abc.rightstr(1), abc.rightstr(npos),
          abc.rightstr(0), abc.removeLeft(1), abc.removeRight(1), abc.removeLeft("xy"), abc.removeRight("xy"),
          istr("  x ").trimLeft(), istr("  ").trimLeft(), istr(" x", 1).trimLeft()}) {
        all += std::string(s) + '|';
    }
    EXPECT_EQ(all, "b||ab|abc|c|abc||bc|ab|c|a|x |||");
    EXPECT_EQ(abc.substr(5, 2).data(), abc.end());
    EXPECT_TRUE(abc.beginWith("ab") && abc.beginWith("") && !istr("ab").beginWith(abc) && !abc.beginWith("AB"));
    EXPECT_TRUE(abc.endWith("bc") && abc.endWith("") && !abc.endWith("xabc") && !abc.endWith("ab"));
    istr const abab = "abab";
    EXPECT_TRUE(abab.find("b") == 1 && abab.find('b', 2) == 3 && abab.rfind("ab") == 2 && abab.rfind('x') == npos);
    EXPECT_TRUE(dumped(abc) == "3, abc" && dumped(istr()) == "0, ");
    EXPECT_EQ(written(istr("a\0b", 3)), "a\0b"s);
}

TEST(Istr, FindsLongTextsInLinearTime) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        // Texts of beginnings of what is looked for, which itself repeats.
        std::string s;
        std::string const part = std::string(random() % 9, 'a') + (random() % 2 != 0 ? "b" : "");
        while (s.size() < 17 + random() % 24) s += random() % 8 != 0 ? part : "a";
        std::string text;
        while (text.size() < 1000) text += s.substr(random() % 2 != 0 ? random() % 3 : 0, random() % s.size());
        if (random() % 4 != 0) text += s;
        auto const pos = static_cast<ulong>(random() % 20);
        ASSERT_EQ(istr(text).find(s, pos), static_cast<ulong>(text.find(s, pos))) << s << '\n' << text;
        wstring const wide(s.begin(), s.end());
        wstring const wideText(text.begin(), text.end());
        ASSERT_EQ(iwstr(wideText).find(iwstr(wide), pos), static_cast<ulong>(text.find(s, pos)));
    }
    std::string const half(1 << 20, 'a');
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(istr(half + half).find(half + 'b'), npos);
    EXPECT_EQ(MultiString(half + half, half + 'b').list().size(), 1u);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(Ostr, FillsItsRoom) {
    char room[] = "########";
    ostr o(room, 4);
    o = "abcdef";
    EXPECT_STREQ(room, "abcd####") << "full, without a terminator";
    EXPECT_EQ(o.size(), 4u);
    EXPECT_EQ(dumped(o), "4/4, abcd");
    o.reset() = istr("abc", 2);
    EXPECT_EQ(std::string(room, 5), "abc\0#"s) << "two characters are written and no terminator";
    MemSet(room, '#', 8);
    o.reset();
    EXPECT_EQ(std::string(room, 5), "\0##\0#"s);
    o.assign("a", 3);
    EXPECT_EQ(std::string(room, 5), "a\0\0\0#"s);
    EXPECT_TRUE(istr(o) == "a\0\0\0"s && istr(Str(o)) == "a");
    EXPECT_TRUE(o.end() == room + 4 && std::as_const(o).end() == room + 1 && o.assign(noText).size() == 0);
    EXPECT_TRUE(o.rightstr(2).buffer() == room + 2 && o.substr(9, 1).max_size() == 0 && o.leftstr(9).max_size() == 4);
    EXPECT_TRUE(ostr(static_cast<char *>(nullptr), 4).empty() && ostr(room, 0).empty() && !o.empty());
    ostr none;
    none = "abc";
    EXPECT_EQ(dumped(none.reset().clear()), "0/0, ");
    EXPECT_EQ(ostr(room, npos).reset().size(), 0u);
}

TEST(Str, WorksOnTheText) {
    char room[16] = "";
    Str s(room, 8);
    EXPECT_TRUE(s.empty() && s.isEnd(0) && s.left() == 8);
    s = "ab";
    s += "Cd";
    EXPECT_TRUE(s == "abCd" && s.is("ABCD") && s.isNot("ABC") && s.is("ABC", 3) && s.cmp("ab", 2) == 0);
    EXPECT_TRUE(s.cmpNoCase(istr("ABCE")) < 0 && s.cmp(istr("abC")) == 1 && s.beginWith("AB", 2, true));
    EXPECT_TRUE(!s.beginWith("AB", 2) && !s.isEnd(3) && s.isEnd(4) && s.left() == 4 && !s.isAllDigits());
    EXPECT_TRUE(istr(s.toUpper(3)) == "ABCd" && istr(s.toLower()) == "abcd");
    EXPECT_TRUE(istr(s.fill('x', 5)) == "xxxx" && istr(s.fill('x', 100)) == "xxxxxx");
    EXPECT_EQ(istr(Str(room, 0).fill('y', 3)), "");
    s.copy("1234567");
    EXPECT_TRUE(s.endWith("7", 2) && !s.endWith("4567", 4)) << "the last places of the room, terminator included";
}

TEST(String, TakesEveryText) {
    String s;
    s = noText;
    s += noText;
    s += istr();
    EXPECT_EQ(s, "");
    EXPECT_EQ(String(noText) + String(nullptr), "");
    s = "ab";
    (s += 'c') += static_cast<unsigned char>('d');
    ((s += istr("efg", 1)) += "f"s) += "g"sv;
    (s += String("h")) += reinterpret_cast<unsigned char const *>("i");
    EXPECT_EQ(s, "abcdefghi");
    s += istr(s).leftstr(2);
    s = istr(s).substr(7);
    EXPECT_EQ(s, "hiab") << "parts of itself";
    s = s;
    EXPECT_EQ(s.data()[s.size()], '\0');
    s = istr();
    EXPECT_TRUE(s.empty() && istr(s).size() == 0);
    EXPECT_TRUE(String("abc", 2) == "ab" && String(istr("a\0b", 3)).size() == 3);
    std::string trimmed;
    for (String text : {"'x'", "'", "'x", "x'", "''", "", "''x''"}) trimmed += text.trimLeftRight('\'') + '|';
    EXPECT_EQ(trimmed, "x|'|'x|x'|||'x'|");
}

TEST(Bytes, GrowAsToldAndKeepTheirSize) {
    Bytes b;
    b.append("abc");
    EXPECT_TRUE(b.max_size() == 3 && b.size() == 3);
    b += "d";
    EXPECT_TRUE(b.max_size() == 8 && b == "abcd" && ostr(b).max_size() == 8);
    EXPECT_TRUE(b.resize(5).max_size() == 8 && b.resize(9).max_size() == 18);
    EXPECT_TRUE(b == "abcd" && b.init(1).empty() && b.max_size() == 18);
    b.clear();
    EXPECT_TRUE(b.max_size() == 0 && b.buffer() == nullptr);
    Bytes const five(5);
    EXPECT_TRUE(five.max_size() == 5 && five.empty() && Bytes(five).buffer() == nullptr);
    EXPECT_TRUE(Bytes(istr("x")).max_size() == 2 && Bytes(istr()).max_size() == 0);
    for (ulong const part : {0u, 1u, 3u}) {
        Bytes self("abcd");
        self.append(istr(self).substr(part, 2)).append(self).assign(istr(self).substr(part));
        std::string const expected = "abcd" + "abcd"s.substr(part, 2);
        EXPECT_EQ(self, (expected + expected).substr(part));
    }
    Bytes c("12");
    c.swap(b);
    b = std::move(c = b);
    EXPECT_TRUE(b == "12" && b.assign(b) == "12" && written(b) == "12" && b.end() - b.begin() == 2);
    b.size(1)[0] = 'x';
    EXPECT_EQ(b, "x");
    EXPECT_THROW(b.size(npos).append("ab"), std::length_error);
    b.size(0);
}

TEST(Mem, CopiesWhatFits) {
    char block[] = "########";
    Mem m(block, 4);
    m = "ab";
    EXPECT_STREQ(block, "ab######");
    EXPECT_STREQ(static_cast<char *>(m.copyZ("abcdef").data()), "abc");
    EXPECT_EQ(block[4], '#');
    Mem(block, 0).copyZ("x");
    EXPECT_EQ(block[0], 'a');
    Mem const abc(block, 3);
    EXPECT_TRUE(abc.cmp("abcd") == -1 && abc.cmp("abc") == 0 && abc.cmp("ab") == 1 && abc.cmp("b") == -1);
    EXPECT_EQ(dumped(m.fill('z')), "4, zzzz");
    EXPECT_EQ(Mem().copy("x").fill(1).size(), 0u);
}

}  // namespace
}  // namespace yon
