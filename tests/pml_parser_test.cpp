#include <gtest/gtest.h>

#include <random>

#include "file_testing.h"
#include "pml_testing.h"
#include "raise_testing.h"
#include "yon/pml/pml_type.h"

namespace yon::pml {
namespace {

char const * const noName = "get pml name token";
char const * const noType = "get type token";
char const * const noBegin = "not found value begin tag, token";
char const * const duplicated = "duplicated unit";

std::string at(char const * error, int line, int column) {
    return std::string(error) + " at line " + std::to_string(line) + ", column " + std::to_string(column);
}

struct Row {
    std::string text, shape;
    std::string unread = "";
};

/// All sources give that tree, or that error and what was complete, and stand just before `unread`.
void expect(Row const & row, std::string const & error = "", bool valueOnly = false) {
    for (Outcome const & o : parseFromAll(row.text, valueOnly)) {
        SCOPED_TRACE(o.source + ": " + row.text);
        EXPECT_EQ(o.error, error);
        EXPECT_EQ(shape(*o.unit), row.shape);
        if (o.read != std::string::npos) {
            EXPECT_EQ(row.text.substr(o.read), row.unread);
        }
    }
}

TEST(PmlParser, Nodes) {
    Row const rows[] = {{"port:int(8080)", "port:int=8080"},
                        {"msg('a:b (c)')", "msg=a:b (c)"},
                        {"a(* comment (* nested *) *)(1)", "a=1"},
                        {"", ""},
                        {" \t\r\n(* nothing (* at *) all *) ", ""},
                        {" a name ( some\n text )rest", "a name=some\n text", "rest"},
                        {"a(:t(1):u(x(1))y)", "a{:t=1 :u{x=1} y}", ")"},
                        {"a) b(2)", "a", ") b(2)"},
                        {")x", "", "x"},
                        {"r(x(a(1) b) y(2))", "r{x{a=1 b}}", " y(2))"},
                        {"r((1) b)", "r{=1 b}", ")"},
                        {"l(a()(* c *) b() (* d *) )", "l{a= b=}"},
                        // Quotes.
                        {"a('x'\n\t\"y\")", "a=xy\""},
                        {"a(x'y(z)'w)", "a=x'y(z)'w"},
                        {"a(' x ')", "a= x "},
                        {"a('\\\\\\\"\\n')", "a=\\\"n"},
                        {"a(\\x\\)", "a=\\x\\"},
                        {"'a:b'(1)", "'a:b'=1"},
                        {"a:'t(' (1)", "a:'t('=1"},
                        {"a('x'y\"z\")", "a='x'y\"z\""},
                        {"a('x'(**)\"y\")", "a='x'\"y\""},
                        {"a(\"x\" 'y' \"z\")", "a=xyz"},
                        // Comments within tokens.
                        {"a(* c *) b(1)", "ab=1"},
                        {"a (*c*)b(1 (*)*) 2)", "a b=1 2"},
                        {"a((*)*)(*)", "a="},
                        {"a(* )(1)", "", ""},
                        // Bytes of any kind.
                        {"na\xC3\xA0 (\xE2\x82\xAC\xA0)", "na\xC3\xA0=\xE2\x82\xAC\xA0"},
                        {std::string("a(x\0y)", 6), std::string("a=x\0y", 5)},
                        // Input that ends early.
                        {"abc", ""},
                        {"a:t( 1 ", "a:t=1"},
                        {"a('x", "a='x"},
                        {"a('x' ", "a=x"},
                        {"a('x\"", "a='x\""},
                        {"a('x' \"y\" 'z\"", "a='xyz\""},
                        {"a('x' \"y\" ", "a=xy\""},
                        {"a(1 (* c", "a=1"}};
    for (Row const & row : rows) expect(row);
}

TEST(PmlParser, Values) {
    Row const rows[] = {{"plain", "=plain"},      {" two words ", "=two words"}, {"", "="},
                        {"'a' 'b'", "=ab"},       {"a(1)b(2)", "{a=1 b=2}"},     {"(1)(2))x", "{=1 =2}", "x"},
                        {"text)x", "=text", "x"}, {":t(1)", "{:t=1}"},           {"a:t(b(1))", "{a:t{b=1}}"}};
    for (Row const & row : rows) expect(row, "", true);
    expect({"a:b", "{}"}, at(noType, 1, 3), true);
}

TEST(PmlParser, Errors) {
    struct ErrorRow {
        Row row;
        std::string error;
    };
    ErrorRow const rows[] = {{{"a:int)", "a", ""}, at(noBegin, 1, 3)},
                             {{"a:int", "a"}, at(noType, 1, 3)},
                             {{"a : int : x(1)", "a", " x(1)"}, at(noBegin, 1, 5)},
                             {{"a(\n  b(1)\n  c:d)", "a{b=1}"}, at(noBegin, 3, 5)},
                             {{"a(\r\n  b:(* c *)  t)", "a{}"}, at(noBegin, 2, 14)},
                             {{"a(b:'x\ny')", "a{}"}, at(noBegin, 1, 5)},
                             {{"a(x(1)\n y( z(1)\nz ) y(2))", "a{x=1}", "(2))"}, at(duplicated, 3, 1)},
                             {{"a((1)(2)[1](3))", "a{=1 =2}", ")"}, at(duplicated, 1, 9)},
                             {{"a((1)[2](2)(3))", "a{=1 [2]=2}", ")"}, at(duplicated, 1, 12)},
                             {{"a(b(1)b)", "a{b=1}", ")"}, at(duplicated, 1, 7)}};
    for (ErrorRow const & row : rows) {
        SCOPED_TRACE(row.row.text);
        for (Outcome const & o : parseFromAll(row.row.text)) {
            EXPECT_EQ(o.error, row.error) << o.source;
            EXPECT_EQ(shape(*o.unit), row.row.shape) << o.source;
        }
    }
}

/// All sources read the same tree, raise the same error, and stop at the same place.
void expectAgreement(std::string const & text, bool valueOnly) {
    std::vector<Outcome> const outcomes = parseFromAll(text, valueOnly);
    Outcome const & first = outcomes[1];  // the view does not tell how far it read
    for (Outcome const & o : outcomes) {
        bool const placed = o.read == std::string::npos || o.read == first.read;
        EXPECT_TRUE(placed && o.error == first.error && shape(*o.unit) == shape(*first.unit))
            << o.source << ": " << text;
        EXPECT_EQ(brokenLinks(*o.unit), "") << text;
    }
}

TEST(PmlParser, AllShortInputs) {
    std::string const alphabet = "a():*'\"\\ ";
    for (std::size_t length = 0; length <= 5; ++length) {
        std::string text(length, alphabet[0]);
        std::vector<std::size_t> digits(length, 0);
        for (;;) {
            expectAgreement(text, length % 2 == 0 || text[0] == 'a');
            if (HasFailure()) return;
            std::size_t i = 0;
            while (i < length && ++digits[i] == alphabet.size()) digits[i++] = 0;
            if (i == length) break;
            for (std::size_t k = 0; k <= i; ++k) text[k] = alphabet[digits[k]];
        }
    }
}

TEST(PmlParser, RandomInputsAndEveryTruncation) {
    std::vector<std::string> const pieces = {
        "a",     "b",  "c d", "(",  "(",   ")",    ")",   ":",    ":t(",     "(*",   "*)",     "'x'",    "'",
        "\"y\"", "\\", " ",   "\n", "(1)", "a(1)", "[0]", "[1](", "(* c *)", "\r\n", "n:t(v)", "'q\\'r'"};
    std::mt19937 random(11);
    for (int i = 0; i < 4000 && !HasFailure(); ++i) {
        std::string text = "r(";
        for (std::size_t n = random() % 24; n > 0; --n) text += pieces[random() % pieces.size()];
        expectAgreement(text, i % 2 == 0);
    }
    std::string const rich =
        "\r\n(* head (* er *) *) server : type one (\r\n  host('al\\'pha' \"b\")(* c *) port:int( 80 )\n"
        "  list:l((1)(2) :t(a(1)b(2)[7](x)) [9]('') last) \xC3\xA0(e)\n) tail(1)";
    for (std::size_t n = 0; n <= rich.size() && !HasFailure(); ++n) {
        expectAgreement(rich.substr(0, n), false);
        expectAgreement(rich.substr(n), true);
    }
}

TEST(PmlParser, Tokens) {
    // The tokens, each with the number of its flag, and what is left.
    using TokensOf = std::pair<char const *, char const *>;
    auto const tokensOf = [](pmlLexer & lexer) {
        String tokens, token;
        for (pmlLexer::TokenFlag flag{}; lexer.getToken(token, flag);)
            tokens += token + '/' + std::to_string(static_cast<int>(flag)) + '/';
        return tokens + token;
    };
    for (auto const & [text, tokens] : {TokensOf{"a : b ( c ) ", "a/0/b/1/c/2/"},
                                        {"a(* c *) b x", "ab x"},
                                        {"'a ' 'b' c)\\(", "'a b'c/2/\\/1/"},
                                        {"::", "/0//0/"},
                                        {"x 'un\\)", "x 'un)"},
                                        {"", ""},
                                        {"(()", "/1//1//2/"}}) {
        std::istringstream in(text);
        pmlLexerIstream stream(in);
        char const * place = text;
        pmlLexerLpctstr memory(place);
        MemoryLexer own(text);
        for (pmlLexer * lexer : std::initializer_list<pmlLexer *>{&memory, &stream, &own}) {
            EXPECT_EQ(tokensOf(*lexer), tokens) << text;
        }
    }
}

TEST(PmlParser, LexersMoveBackAndForth) {
    char const * text = " ab";
    std::istringstream in(text);
    pmlLexerLpctstr memory(text);
    pmlLexerIstream stream(in);
    for (pmlLexer * lexer : std::initializer_list<pmlLexer *>{&memory, &stream}) {
        char c = 0;
        EXPECT_TRUE(lexer->__skip_blank(c) && lexer->__putback_char('a') && lexer->__skip_char() &&
                    lexer->__get_char(c) && c == 'b');
        EXPECT_FALSE(lexer->__get_char(c) || lexer->__peek_char(c) || lexer->__skip_char() || lexer->__skip_blank(c));
        EXPECT_TRUE(lexer->eof() && lexer->__unget_char() && lexer->__get_char(c) && c == 'b');
    }
    for (char c : {'a', '\0', '\x1C', '\x85', '\xA0', '\xFF'}) EXPECT_FALSE(pmlLexer::IsBlankChar(c));
}

/// Gives its text one character at a time and counts them; at the end it fails when told to.
class SlowBuffer final : public std::streambuf {
public:
    SlowBuffer(std::string text, bool fails) : text_(std::move(text)), fails_(fails) {}
    std::size_t given() const { return at_; }

private:
    int_type underflow() override {
        if (at_ < text_.size()) return traits_type::to_int_type(text_[at_]);
        if (fails_) throw std::runtime_error("broken");
        return traits_type::eof();
    }
    int_type uflow() override {
        int_type const c = underflow();
        if (c != traits_type::eof()) ++at_;
        return c;
    }
    int_type pbackfail(int_type) override {
        return at_ > 0 ? traits_type::to_int_type(text_[--at_]) : traits_type::eof();
    }

    std::string const text_;
    bool const fails_;
    std::size_t at_ = 0;
};

TEST(PmlParser, StreamsAreReadToTheEndOfTheNode) {
    SlowBuffer buffer("a(1)b(2) c", false);
    std::istream in(&buffer);
    Unit unit;
    EXPECT_TRUE(ntvFromPml(unit, in));
    EXPECT_EQ(buffer.given(), 4u);
    EXPECT_TRUE(in.good());
    EXPECT_TRUE(ntvFromPml(unit, in));
    EXPECT_EQ(shape(unit), "b=2");
    EXPECT_EQ(buffer.given(), 8u);
    EXPECT_TRUE(ntvFromPml(unit, in));
    EXPECT_TRUE(unit.empty() && in.eof());

    for (auto const & [text, error] : {std::pair{"", at(noName, 1, 1)},
                                       {"a", at(noName, 1, 1)},
                                       {"r(x(1)\n", at(noName, 2, 1)},
                                       {"a:", at(noType, 1, 3)}}) {
        SlowBuffer broken(text, true);
        std::istream from(&broken);
        EXPECT_EQ(raised([&] { ntvFromPml(unit, from); }), error) << text;
    }
}

TEST(PmlParser, EntryPoints) {
    Unit unit("old", "old", "old");
    char const * text = "a:t(1) rest";
    EXPECT_TRUE(ntvFromPml(unit, text));
    EXPECT_STREQ(text, " rest");
    EXPECT_TRUE(ntvFromValueString(unit, istr("b(2)")));
    EXPECT_EQ(shape(unit), "a:t{b=2}");
    char const * none = nullptr;
    EXPECT_TRUE(ntvFromPml(unit, none) && ntvFromPml(unit, istr()) && unit.empty());

    std::unique_ptr<Unit> const root(newNTV(istr("a(b(1))")));
    EXPECT_EQ(shape(*root) + brokenLinks(*root), "a{b=1}");
    std::istringstream in("(1)(2)");
    std::unique_ptr<ntv::ValueBase> const value(newNtvValue(in));
    EXPECT_EQ(value->owner(), nullptr);
    EXPECT_EQ(static_cast<ntv::ListValue *>(value.get())->size(), 2u);
    EXPECT_THROW(delete newNTV(istr("a:b")), std::invalid_argument);

    std::string unescaped;
    for (String token : {"'a'", "\"b\"", "'c", "'", "''", "d'", "''e''", "'f\""}) {
        unescapeString(token);
        unescaped += token + '|';
    }
    EXPECT_EQ(unescaped, "a|b|'c|'||d'|'e'|'f\"|");
}

TEST(PmlParser, Files) {
    TemporaryDirectory const directory("pml-parser");
    std::string const path = directory.file("a.pml");
    File const file{istr(path)};
    Unit unit;
    writeFile(path,
              "\xEF\xBB\xBF"
              "a(\r\n  b(1\x1A\r\n2)\r\n)\r\nb");
    EXPECT_TRUE(pmlFile(file).toNTV(unit));
    EXPECT_EQ(shape(unit), "a{b=1\x1A\r\n2}");
    writeFile(path, "(* 1 *)\r\na:int)");
    EXPECT_EQ(raised([&] { ntvFromPml(unit, file); }), noBegin + (" at " + path + ":2:3"));
    writeFile(path, "");
    std::unique_ptr<Unit> const empty(newNTV(file));
    EXPECT_TRUE(empty != nullptr && empty->empty());
    std::filesystem::remove(path);
    EXPECT_FALSE(ntvFromPml(unit, file));
    EXPECT_FALSE(pmlFile(istr(path)).toNTV(unit) || pmlFile().toNTV(unit));
    EXPECT_TRUE(newNTV(file) == nullptr && newNtvValue(file) == nullptr);
    EXPECT_EQ(newNTV(File(istr(directory.file("")))), nullptr);
    EXPECT_TRUE(pmlString("s(1)").toNTV(unit) && shape(unit) == "s=1");
}

}  // namespace
}  // namespace yon::pml
