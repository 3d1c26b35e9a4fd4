#include <gtest/gtest.h>

#include <random>

#include "file_testing.h"
#include "pml_testing.h"
#include "yon/pml/pml_type.h"

namespace yon::pml {
namespace {

ShowMode const modes[] = {ShowMode::COMPACT, ShowMode::SIMPLE, ShowMode::MIXED, ShowMode::FORMATTED};

std::string printed(Unit const & unit, ShowMode mode, ShowPattern pattern = {}) {
    String text("replaced");
    EXPECT_TRUE(ntvToPml(unit, text, mode, pattern));
    return text;
}

/// A tree of random shape, with any text.
void grow(Unit & unit, std::mt19937 & random, int depth) {
    static std::string const letters("ab \n()'*:\"\\\0\xC3\xA0", 14);
    char const * const names[] = {"", "", "a", "b", "two words", "c*", "x.y", "[7]", "\xC3\xA0"};
    char const * const types[] = {"", "", "t", "int b", "*"};
    unit.type(types[random() % 5]);
    if (depth == 0 || random() % 4 == 0) {
        if (random() % 8 == 0) return;
        std::string text;
        for (std::size_t n = random() % 5; n > 0; --n) text += letters[random() % letters.size()];
        unit.setValue(text);
        return;
    }
    bool const unnamed = random() % 3 == 0;
    for (std::size_t n = random() % 4 + 1; n > 0; --n) {
        auto child = std::make_unique<Unit>(istr(unnamed ? "" : names[random() % 9]));
        grow(*child, random, depth - 1);
        if (unnamed && random() % 2) child->type("t");
        try {
            unit.addChild(child.get());
            static_cast<void>(child.release());
        } catch (std::invalid_argument const &) {
        }
    }
}

TEST(PmlWriter, EveryLayoutAndPatternAndBack) {
    std::mt19937 random(3);
    for (int i = 0; i < 1000 && !HasFailure(); ++i) {
        Unit unit(i % 2 ? "root" : "");
        grow(unit, random, static_cast<int>(random() % 5));
        for (ShowMode mode : modes) {
            for (int pattern : {23, 31}) {
                std::string const text = printed(unit, mode, pattern);
                Unit again;
                ASSERT_TRUE(ntvFromPml(again, istr(text)));
                ASSERT_TRUE(sameTree(unit, again, true)) << text;
                ASSERT_EQ(printed(again, mode, pattern), text);
            }
        }
    }
}

TEST(PmlWriter, Layouts) {
    struct Row {
        char const *tree, *compact, *simple, *mixed;
    };
    Row const rows[] = {
        {"server(host(alpha) ports((80)(81)))", "server(host(alpha)ports((80)(81)))",
         "server(\n    host(alpha)\n    ports(\n        (80)\n        (81)\n    )\n)",
         "server(host(alpha)ports((80)(81)))"},
        {"a:t ( b ( c : u ( '1:' ) ) )", "a:t(b(c:u('1:')))", "a:t(b(c:u('1:')))", "a:t(b(c:u('1:')))"},
        {"a(:t(1):u(2))", "a(:t(1):u(2))", "a(\n    :t(1)\n    :u(2)\n)", "a(\n        :t(1)\n        :u(2)\n)"},
        {"a(b(:t(1):t(2))c((3):t(4)))", "a(b(:t(1):t(2))c((3):t(4)))",
         "a(\n    b(\n        :t(1)\n        :t(2)\n    )\n    c(\n        (3)\n        :t(4)\n    )\n)",
         "a(b(\n        :t(1)\n        :t(2)\n)c((3)\n:t(4)))"}};
    for (Row const & row : rows) {
        Unit unit;
        ASSERT_TRUE(ntvFromPml(unit, istr(row.tree)));
        EXPECT_EQ(printed(unit, ShowMode::COMPACT), row.compact);
        EXPECT_EQ(printed(unit, ShowMode::SIMPLE), row.simple);
        EXPECT_EQ(printed(unit, ShowMode::FORMATTED), row.simple);
        EXPECT_EQ(printed(unit, ShowMode::MIXED), row.mixed);
    }
    Unit unit;
    ASSERT_TRUE(ntvFromPml(unit, istr("r(a:t(x)b((1)(2))c)")));
    EXPECT_EQ(printed(unit, ShowMode::FORMATTED, 15),
              "(* / *) r(\n    (* /a *) a:t(x)\n    (* /b *) b(\n        (* /b/[0] *) (1)\n        (* /b/[1] *) (2)\n"
              "    )\n    (* /c *) c()\n)");
    EXPECT_EQ(printed(*unit.at(1), ShowMode::FORMATTED, 15),
              "(* /b *) b(\n    (* /b/[0] *) (1)\n    (* /b/[1] *) (2)\n)");
    EXPECT_EQ(printed(unit, ShowMode::COMPACT, 3), "(:t(x)((1)(2))())");
    EXPECT_EQ(printed(unit, ShowMode::COMPACT, 4), "r(a()b(()())c())");
    EXPECT_EQ(printed(Unit("n"), ShowMode::MIXED), "n()");
    EXPECT_EQ(printed(Unit("n", "", new ntv::ListValue), ShowMode::SIMPLE), "n()");
}

TEST(PmlWriter, Escaping) {
    std::string escaped;
    for (String text : {"", "plain", "a:b", "it's", "\\", "\"", "(", ")", "*", " edge ", "'", "a\nb"}) {
        escapeString(text);
        escaped += text + '|';
    }
    EXPECT_EQ(escaped, "|plain|'a:b'|'it\\'s'|'\\\\'|'\"'|'('|')'|'*'| edge |'\\''|a\nb|");
    // Every text of two bytes comes back.
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            char const text[] = {static_cast<char>(a), static_cast<char>(b)};
            Unit again;
            std::string const pml =
                printed(Unit("n", "", istr(text, 2)), ShowMode::COMPACT, 7 | ShowPattern::QUOTE_BLANKS);
            ASSERT_TRUE(ntvFromPml(again, istr(pml)));
            ASSERT_EQ(again.getStringValue(), istr(text, 2)) << pml;
        }
    }
}

TEST(PmlWriter, Modes) {
    Unit unit("n", "", "1");
    String untouched("as before");
    std::ostringstream out;
    for (int wrong : {0, 5, -1, 1000}) {
        EXPECT_FALSE(ntvToPml(unit, untouched, wrong) || ntvToPml(unit, out, wrong) ||
                     format(istr("n(1)"), untouched, wrong));
        out << ShowMode(wrong);
    }
    EXPECT_EQ(untouched, "as before");
    for (ShowMode mode : modes) out << mode << ' ';
    EXPECT_EQ(out.str(),
              "<UnknownShowMode><UnknownShowMode><UnknownShowMode><UnknownShowMode>"
              "COMPACT SIMPLE MIXED FORMATTED ");
    unit["a"] << ShowMode(ShowMode::MIXED);
    unit["b"] << ShowPattern(9);
    EXPECT_EQ(unit.str(ShowMode::COMPACT), "n((1)a(MIXED)b(9))");
}

TEST(PmlWriter, TargetsAndSources) {
    std::string const compact = "a(b(1)c(2))";
    std::string const formatted = "a(\n    b(1)\n    c(2)\n)";
    Unit unit;
    ASSERT_TRUE(ntvFromPml(unit, istr(compact)));

    std::ostringstream out;
    String text("before ");
    out << unit << ' ';
    text << unit;
    EXPECT_TRUE(ntvToFormattedPml(unit, out) && ntvToMixedPml(unit, out));
    EXPECT_EQ(out.str() + text, compact + " " + formatted + compact + "before " + formatted);
    EXPECT_TRUE(ntvToCompactPml(unit, text, 4) && text == "a(b()c())");
    EXPECT_TRUE(ntvToSimplePml(unit, text) && text == formatted);
    EXPECT_TRUE(ntvToPml(unit, unit.name(), ShowMode::COMPACT) && unit.name() == compact);
    unit.name("a");
    out.setstate(std::ios::failbit);
    EXPECT_FALSE(ntvToPml(unit, out, ShowMode::SIMPLE));
    TemporaryDirectory const directory("pml-writer");
    std::string const path = directory.file("a.pml");
    File const file{istr(path)};
    auto const content = [&] { return contentOf(path); };
    char const * source = "a(b(1)c(2))x";
    std::istringstream in(compact);
    EXPECT_TRUE(ntvToPml(unit, file, ShowMode::SIMPLE) && content() == formatted);
    EXPECT_TRUE(format(source, file, ShowMode::COMPACT) && content() == compact);
    EXPECT_STREQ(source, "x");
    EXPECT_TRUE(format(in, file) && content() == formatted);
    EXPECT_TRUE(format(istr("z(1)"), file) && format(file, text) && text == "z(1)");
    EXPECT_THROW(format(istr("a:b"), file), std::invalid_argument);
    EXPECT_EQ(content(), "z(1)");
    EXPECT_TRUE(pmlFile(file).fromNTV(unit, ShowMode::COMPACT) && content() == compact);
    std::filesystem::remove(path);
    EXPECT_TRUE(!format(file, text) && text == "z(1)");
    File const nowhere{istr(path + "/x")};
    EXPECT_FALSE(ntvToPml(unit, nowhere, ShowMode::SIMPLE) || format(istr("a(1)"), nowhere));
    pmlString holder;
    EXPECT_TRUE(holder.fromNTV(unit, ShowMode::COMPACT, 4) && !holder.fromNTV(unit, 9) &&
                holder.data() == "a(b()c())");
}

}  // namespace
}  // namespace yon::pml
