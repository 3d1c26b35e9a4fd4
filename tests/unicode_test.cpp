#include "yon/string/unicode.h"

#include <gtest/gtest.h>

#include <clocale>
#include <functional>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "yon/base/auto_ptr.h"

namespace yon {
namespace {

using Result = ConversionResult;

std::string encode(char32_t c) {
    auto const tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) return {static_cast<char>(c)};
    if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), tail(0)};
    if (c < 0x10000) return {static_cast<char>(0xE0 | c >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | c >> 18), tail(12), tail(6), tail(0)};
}

wstring encode16(char32_t c) {
    if (c < 0x10000) return {static_cast<wchar>(c)};
    return {static_cast<wchar>(0xD800 + ((c - 0x10000) >> 10)), static_cast<wchar>(0xDC00 + ((c - 0x10000) & 0x3FF))};
}

/// Calls `visit(c)` with every character there is.
template <class Visit>
void forEachCharacter(Visit && visit) {
    for (char32_t c = 0; c < 0x110000; c = c == 0xD7FF ? 0xE000 : c + 1) visit(c);
}

TEST(Utf8Test, TakesNoOtherSequences) {
    // Every text of four bytes from the borders of the ranges, and what UTF-8 forbids: what is taken is what
    // comes back.
    char const bytes[] =
        "\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF";
    std::size_t taken = 0;
    std::string s;
    auto const check = [&] {
        wchar room[8];
        char const * p = s.data();
        wchar * end = room;
        if (utf8ToUtf16(p, s.data() + s.size(), end, std::end(room)) != Result::ok) return;
        ++taken;
        ASSERT_EQ(p, s.data() + s.size());
        ASSERT_EQ(wstringToUtf8(wstring(room, end)), s);
        for (wchar const * u = room; u != end; ++u) {
            bool const high = *u >= 0xD800 && *u < 0xDC00;
            ASSERT_TRUE(*u < 0xD800 || *u > 0xDFFF || (high ? u + 1 != end : u != room)) << testing::PrintToString(s);
        }
    };
    for (char const a : bytes) {
        for (char const b : bytes) {
            for (char const c : bytes) {
                for (char const d : bytes) {
                    s = {a, b, c, d};
                    ASSERT_NO_FATAL_FAILURE(check());
                }
            }
        }
    }
    EXPECT_GT(taken, 100u);
}

TEST(Utf8Test, RoundTripsEveryCharacter) {
    wstring all16;
    std::string all8;
    forEachCharacter([&](char32_t c) {
        all16 += encode16(c);
        all8 += encode(c);
        if (c % 7 == 0) {
            all16 += wstring(c % 13, 'x');
            all8 += std::string(c % 13, 'x');
        }
    });
    EXPECT_TRUE(utf8ToWstring(all8) == all16);
    EXPECT_TRUE(wstringToUtf8(all16) == all8);
}

TEST(Utf16Test, AcceptsSurrogatesInPairsOnly) {
    wchar const high = 0xDBFF, low = 0xDC00;
    struct {
        wstring units;
        Result result;
        std::string taken;
    } const rows[] = {
        {{'a', high, low, 0xE000}, Result::ok, "a" + encode(0x10FC00) + encode(0xE000)},
        {{high, low, high}, Result::sourceExhausted, encode(0x10FC00)},
        {{'a', high}, Result::sourceExhausted, "a"},
        {{high, 'a'}, Result::sourceIllegal, ""},
        {{0xD7FF, high, 0xE000}, Result::sourceIllegal, encode(0xD7FF)},
        {{0xD800, high, low}, Result::sourceIllegal, ""},
        {{'a', low, high}, Result::sourceIllegal, "a"},
        {{high, 0xDFFF, 0xDFFF}, Result::sourceIllegal, encode(0x10FFFF)},
    };
    for (auto const & row : rows) {
        char room[12];
        wchar const * p = row.units.data();
        char * end = room;
        EXPECT_EQ(utf16ToUtf8(p, p + row.units.size(), end, std::end(room)), row.result);
        EXPECT_EQ(std::string(room, end), row.taken);
    }
}

/// Converts with pieces of room of random sizes, each a block of its own so that a sanitizer sees a write behind it.
template <class From, class To>
std::basic_string<To> convertInPieces(std::basic_string<From> const & s, std::mt19937 & random,
                                      Result (*convert)(From const *&, From const *, To *&, To *)) {
    std::basic_string<To> out;
    std::unique_ptr<From[]> const source(new From[s.size()]);
    std::copy(s.begin(), s.end(), source.get());
    From const * p = source.get();
    for (Result result = Result::targetExhausted; result != Result::ok;) {
        std::size_t const room = random() % 40;
        std::unique_ptr<To[]> const target(new To[room]);
        To * end = target.get();
        result = convert(p, source.get() + s.size(), end, target.get() + room);
        EXPECT_TRUE(result == Result::ok || result == Result::targetExhausted) << result;
        // The longest character takes four units, so three may stay unused.
        if (result == Result::targetExhausted) {
            EXPECT_GE(end + 3, target.get() + room);
        }
        out.append(target.get(), end);
    }
    EXPECT_EQ(p, source.get() + s.size());
    return out;
}

TEST(Utf8Test, GoesOnWithNewRoom) {
    std::mt19937 random(1);
    char32_t const limits[] = {0x80, 0x800, 0x10000, 0x110000};
    for (int i = 0; i < 3000; ++i) {
        std::string s8;
        wstring s16;
        for (auto n = random() % 100; n > 0; --n) {
            char32_t const c = static_cast<char32_t>(random() % limits[random() % 8 < 5 ? 0 : random() % 4]);
            if (c >= 0xD800 && c < 0xE000) continue;
            s8 += encode(c);
            s16 += encode16(c);
        }
        ASSERT_EQ(convertInPieces(s8, random, &utf8ToUtf16), s16);
        ASSERT_EQ(convertInPieces(s16, random, &utf16ToUtf8), s8);
    }
}

TEST(UnicodeTest, RaisesTheResult) {
    wstring const lone{'a', 0xDC00};
    wstring const cut{'a', 0xD83D};
    Bytes kept("kept");
    std::pair<std::function<void()>, Result> const rows[] = {
        {[] { utf8ToWstring("abc\xC0\x80"); }, Result::sourceIllegal},
        {[] { utf8ToWstring("abc\xE2\x82"); }, Result::sourceExhausted},
        {[] { utf8ToAnsi("12345678\xFF"); }, Result::sourceIllegal},
        {[] { String("kept").fromUtf8("\xF0\x9F\x98"); }, Result::sourceExhausted},
        {[&] { wstringToUtf8(lone); }, Result::sourceIllegal},
        {[&] { wstringToUtf8(cut, kept); }, Result::sourceExhausted},
        {[&] { wstringToAnsi(lone); }, Result::sourceIllegal},
        {[&] { String{cut}; }, Result::sourceExhausted},
        {[&] { std::ostringstream() << iwstr(lone); }, Result::sourceIllegal},
    };
    for (auto const & [call, result] : rows) {
        try {
            call();
            ADD_FAILURE();
        } catch (UTFConversionException const & e) {
            EXPECT_EQ(e.result(), result);
            EXPECT_STREQ(e.what(), result == Result::sourceIllegal ? "sourceIllegal" : "sourceExhausted");
            std::unique_ptr<Exception> const clone(e.yon_clone());
            EXPECT_EQ(dynamic_cast<UTFConversionException &>(*clone).result(), result);
            EXPECT_THROW(clone->yon_throw(), UTFConversionException);
        }
    }
    EXPECT_EQ(kept, "kept");
}

/// Both directions agree, or both refuse.
void checkCodePage() {
    std::vector<std::string> texts = {"", "plain ASCII text", "\x7F"};
    for (int b = 0x80; b < 0x100; ++b) texts.push_back("x" + std::string(1, static_cast<char>(b)));
    forEachCharacter([&](char32_t c) {
        if (c < 0x180 || c % 251 == 0) texts.push_back(encode(c));
    });
    int converted = 0;
    for (auto const & text : texts) {
        try {
            wstring const wide = ansiToWstring(text);
            ASSERT_EQ(wstringToAnsi(wide), text);
            String const utf8 = ansiToUtf8(text);
            ASSERT_TRUE(utf8 == wstringToUtf8(wide) && utf8ToAnsi(utf8) == text);
            Bytes bytes;
            String(text).toUtf8(bytes);
            String s("replaced");
            ASSERT_TRUE(bytes == utf8 && s.fromUtf8(utf8) == text && static_cast<wstring>(s) == wide);
            ASSERT_TRUE(String(wide) == text && (s += wide) == text + text && (s = wide) == text);
            ASSERT_EQ(to_str(wide.c_str()).get(), istr(text.c_str()));
            ASSERT_EQ(wstring(to_wstr(text.c_str()).get()), wstring(wide.c_str()));
            std::ostringstream os;
            iwstr(wide).dump(os << iwstr(wide) << '|');
            ASSERT_EQ(os.str(), text + "|" + std::to_string(wide.size()) + ", " + text);
            ++converted;
        } catch (UTFConversionException const &) {
            ASSERT_THROW(ansiToWstring(text), UTFConversionException) << testing::PrintToString(text);
            ASSERT_THROW(ansiToUtf8(text), UTFConversionException) << testing::PrintToString(text);
        }
    }
    EXPECT_GE(converted, 100);
    // No single-byte code page has them all.
    wstring const many{0xE9, 0x20AC, 0x416, 0x5D0, 0x4E2D, 0xD83D, 0xDE00};
    try {
        ASSERT_EQ(ansiToWstring(wstringToAnsi(many)), many);
    } catch (UTFConversionException const & e) {
        EXPECT_EQ(e.result(), Result::sourceIllegal);
    }
}

TEST(CodePageTest, FollowsTheLocale) {
    checkCodePage();
    // Those that the system has, and in the end none.
    for (char const * name : {"de_DE.ISO-8859-1", "en_US.ISO-8859-15", "ja_JP.EUC-JP", "C.UTF-8", "C"}) {
        if (std::setlocale(LC_CTYPE, name) == nullptr) continue;
        SCOPED_TRACE(name);
        checkCodePage();
    }
}

TEST(CodePageTest, NullIsEmpty) {
    char const * const narrow = nullptr;
    wchar const * const wide = nullptr;
    EXPECT_TRUE(to_str(narrow).get() == nullptr && to_str(wide).get() == nullptr);
    EXPECT_TRUE(to_wstr(narrow).get() == nullptr && to_wstr(wide).get() == nullptr);
    EXPECT_TRUE(utf8ToWstring(nullptr).empty() && wstringToUtf8(nullptr).empty());
    String s("kept");
    EXPECT_TRUE((s += wide) == "kept" && (s = wide) == "");
}

}  // namespace
}  // namespace yon
