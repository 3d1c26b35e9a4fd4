#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "yon/yon.h"

namespace yon {
namespace {

struct Point {
    int x = 1;
    std::string name = "p";
    dumper & dump(dumper & d) const {
        d.push("app::Point", "@");
        d.field("x", x).field("name()", name);
        d.pop();
        return d;
    }
};

struct Outer {
    dumper & dump(dumper & d) const {
        d.push("Outer", "@");
        d.field("n_", 1).field("first", Point()).field("m_", 2);
        d.pop();
        return d;
    }
};

enum Colour { red, green };

struct Printed {
    friend std::ostream & operator<<(std::ostream & os, Printed const &) { return os << "printed"; }
};

template <class... T>
std::string dumped(T const &... values) {
    dumper d;
    (d << ... << values);
    return d.str();
}

template <class... T>
std::string compact(T const &... values) {
    dumper d(true);
    (d << ... << values);
    return d.str();
}

template <class T>
std::string plain(T const & value) {
    dumper d;
    d.write(value);
    return d.str();
}

TEST(Dumper, WritesEveryScalarDecoratedAndPlain) {
    struct {
        std::string decorated, plain;
        char const *expected, *expectedPlain;
    } const rows[] = {
        {dumped(true, false), plain(true) + plain(false), "truefalse", "10"},
        {dumped('a', '\n', '\''), plain('\n'), "'a''<LF>''''", "\n"},
        {dumped(static_cast<unsigned char>(200)), plain(static_cast<unsigned char>('b')), "'\\310'", "b"},
        {dumped(static_cast<signed char>(27)), plain(static_cast<signed char>('c')), "'<ESC>'", "c"},
        {dumped(short{-1}, ushort{2}), plain(short{-1}) + plain(ushort{2}), "-12", "-12"},
        {dumped(-1, 2u, slong{-1}, ulong{2}), plain(-1) + plain(2u), "-12-12", "-12"},
        {dumped(-1L, 2uL, -1LL, 2uLL), plain(-1L) + plain(2uLL), "-12-12", "-12"},
        {dumped(0.5f, 3.14159265), plain(0.5f) + plain(3.14159265), "0.53.14159", "0.53.14159"},
        {dumped(static_cast<void *>(nullptr)), plain(static_cast<int const *>(nullptr)), "0", "0"},
        {dumped(green, Printed()), plain(green) + plain(Printed()), "1printed", "1printed"},
        {dumped(Bit(true), Char('a'), Byte('b'), Long(-5)), plain(Ulong(5)), "true'a''b'-5", "5"},
        {dumped(Double(0.1)), plain(Float(0.1f)), "0.1", "0.1"},
    };
    for (auto const & row : rows) {
        EXPECT_EQ(row.decorated, row.expected);
        EXPECT_EQ(row.plain, row.expectedPlain);
    }
    dumper d;
    d.internal_stream() << std::hex << std::showbase;
    d << 255;
    EXPECT_EQ(d.str(), "0xff");
}

TEST(Dumper, QuotesAndEscapesText) {
    std::pair<std::string, std::string> const rows[] = {
        {"", ""},
        {"a \"b\"", "\"a \"b\"\""},
        {{"A\0\xFF"
          "B",
          4},
         "\"A\\x{00FF}B\""},
        {"\1", "\"\\x{01}\""},
        {"a\nb\n", "\"a\n--b\n--\""},
        {"\n", "\"\n--\""},
        {"\1\n\2", "\"\\x{01\n--02}\""},
        {"\1\nA\t", "\"\\x{01\n--}A\\x{09}\""},
        {std::string(256, 'x'), '"' + std::string(256, 'x') + '"'},
        {std::string(257, 'x'), '"' + std::string(256, 'x') + "<omit data up to 257>\""},
        {std::string(300, ' ') + '\1', '"' + std::string(256, ' ') + "<omit data up to 301>\""},
    };
    for (bool const oneLine : {false, true}) {
        for (auto const & [text, expected] : rows) {
            dumper d(oneLine, "\n", "-", 2);
            d.internal_stream() << std::hex << std::uppercase << std::setfill('*');
            d << text;
            d.internal_stream() << std::setw(3) << 10;
            EXPECT_EQ(d.str(), expected + (text.empty() ? "**A" : " 10"));
        }
    }
    // One text, whatever holds it.
    char array[] = "abc";
    unsigned char const bytes[] = "abc";
    EXPECT_EQ(dumped("abc", array, bytes, +array, +bytes, Str(array, 4)),
              "\"abc\"\"abc\"\"abc\"\"abc\"\"abc\"\"abc\"");
    EXPECT_EQ(dumped(istr("abc"), String("abc"), Bytes("abc"), std::string("abc"), std::string_view("abc")),
              "\"abc\"\"abc\"\"abc\"\"abc\"\"abc\"");
    EXPECT_EQ(dumped(static_cast<char const *>(nullptr), istr()), "");
    EXPECT_EQ(plain("a\n\1") + plain(istr()) + plain(String("\"")) + plain(std::string(300, 'x')),
              "a\n\1\"" + std::string(300, 'x'));
}

TEST(Dumper, WritesWideTextAndTimes) {
    wstring const wide = {'a', 'b'};
    EXPECT_EQ(dumped(wide, wide.c_str(), iwstr(wide, 1), wstring()), "\"ab\"\"ab\"\"a\"\"\"");
    Time const time = Time::seconds(1000000000);
    EXPECT_EQ(plain(wide) + plain(time), "ab" + time.toDateTime());
    EXPECT_EQ(dumped(time), '"' + time.toDateTime() + '"');
}

TEST(Dumper, LaysOutBlocksInLinesOrInOne) {
    EXPECT_EQ(dumped(Outer()),
              "@Outer {\n    n_ = 1\n    first = @app::Point {\n        x = 1\n        name() = \"p\"\n    }\n    m_ "
              "= 2\n}");
    EXPECT_EQ(compact(Outer(), Point()), "{1, {1, \"p\"}, 2}{1, \"p\"}");

    dumper d(dumper::Config{.lineSeparator = "\r\n", .indentSeparator = "\t", .level = 1, .eolSeparator = ";"});
    d << Point();
    EXPECT_EQ(d.str(), "@app::Point {;\r\n\t\tx = 1;\r\n\t\tname() = \"p\";;\r\n\t}");
    EXPECT_EQ(d.level(), 1u);

    std::ostringstream os;
    dumper outside(os, false, "|", ">", 0, "");
    outside.push("", "@");
    outside.push(nullptr, nullptr);
    outside << indent << "x" << endline;
    outside.pop();
    outside.pop();
    outside.pop();
    EXPECT_EQ(outside.level(), 0u);
    outside.compact(true).push("name", "@");
    (outside << nl).raw("r\n");
    outside << [](dumper & self) -> dumper & { return self.raw("called"); };
    EXPECT_EQ(os.str(), "{{|>>\"x\"|>}|}|}{\nr\ncalled");
}

TEST(Dumper, DumpsStandardContainers) {
    using namespace std::chrono_literals;
    std::stack<int> stack;
    for (int i : {1, 2, 3}) stack.push(i);
    struct {
        std::string inOneLine, inLines;
        char const *oneLine, *lines;
    } const rows[] = {
#define ROW(value) compact(value), dumped(value)
        {ROW(std::vector<int>()), "{}", "@yon::vector {\n}"},
        {ROW((std::vector<bool>{true, false})), "{true, false}", "@yon::vector {\n    true\n    false\n}"},
        {ROW((std::list<String>{"a", ""})), "{\"a\", }", "@yon::list {\n    \"a\"\n    \n}"},
        {ROW((std::set<char>{'b', 'a'})), "{'a', 'b'}", "@yon::set {\n    'a'\n    'b'\n}"},
        {ROW(stack), "{1, 2, 3}", "@yon::stack {\n    1\n    2\n    3\n}"},
        {ROW((std::map<String, String>{{"k", "v"}})), "{k : \"v\"}", "@yon::map {\n    k : \"v\"\n}"},
        {ROW((std::multimap<int, bool>{{1, true}, {1, false}})), "{1 : true, 1 : false}",
         "@yon::multimap {\n    1 : true\n    1 : false\n}"},
        {ROW((std::vector<std::vector<int>>{{1, 2}, {}})), "{{1, 2}, {}}",
         "@yon::vector {\n    @yon::vector {\n        1\n        2\n    }\n    @yon::vector {\n    }\n}"},
        {ROW((std::pair<String, int>("a", 1))), "\"a\" : 1", "\"a\" : 1"},
        {ROW((std::map<std::pair<int, int>, int>{{{1, 2}, 3}})), "{1 : 2 : 3}", "@yon::map {\n    1 : 2 : 3\n}"},
        {ROW(std::optional<int>(5)), "5", "5"},
        {ROW(std::optional<String>()), "<null>", "<null>"},
        {ROW(std::make_unique<Point>()), "{1, \"p\"}", "@app::Point {\n    x = 1\n    name() = \"p\"\n}"},
        {ROW(std::shared_ptr<int>()), "<null>", "<null>"},
        {ROW(std::make_shared<bool>(true)), "true", "true"},
        {ROW((std::vector<std::chrono::seconds>{1s, 2min})), "{1s, 120s}", "@yon::vector {\n    1s\n    120s\n}"},
        {ROW((std::chrono::duration<double, std::ratio<2, 180>>(1.5))), "1.5[1/90]s", "1.5[1/90]s"},
#undef ROW
    };
    for (auto const & row : rows) {
        EXPECT_EQ(row.inOneLine, row.oneLine);
        EXPECT_EQ(row.inLines, row.lines);
    }
}

}  // namespace
}  // namespace yon
