#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "pml_testing.h"
#include "raise_testing.h"
#include "record_testing.h"
#include "yon/pml/pml_writer.h"

namespace yon::pml {
namespace {

using ntv::ListValue;
using ntv::StringValue;
using ntv::ValueBase;

/// Works before main.
std::string const earlyPath = [] {
    Unit root("r");
    root["a"]["b"] << 1;
    return root.at(istr("a"))->at(0)->path() + Unit::path_root + Unit::path_parent + Unit::path_me +
           Unit::path_separator + Unit::path_index_left + Unit::path_index_right;
}();

Unit parsed(char const * text) {
    Unit unit;
    EXPECT_TRUE(ntvFromPml(unit, istr(text)));
    return unit;
}

/// One step that creates nothing.
Unit const * look(Unit const & unit, char const * step) { return unit.at(istr(step)); }

char const * const duplicated = "duplicated unit";

TEST(PmlTree, CopiesAreLinkedAndLeaveTheTargetInPlace) {
    Unit root = parsed("r:t(a(x(1)(2))b:u(3)c)");
    Unit const copy(root);
    EXPECT_TRUE(sameTree(copy, root));
    EXPECT_EQ(brokenLinks(copy), "");
    EXPECT_EQ(copy.at(istr("a"))->at(1)->path(), "/a/[1]");

    Unit & b = root["b"];
    b = root["a"];
    EXPECT_EQ(shape(root) + b.at(1)->path(), "r:t{a{x=1 =2} a{x=1 =2} c}/a/[1]");
    b.name("b") << root;
    EXPECT_EQ(shape(b), "b:t{a{x=1 =2} b{x=1 =2} c}");
    b = b;
    b << b;
    b = *b.at(1)->at(0);
    EXPECT_EQ(shape(root), "r:t{a{x=1 =2} x=1 c}");
    EXPECT_TRUE(Unit("n", "t", "v") >> *root.at(2));
    EXPECT_EQ(shape(root), "r:t{a{x=1 =2} x=1 c:t=v}");
    root = Unit("e");
    root["k"] << 1;
    Unit moved = std::move(root);
    EXPECT_EQ(shape(moved) + brokenLinks(moved), "e{k=1}");
    EXPECT_TRUE(root.empty());  // NOLINT(bugprone-use-after-move)
    moved = std::move(moved["k"]);
    EXPECT_EQ(shape(moved), "k=1");
}

TEST(PmlTree, Values) {
    Unit u("n", "t", "v");
    u.setValue(istr(u.getStringValue()).removeLeft(1));
    EXPECT_EQ(shape(u), "n:t=");
    EXPECT_TRUE(u.valueEmpty());
    u = parsed("n:t(a(deep text, longer than what fits in)b(2))");
    EXPECT_TRUE(!u.valueEmpty() && u.getStringValue().empty());
    u.setValue(u["a"].getStringValue());
    EXPECT_EQ(shape(u), "n:t=deep text, longer than what fits in");
    u = parsed("n(a(1)b(2))");
    std::unique_ptr<ValueBase> value(u.popValue());
    EXPECT_TRUE(value->owner() == nullptr && static_cast<ListValue *>(value.get())->at(1)->parent() == nullptr);
    EXPECT_TRUE(u.value() == nullptr && u.popValue() == nullptr && look(u, "a") == nullptr);
    u["other"];
    delete u.popValue();
    u.value(value.release());
    EXPECT_EQ(shape(u) + brokenLinks(u), "n{a=1 b=2}");

    std::ostringstream dump;
    u.value()->dump(dump);
    EXPECT_EQ(dump.str(), "a(1)\nb(2)\n");
    std::unique_ptr<ValueBase> const clone(u.value()->clone());
    EXPECT_TRUE(!clone->single() && clone->owner() == nullptr && StringValue("it's").single());
    StringValue("it's").dump(dump);
    EXPECT_EQ(dump.str(), "a(1)\nb(2)\nit's");
    auto * const twins = new ListValue;
    twins->push_back(new Unit("x"));
    twins->push_back(new Unit("x"));
    Unit holder;
    EXPECT_EQ(raised([&] { holder.value(twins); }), duplicated);
    EXPECT_EQ(raised([&] { Unit const copy(holder); }), duplicated);
    Unit parent("p");
    u.parent(&parent).index(7).clear();
    EXPECT_TRUE(u.empty() && u.parent() == nullptr && u.index() == 0);
}

TEST(PmlTree, AddingChildren) {
    Unit u("n", "t", "v");
    StringValue * const text = u.stringValue();
    EXPECT_TRUE(u.addChild("a", "int", "1"));
    EXPECT_EQ(shape(u), "n:t{=v a:int=1}");
    EXPECT_EQ(u.at(0)->stringValue(), text) << "the value moves";
    EXPECT_FALSE(u.addChild(nullptr) || u.addOrUpdateChild(nullptr));
    EXPECT_TRUE(u.addChild("", "x"));
    EXPECT_TRUE(u.addChild(parsed("b(c(1))")));
    EXPECT_EQ(shape(u) + brokenLinks(u), "n:t{=v a:int=1 =x b{c=1}}");

    auto refused = std::make_unique<Unit>("a", "", "again");
    EXPECT_EQ(raised([&] { u.addChild(refused.get()); }), duplicated);
    EXPECT_EQ(raised([&] { u.addChild(*u.at(istr("b"))); }), duplicated);
    EXPECT_FALSE(u.updateChild("a", "2"));
    EXPECT_FALSE(u.updateChild(parsed("b:u((1)(2))")));
    EXPECT_TRUE(u.updateChild("d", "long", "4"));
    EXPECT_TRUE(u.updateChild("", "y"));
    EXPECT_EQ(shape(u) + brokenLinks(u), "n:t{=v a=2 =x b:u{=1 =2} d:long=4 =y}");
    EXPECT_FALSE(u.addOrUpdateChild(new Unit("d")));
    EXPECT_EQ(shape(*u.at(4)), "d");

    Unit more;
    more += Unit("", "", "text");
    EXPECT_EQ(shape(more), "");
    more += parsed("m(a(1)(2))");
    EXPECT_EQ(raised([&] { more += more; }), duplicated);
    EXPECT_EQ(shape(more), "{a=1 =2}");
    Unit created("c");
    created["x"]["y"]["x"] << true;
    created["."];
    created[".."];
    EXPECT_EQ(shape(created), "c{x{y{x=1}} . ..}");
}

TEST(PmlTree, NamesThatLookLikePositions) {
    struct Row {
        char const *there, *name;
        bool taken;
    };
    Row const rows[] = {{"((a)(b))", "[1]", true},   {"((a)(b))", "[0]", true},    {"((a)(b))", "[2]", false},
                        {"((a)(b))", "[01]", false}, {"((a)(b))", "[+1]", false},  {"((a)(b))", "[]", false},
                        {"((a)(b))", "[1", false},   {"(x(1)y(2))", "[1]", false}, {"((a)[2](b))", "", true},
                        {"((a)[1](b))", "", false},  {"((a)[02](b))", "", false},  {"(text)", "[0]", true}};
    for (Row const & row : rows) {
        Unit u = parsed(row.there);
        EXPECT_EQ(raised([&] { u.addChild(row.name, "new"); }), row.taken ? duplicated : "nothing")
            << row.there << " " << row.name;
        EXPECT_EQ(brokenLinks(u), "");
    }
    Unit u = parsed("([5](named))");
    EXPECT_EQ(look(u, "[0]"), nullptr);
    EXPECT_EQ(look(u, "[5]"), u.at(0));
    EXPECT_EQ(look(parsed("((a)(b))"), "[01]"), nullptr);
}

TEST(PmlTree, Paths) {
    EXPECT_EQ(earlyPath, "/a/b/.../[]");
    Unit const root = parsed("r(a(b(c(1)))list(x(0)(1)(x(2)(3)))'a/b'(5))");
    Unit const * const c = root.at(0)->at(0)->at(0);
    Unit const * const list = root.at(1);
    // Rows of `path=where it leads`.
    auto const finds = [](Unit const & from, char const * rows) {
        std::istringstream in(rows);
        for (std::string row; in >> row;) {
            auto const end = row.find('=');
            Unit const * const unit = from.find(istr(row.substr(0, end)));
            EXPECT_EQ(unit != nullptr ? unit->path() : "none", row.substr(end + 1)) << row;
        }
    };
    finds(root,
          "=/ /=/ .=/ ..=none a/b/c=/a/b/c a/b/c/=/a/b/c a//b/c=/a/b/c a/x=none x/b=none 'a/b'=none"
          " [0][0][0]=/a/b/c list[2]/x=/list/[2]/x list/[2]/x=/list/[2]/x list[2]x=/list/[2]/x"
          " list[2][1]=/list/[2]/[1] a[x]=none list[0=none list[=none list[]=none list[-1]=none list[1=none"
          " list[4294967296]=none list[99999999999999999999]=none");
    finds(*c,
          "=/a/b/c .=/a/b/c /=/ ..=/a/b ../..=/a ../../..=/ ../../../..=none /a/b/c=/a/b/c"
          " /a/./b/../b/c=/a/b/c ../c=/a/b/c [0]=none");
    finds(*list, "[0]=/list/x [0]/..=/list [1]x=none [3]=none [02]=/list/[2]");
    EXPECT_TRUE(look(root, "/") == &root && look(*c, "..") == c->parent() && look(root, "a/b") == nullptr);
    char const * const range = "list";
    EXPECT_EQ(root.at(range, range + 4), list);
    EXPECT_EQ(root.at(reinterpret_cast<unsigned char const *>(range), reinterpret_cast<unsigned char const *>(range)),
              &root);
    EXPECT_EQ(&root["list"]["none"][0], &Unit::null());
    String text("before");
    EXPECT_TRUE(root.getChild("a", text) && text.empty() && c->getChild("", text));
    EXPECT_FALSE(root.getChild("none", text));
    EXPECT_EQ(text, "1");
}

TEST(PmlTree, WrongPositionsAreLogged) {
    Unit u = parsed("((0)(1)(2)(3)(4))");
    Unit const & constant = u;
    Records records("src/yon/pml/");
    EXPECT_TRUE(u.at(5) == nullptr && constant.at(7u) == nullptr && constant.find("[6]") == nullptr);
    EXPECT_EQ(u.at(1)->at(0), nullptr);
    for (char const * text : {"too large: 5", "too large: 7", "too large: 6", "Value was not a list."}) {
        EXPECT_EQ(records.count(text), 1) << text;
    }
}

void stores() {}
/// Takes values and the texts that are stored for them by turns.
template <class T, class... More>
void stores(T const & value, char const * text, More const &... more) {
    Unit u("n", "kept", "old");
    u << value;
    EXPECT_EQ(u.getStringValue(), text);
    EXPECT_EQ(u.type(), (std::is_same_v<T, Bytes> ? "base64" : "kept")) << text;
    stores(more...);
}

template <class T>
using Limits = std::numeric_limits<T>;

TEST(PmlTree, TypedInsertion) {
    stores(true, "1", false, "0", 'A', "A", static_cast<signed char>('B'), "B", static_cast<unsigned char>('C'), "C",
           static_cast<short>(-7), "-7", static_cast<unsigned short>(65535), "65535", Limits<int>::min(),
           "-2147483648", Limits<unsigned int>::max(), "4294967295", -8L, "-8", 8UL, "8", Limits<long long>::min(),
           "-9223372036854775808", Limits<unsigned long long>::max(), "18446744073709551615");
    stores(3.14159265f, "3.14159", 3.14159265, "3.14159", 1e6, "1e+06", 100000.0, "100000", -0.00001, "-1e-05");
    stores(Bit(true), "1", Char('A'), "65", Char(static_cast<char>(-1)), "-1", Byte(200), "200", Short(-3), "-3",
           Ushort(3), "3", Long(-4), "-4", Ulong(4), "4", Longlong(-5), "-5", Ulonglong(5), "5", Float(2.5f), "2.5",
           Double(0.1), "0.1");
    wstring const wide{'w', 'x'};
    stores("text ", "text ", reinterpret_cast<unsigned char const *>("u"), "u", istr("view", 2), "vi", String("own"),
           "own", std::string("std"), "std", wide, "wx", iwstr(wide), "wx", wide.c_str(), "wx");
    stores(Bytes(istr("\1\2\3")), "AQID", Time(-1234567), "-1234567");
}

void reads() {}
/// Takes texts and the values that are read from them by turns.
template <class T, class... More>
void reads(char const * text, T expected, More... more) {
    T value{};
    EXPECT_TRUE(Unit("", "", text) >> value) << text;
    EXPECT_EQ(value, expected) << text;
    if constexpr (std::is_arithmetic_v<T>) {
        T volatile changing{};
        EXPECT_TRUE(Unit("", "", text) >> changing) << text;
        EXPECT_EQ(changing, expected) << text;
    }
    reads(more...);
}

/// None of the texts, and neither a list nor nothing, is read; the target stays.
template <class T>
void refuses(T before, std::initializer_list<char const *> texts) {
    std::vector<Unit> units{Unit(), Unit("", "", new ListValue)};
    for (char const * text : texts) units.emplace_back("", "", text);
    for (Unit const & u : units) {
        T value = before;
        EXPECT_FALSE(u >> value) << shape(u);
        EXPECT_EQ(value, before);
    }
}

TEST(PmlTree, TypedExtraction) {
    // How texts of numbers are read, number_text_test checks.
    reads(" 42 ", 42, "12abc", 12, "-32768", short{-32768}, "-1", 4294967295u, "9", 9UL, "1", true, "  x y", 'x',
          "3.5x", 3.5, "1e3", 1000.0f);
    reads("7", Bit(true), "65", Char('A'), "300", Byte(44), "-4", Short(-4), "5", Ulong(5), "0.1", Double(0.1));
    reads(" as it is ", String(" as it is "), "", std::string(), "wx", wstring{'w', 'x'}, "AQID",
          Bytes(istr("\1\2\3")), "", Bytes(), " -12 ", Time(-12));
    refuses(7, {"", " ", "abc", "2147483648"});
    refuses(true, {"2", "true", ""});
    refuses('q', {"", "  "});
    refuses(7.0, {"", "x", "1e999"});
    refuses(Bit(true), {"true", "40000", ""});
    refuses(Char('q'), {"A", "40000"});
    refuses(String("kept"), {});
    refuses(wstring{'w'}, {});
    refuses(Bytes(istr("x")), {});

    for (Unit const & u : {Unit(), Unit("", "", "soon")}) {
        Time time(5);
        EXPECT_FALSE(u >> time);
        EXPECT_EQ(time, Time()) << "which does not stay";
    }
}

std::size_t sizeOf(Unit const & unit) {
    std::size_t size = 1;
    for (ulong i = 0; i < unit.numofChildren(); ++i) size += sizeOf(unit[i]);
    return size;
}

/// What is wrong with a tree, or with a copy of it; a name that stands twice makes the copy throw.
std::string linksAndKeys(Unit const & root) {
    Unit const copy(root);
    return brokenLinks(root) + brokenLinks(copy) + (sameTree(root, copy) ? "" : " the copy");
}

TEST(PmlTree, RandomEditingKeepsLinksAndKeys) {
    std::mt19937 random(1);
    for (int round = 0; round < 30; ++round) {
        Unit root;
        for (int i = 0; i < 400; ++i) {
            auto const place = [&] {
                Unit * unit = &root;
                while (unit->numofChildren() != 0 && random() % 3 != 0)
                    unit = unit->at(random() % unit->numofChildren());
                return unit;
            };
            Unit & unit = *place();
            bool const wild = random() % 4 == 0;
            std::string const name =
                wild ? "[" + std::to_string(random() % 20) + "]" : "n" + std::to_string(random() % 40);
            istr const key = random() % 6 != 0 ? istr(name) : istr();
            Unit const * const known = unit.numofChildren() != 0 && !key.empty() ? look(unit, name.c_str()) : nullptr;
            ulong const count = unit.numofChildren();
            bool const seldom = random() % 4 == 0, small = sizeOf(root) < 200;
            auto const action = random() % 10;
            if (action < 3) {
                std::string const refusal = raised([&] { unit.addChild(key, "t", "v"); });
                EXPECT_TRUE(known == nullptr || (refusal == duplicated && unit.numofChildren() == count));
            } else if (action == 3 && !wild && !key.empty()) {
                EXPECT_EQ(unit.updateChild(key, "u", "w"), known == nullptr);
            } else if (action == 4 && seldom) {
                unit.setValue(name);
            } else if (action == 5 && seldom) {
                delete unit.popValue();
            } else if (action == 6 && (unit.parent() == nullptr || look(*unit.parent(), name.c_str()) == nullptr)) {
                unit.name() = name;
            } else if (action == 7 && small) {
                unit << *place();
            } else if (action == 8 && small && count != 0) {
                raised([&] { unit += unit; });
            } else if (action == 9 && seldom && unit.parent() == nullptr && count != 0) {
                unit = std::move(*unit.at(count - 1));
            }
            ASSERT_EQ(linksAndKeys(root), "") << "round " << round << " step " << i;
        }
    }
}

}  // namespace
}  // namespace yon::pml
