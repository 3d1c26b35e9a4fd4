// Input and use that would overflow a stack, or take for ever where the work grows with the square: everything here
// runs at full size against the time limit of the tests, on the stack of an ordinary thread.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "pml_testing.h"
#include "thread_testing.h"
#include "yon/pml/pml_writer.h"

namespace {
std::atomic<std::size_t> chunks{0};
}

/// Counts the blocks in which the pool takes its memory; it is linked into this program.
[[gnu::noinline]] void * operator new(std::size_t size) {
    if (size >= (std::size_t{32} << 10)) ++chunks;
    if (void * const p = std::malloc(size != 0 ? size : 1)) return p;
    throw std::bad_alloc();
}
[[gnu::noinline]] void * operator new(std::size_t size, std::nothrow_t const &) noexcept { return std::malloc(size); }
[[gnu::noinline]] void operator delete(void * p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void * p, std::size_t) noexcept { std::free(p); }

namespace yon::pml {
namespace {

/// Deep enough for every stack, long enough for what is quadratic to be noticed.
constexpr std::size_t many = 250000;

std::string repeated(std::string const & text, std::size_t n) {
    std::string out;
    out.reserve(text.size() * n);
    while (n-- > 0) out += text;
    return out;
}

std::string number(std::size_t i) { return std::to_string(i); }

void checkDeep(std::string const & text) {
    Unit unit;
    std::istringstream in(text);
    MemoryLexer lexer(text);
    char const * p = text.c_str();
    ASSERT_TRUE(ntvFromPml(unit, in));
    unit.clear();
    ASSERT_TRUE(pmlParser(&unit).doParser(lexer));
    ASSERT_TRUE(ntvFromPml(unit, p) && ntvFromPml(unit, istr(text)));
    Unit copy(unit);
    ASSERT_TRUE(sameTree(unit, copy));
    copy << unit;
    copy = std::move(*copy.at(0));
    delete copy.popValue();
    delete unit.value()->clone();

    Unit const * deepest = &unit;
    while (deepest->numofChildren() > 0) deepest = deepest->at(deepest->numofChildren() - 1);
    ASSERT_EQ(deepest->root(), &unit);
    ASSERT_EQ(unit.find(deepest->path()), deepest);

    // Where nodes on the way have siblings, indentation alone would fill the memory.
    bool const chain = unit.childWasSingle();
    std::ostringstream dump;
    if (chain) unit.value()->dump(dump);
    for (int mode : {ShowMode::COMPACT, ShowMode::MIXED, ShowMode::SIMPLE, ShowMode::FORMATTED}) {
        if (!chain && mode != ShowMode::COMPACT && mode != ShowMode::MIXED) continue;
        String out;
        ASSERT_TRUE(ntvToPml(unit, out, mode, 15));
        ASSERT_TRUE((mode == ShowMode::FORMATTED ? "(* / *) " + text : text) == out);
    }
    unit.setValue("shallow again");
}

TEST(PmlHostile, ManyDeep) {
    std::string const ends(many, ')');
    for (std::string const & text : {repeated("a(", many) + "1" + ends, repeated("(", many) + ends,
                                     repeated("a:t(b()", many) + ends, repeated("a(", many) + "b()c()" + ends}) {
        std::thread([&text] { checkDeep(text); }).join();
    }
    // The layouts that indent, as deep as their output allows.
    Unit unit, again;
    std::string const bushy = repeated("a(b()", 2000) + std::string(2000, ')');
    ASSERT_TRUE(ntvFromPml(unit, istr(bushy)));
    String out;
    ASSERT_TRUE(ntvToPml(unit, out, ShowMode::FORMATTED, 15) && ntvFromPml(again, istr(out)) &&
                sameTree(unit, again));
}

TEST(PmlHostile, ManyOfEverything) {
    std::string const blanks(many, ' ');
    // Printed compactly, the first ones are the same text.
    std::string const wholes[] = {"l(" + repeated("(1)", many) + ")", "l(" + repeated(":t(x)", many) + ")",
                                  "l('" + repeated("\\'", many) + "')",
                                  "l:" + repeated("t", many) + "(" + repeated("v", many) + ")"};
    std::string const others[] = {"l(" + repeated("(* ", many),
                                  "l" + repeated("(* *)", many) + "(1)",
                                  repeated("a (* c *) ", many) + "(1)",
                                  "l(" + repeated("'a' \"b\" ", many) + ")",
                                  "l(" + repeated("'a'b", many) + ")",
                                  "l(" + repeated("\\'\\", many),
                                  "l(" + repeated("x" + std::string(50, ' '), 20000) + ")",
                                  "l(" + blanks + ")",
                                  "l(" + blanks + "x" + blanks + ")",
                                  repeated("\n", many) + "l(1)"};
    String out;
    for (std::string const & text : wholes) {
        for (Outcome const & o : parseFromAll(text)) {
            EXPECT_TRUE(ntvToCompactPml(*o.unit, out) && out == text) << o.source << ": " << text.substr(0, 20);
        }
    }
    for (std::string const & text : others) {
        for (Outcome const & o : parseFromAll(text)) EXPECT_TRUE(ntvToCompactPml(*o.unit, out));
    }
    std::string const late = repeated("\n", many) + "a(" + repeated("(1)", many) + "b:c)";
    EXPECT_EQ(parseFromAll(late).front().error, "not found value begin tag, token at line 250001, column 750005");
    // As many types as nodes.
    std::string types = "l(";
    for (std::size_t i = 0; i < many; ++i) types += ":t" + number(i) + "()";
    Unit unit;
    ASSERT_TRUE(ntvFromPml(unit, istr(types)) && unit.at(77777)->type() == "t77777");
}

/// Enters the names through the reader and one by one, finds each, and is refused each a second time.
void checkNames(std::vector<std::string> const & names) {
    std::string text = "l(";
    for (std::string const & name : names) text += name + "(" + name + ")";
    Unit parsed, built;
    ASSERT_TRUE(ntvFromPml(parsed, istr(text)));
    for (std::string const & name : names) ASSERT_TRUE(built.addChild(istr(name), istr(name)));
    for (Unit * unit : {&parsed, &built}) {
        Unit const & list = *unit;
        ASSERT_EQ(list.numofChildren(), names.size());
        for (std::string const & name : names) ASSERT_EQ(list[istr(name)].getStringValue(), name);
        for (std::string const & name : names) ASSERT_EQ(list.at(istr(name + "?")), nullptr);
        for (std::string const & name : names) ASSERT_FALSE(unit->updateChild(istr(name), istr(name)));
        for (std::string const & name : names) ASSERT_EQ(&(*unit)[istr(name)], list.at(istr(name)));
        ASSERT_THROW(unit->addChild(istr(names.back()), "again"), std::invalid_argument);
        // Names read through nodes that could change them.
        ntv::ListValue * children = nullptr;
        unit->getValue(children);
        for (Unit * child : *children) ASSERT_EQ(unit->at(istr(child->name())), child);
        ASSERT_EQ(brokenLinks(Unit(*unit)), "");
        for (Unit * child : *children) child->name() = "new " + child->name();
        for (std::string const & name : names) ASSERT_NE(list.at(istr("new " + name)), nullptr);
    }
}

TEST(PmlHostile, LongListsOfNames) {
    auto const check = [](std::size_t count, auto name) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < count; ++i) names.push_back(name(i));
        checkNames(names);
    };
    check(200000, [](std::size_t i) { return "n" + number(i); });
    // Texts of positions, none of which is taken.
    check(200000, [](std::size_t i) { return "[" + number(i) + "]"; });
    check(20000, [](std::size_t i) { return "[" + repeated("0", i % 50) + number(i) + "x"; });
    // Unnamed children between named ones that look like them.
    Unit mixed;
    for (std::size_t i = 0; i < 200000; ++i)
        ASSERT_TRUE(mixed.addChild(i % 2 ? "" : istr("[" + number(i) + "]"), "v"));
    ASSERT_EQ(brokenLinks(mixed), "");
}

TEST(PmlHostile, NamesMadeToCollide) {
    // The same sum, and the same value of polynomials in 31 and 33, which common hashes of text compute.
    for (auto const & [one, other] : {std::pair{"Aa", "BB"}, std::pair{"Ab", "BA"}, std::pair{"ab", "ba"}}) {
        std::vector<std::string> names(1);
        for (int i = 0; i < 16; ++i) {
            std::vector<std::string> longer;
            for (std::string const & name : names) {
                longer.push_back(name + one);
                longer.push_back(name + other);
            }
            names = std::move(longer);
        }
        checkNames(names);
    }
    // Alike but for a few bytes somewhere, in every distance from the ends.
    std::vector<std::string> names;
    for (std::size_t i = 0; i < 60000; ++i) {
        std::string name(64, 'x');
        std::string const mark = number(i);
        name.replace(i % 50, mark.size(), mark);
        names.push_back(name + "." + mark);
    }
    checkNames(names);
}

using Tree = std::unique_ptr<Unit>;

Tree bushyTree() {
    auto root = std::make_unique<Unit>("root");
    for (std::size_t i = 0; i < 300; ++i) {
        Unit & list = (*root)[istr("list" + number(i))];
        for (std::size_t k = 0; k < 15; ++k) list.addChild(istr("name" + number(k)), "a type", "a text");
    }
    return root;
}

TEST(PmlHostile, TreesThatChangeThreadsLeaveNoMemoryBehind) {
    std::size_t warm = 0;
    for (int round = 0; round < 100; ++round) {
        Tree tree;
        std::thread([&] { tree = bushyTree(); }).join();
        std::thread([&] {
            tree->at(0)->setValue("a list less");
            Tree const other = bushyTree();
            *tree = *other;
            tree.reset();
        }).join();
        if (round == 20) warm = chunks;
    }
    EXPECT_LE(chunks - warm, 4u);

    // Four threads build, and destroy what the next one built.
    std::atomic<Unit *> desks[4] = {};
    auto const work = [&](int self) {
        for (int i = 0; i < 40; ++i) {
            Tree const taken(desks[(self + 1) % 4].exchange(nullptr));
            Tree const replaced(desks[self].exchange(bushyTree().release()));
        }
    };
    for (int round = 0; round < 5; ++round) {
        InThreads(4, work);
        if (round == 1) warm = chunks;
    }
    // Twelve trees at most were alive, of some ten chunks each.
    EXPECT_LE(chunks - warm, 120u);
    for (auto & desk : desks) delete desk.load();
}

TEST(PmlHostile, ThreadsThatEndGiveTheirNodesBack) {
    std::size_t warm = 0;
    for (int i = 0; i < 2000; ++i) {
        std::thread([] {
            Unit unit;
            for (std::size_t n = 0; n < 200; ++n) unit.addChild("", "v");
        }).join();
        if (i == 20) warm = chunks;
    }
    EXPECT_LE(chunks - warm, 4u);
}

TEST(PmlHostile, ThreadsMayReadOneTree) {
    for (int round = 0; round < 20; ++round) {
        Unit root("root");
        for (std::size_t i = 0; i < 500; ++i) root.addChild(istr("n" + number(i)), "t", istr(number(i)));
        for (std::size_t i = 0; i < 100; ++i) root["n7"].addChild("", istr(number(i)));
        // Lent to be changed, and not looked at since.
        root["n3"].name();
        Unit const & tree = root;
        InThreads(4, [&tree](int t) {
            for (int i = 0; i < 500; ++i) {
                std::string const n = std::to_string((i * 7 + t * 125) % 500);
                Unit const & child = tree[istr("n" + n)];
                EXPECT_TRUE(n == "7" || child.getStringValue() == n);
                EXPECT_EQ(tree.find(child.path()), &child);
            }
            EXPECT_TRUE(sameTree(Unit(tree), tree));
        });
    }
}

}  // namespace
}  // namespace yon::pml
