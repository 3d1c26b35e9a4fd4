#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "pml_testing.h"
#include "yon/base/diagnostics.h"
#include "yon/base/leak_checker.h"
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

/// The message of the `std::invalid_argument` that `f` raises.
template <class F>
std::string refusal(F f) {
    try {
        f();
    } catch (std::invalid_argument const & e) {
        return e.what();
    }
    return "none";
}
char const * const duplicated = "duplicated unit";

/// Keeps the records that the library writes.
struct Records final : diagnostics::Sink {
    Records() { diagnostics::install(this); }
    ~Records() { diagnostics::install(nullptr); }
    void record(diagnostics::Level level, istr, diagnostics::Location const &, istr message) noexcept override {
        text += (level == diagnostics::Level::error ? "error: " : "other: ") + std::string(message) + "\n";
    }
    void exceptionThrown(diagnostics::Location const &, istr) noexcept override {}
    bool categoryOn(istr) noexcept override { return false; }
    void enter(diagnostics::Location const &) noexcept override {}
    void leave(diagnostics::Location const &) noexcept override {}
    void callStack(CallStack &) noexcept override {}
    std::string text;
};

TEST(PmlTree, Construction) {
    EXPECT_EQ(earlyPath, "/a/b/.../[]");
    Unit parent;
    Unit const units[] = {Unit(),
                          Unit(nullptr),
                          Unit(&parent),
                          Unit("n", &parent),
                          Unit(new StringValue("v"), &parent),
                          Unit("n", "t", new ListValue, &parent),
                          Unit("n", "t", "v", &parent),
                          Unit("n", "t", istr())};
    char const * const shapes[] = {"", "", "", "n", "=v", "n:t{}", "n:t=v", "n:t="};
    for (std::size_t i = 0; i < std::size(units); ++i) {
        Unit const & u = units[i];
        EXPECT_EQ(shape(u), shapes[i]);
        EXPECT_EQ(u.index(), 0u);
        EXPECT_EQ(u.empty(), *shapes[i] == '\0');
        EXPECT_EQ(brokenLinks(u), "");
    }
    EXPECT_EQ(Unit("n", "t", "v", &parent).parent(), &parent);
    EXPECT_EQ(&Unit::null(), &Unit::null());
    EXPECT_TRUE(Unit::null().empty());
}

TEST(PmlTree, CopiesAreLinkedAndLeaveTheTargetInPlace) {
    Unit root = parsed("r:t(a(x(1)(2))b:u(3)c)");
    Unit const copy(root);
    EXPECT_TRUE(sameTree(copy, root));
    EXPECT_EQ(brokenLinks(copy), "");
    EXPECT_EQ(copy.at(istr("a"))->at(1)->path(), "/a/[1]");

    Unit & b = root["b"];
    b = root["a"];
    EXPECT_EQ(shape(root), "r:t{a{x=1 =2} a{x=1 =2} c}");
    EXPECT_EQ(b.parent(), &root);
    EXPECT_EQ(b.index(), 1u);
    EXPECT_EQ(b.at(1)->path(), "/a/[1]");

    b.name("b") << root;
    EXPECT_EQ(shape(b), "b:t{a{x=1 =2} b{x=1 =2} c}");
    b = b;
    b << b;
    b = *b.at(1)->at(0);
    EXPECT_EQ(shape(root), "r:t{a{x=1 =2} x=1 c}");
    EXPECT_TRUE(Unit("n", "t", "v") >> *root.at(2));
    EXPECT_EQ(shape(root), "r:t{a{x=1 =2} x=1 c:t=v}");
    root = Unit("e");
    EXPECT_EQ(shape(root), "e");
    root["k"] << 1;
    EXPECT_EQ(shape(root), "e{k=1}");

    Unit moved = std::move(root);
    EXPECT_EQ(shape(moved) + brokenLinks(moved), "e{k=1}");
    EXPECT_TRUE(root.empty());  // NOLINT(bugprone-use-after-move)
    moved = std::move(moved["k"]);
    EXPECT_EQ(shape(moved), "k=1");
}

TEST(PmlTree, Values) {
    Unit u("n", "t", "v");
    StringValue * const text = u.stringValue();
    u.setValue("w");
    EXPECT_EQ(u.stringValue(), text);
    u.setValue(istr(u.getStringValue()).removeLeft(1));
    EXPECT_EQ(shape(u), "n:t=");
    EXPECT_TRUE(u.valueEmpty());

    u = parsed("n:t(a(deep text, longer than what fits in)b(2))");
    EXPECT_FALSE(u.valueEmpty());
    EXPECT_EQ(u.getStringValue(), "");
    u.setValue(u["a"].getStringValue());
    EXPECT_EQ(shape(u), "n:t=deep text, longer than what fits in");
    EXPECT_EQ(look(u, "a"), nullptr);

    u = parsed("n(a(1)b(2))");
    std::unique_ptr<ValueBase> value(u.popValue());
    ListValue * const list = static_cast<ListValue *>(value.get());
    EXPECT_EQ(value->owner(), nullptr);
    EXPECT_EQ(list->at(1)->parent(), nullptr);
    EXPECT_TRUE(u.valueEmpty() && u.value() == nullptr && u.popValue() == nullptr && look(u, "a") == nullptr);
    EXPECT_EQ(u.numofChildren(), 0u);
    u["other"];
    delete u.popValue();
    u.value(value.release());
    EXPECT_EQ(shape(u) + brokenLinks(u), "n{a=1 b=2}");

    std::ostringstream dump;
    u.value()->dump(dump);
    EXPECT_EQ(dump.str(), "a(1)\nb(2)\n");
    std::unique_ptr<ValueBase> const clone(u.value()->clone());
    EXPECT_FALSE(clone->single());
    EXPECT_EQ(clone->owner(), nullptr);
    EXPECT_EQ(static_cast<ListValue *>(clone.get())->at(1)->getStringValue(), "2");
    std::ostringstream single;
    EXPECT_TRUE(StringValue("it's").single());
    StringValue("it's").dump(single);
    EXPECT_EQ(single.str(), "it's");

    auto * const twins = new ListValue;
    twins->push_back(new Unit("x"));
    twins->push_back(new Unit("x"));
    Unit holder;
    EXPECT_EQ(refusal([&] { holder.value(twins); }), duplicated);
    EXPECT_EQ(refusal([&] { Unit const copy(holder); }), duplicated);
    twins->clear();
    EXPECT_TRUE(twins->empty() && twins->begin() == twins->end());

    Unit parent("p");
    u.parent(&parent).index(7).clear();
    EXPECT_TRUE(u.empty() && u.parent() == nullptr && u.index() == 0);
}

TEST(PmlTree, AddingChildren) {
    Unit u("n", "t", "v");
    StringValue * const text = u.stringValue();
    EXPECT_TRUE(u.addChild("a", "int", "1"));
    EXPECT_EQ(shape(u), "n:t{=v a:int=1}");
    EXPECT_EQ(u.at(0)->stringValue(), text);
    EXPECT_EQ(text->owner(), u.at(0));
    EXPECT_FALSE(u.addChild(nullptr));
    EXPECT_FALSE(u.addOrUpdateChild(nullptr));
    EXPECT_TRUE(u.addChild("", "x"));
    EXPECT_TRUE(u.addChild(parsed("b(c(1))")));
    EXPECT_EQ(shape(u) + brokenLinks(u), "n:t{=v a:int=1 =x b{c=1}}");

    auto refused = std::make_unique<Unit>("a", "", "again");
    EXPECT_EQ(refusal([&] { u.addChild(refused.get()); }), duplicated);
    EXPECT_EQ(refusal([&] { u.addChild("a", "2"); }), duplicated);
    EXPECT_EQ(refusal([&] { u.addChild(*u.at(istr("b"))); }), duplicated);
    EXPECT_EQ(u.numofChildren(), 4u);

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
    EXPECT_EQ(refusal([&] { more += more; }), duplicated);
    EXPECT_EQ(shape(more), "{a=1 =2}");
    Unit same = parsed("((1)(2))");
    same += same;
    EXPECT_EQ(shape(same) + brokenLinks(same), "{=1 =2 =1 =2}");

    Unit created("c");
    created["x"]["y"]["x"] << true;
    created["."];
    created[".."];
    EXPECT_EQ(shape(created), "c{x{y{x=1}} . ..}");
    EXPECT_EQ(&created["x"], created.at(0));
}

TEST(PmlTree, NamesThatLookLikePositions) {
    struct Row {
        char const * there;
        char const * name;
        bool taken;
    };
    Row const rows[] = {{"((a)(b))", "[1]", true},   {"((a)(b))", "[0]", true},    {"((a)(b))", "[2]", false},
                        {"((a)(b))", "[01]", false}, {"((a)(b))", "[+1]", false},  {"((a)(b))", "[]", false},
                        {"((a)(b))", "[1", false},   {"(x(1)y(2))", "[1]", false}, {"((a)[2](b))", "", true},
                        {"((a)[1](b))", "", false},  {"((a)[02](b))", "", false},  {"(text)", "[0]", true}};
    for (Row const & row : rows) {
        Unit u = parsed(row.there);
        EXPECT_EQ(refusal([&] { u.addChild(row.name, "new"); }), row.taken ? duplicated : "none")
            << row.there << " " << row.name;
        EXPECT_EQ(brokenLinks(u), "");
    }
    Unit u = parsed("([5](named))");
    EXPECT_EQ(look(u, "[0]"), nullptr);
    EXPECT_EQ(look(u, "[5]"), u.at(0));
    EXPECT_EQ(look(parsed("((a)(b))"), "[01]"), nullptr);
}

TEST(PmlTree, Paths) {
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
    EXPECT_EQ(root.path(), "/");
    EXPECT_EQ(c->root(), &root);

    EXPECT_EQ(root.at(istr("/")), &root);
    EXPECT_EQ(c->at(istr("..")), c->parent());
    EXPECT_EQ(list->at(istr("[1]")), list->at(1));
    EXPECT_EQ(root.at(istr("a/b")), nullptr);
    char const * const range = "list";
    EXPECT_EQ(root.at(range, range + 4), list);
    EXPECT_EQ(root.at(reinterpret_cast<unsigned char const *>(range), reinterpret_cast<unsigned char const *>(range)),
              &root);
    EXPECT_EQ(&root["list"][1], list->at(1));
    EXPECT_EQ(&root["list"]["none"][0], &Unit::null());
    String text("before");
    EXPECT_TRUE(root.getChild("a", text));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(c->getChild("", text));
    EXPECT_EQ(text, "1");
    EXPECT_FALSE(root.getChild("none", text));
    EXPECT_EQ(text, "1");
}

TEST(PmlTree, WrongPositionsAreLogged) {
    Unit u = parsed("((0)(1)(2)(3)(4))");
    Unit const & constant = u;
    Records records;
    EXPECT_EQ(u.at(5), nullptr);
    EXPECT_EQ(constant.at(7u), nullptr);
    EXPECT_EQ(constant.find("[6]"), nullptr);
    EXPECT_TRUE(u.at(4) != nullptr && constant.at(0) == u.at(0) && &u[0] == u.at(0));
    EXPECT_EQ(u.at(1)->at(0), nullptr);
    EXPECT_EQ(records.text,
              "error: Index too large: 5\nerror: Index too large: 7\nerror: Index too large: 6\n"
              "error: Value was not a list.\n");
}

TEST(PmlTree, Shapes) {
    for (char const * text : {"a", "a(1)", "a(b(1))", "a(b(c(d())))", "a(:t(1))"}) {
        EXPECT_TRUE(parsed(text).childWasSingle() && !parsed(text).childrenWereUnnamedList()) << text;
    }
    for (char const * text : {"a(b(1)c(2))", "a(b(c(1)d(2)))", "a(:t(1)(2))", "a(:t(1)x:t(2))"}) {
        EXPECT_FALSE(parsed(text).childWasSingle() || parsed(text).childrenWereUnnamedList()) << text;
    }
    for (char const * text : {"a(:t(1):t(2))", "a(:t(1):u(x(1)))"}) {
        EXPECT_TRUE(!parsed(text).childWasSingle() && parsed(text).childrenWereUnnamedList()) << text;
    }
    EXPECT_TRUE(Unit("a", "", new ListValue).childWasSingle());
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
    Unit const list("", "", new ListValue);
    Unit const none;
    auto const check = [&](Unit const & u) {
        T value = before;
        EXPECT_FALSE(u >> value) << shape(u);
        EXPECT_EQ(value, before);
        if constexpr (std::is_arithmetic_v<T>) {
            T volatile changing = before;
            EXPECT_FALSE(u >> changing) << shape(u);
            EXPECT_EQ(changing, before);
        }
    };
    check(list);
    check(none);
    for (char const * text : texts) check(Unit("", "", text));
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

    Unit const none;
    for (Unit const * u : {&none, &Unit::null()}) {
        Time time(5);
        EXPECT_FALSE(*u >> time);
        EXPECT_EQ(time, Time());
    }
    Time time(5);
    EXPECT_FALSE(Unit("", "", "soon") >> time);
    EXPECT_EQ(time, Time());
    double pi = 0;
    Unit u;
    u << 3.14159265;
    EXPECT_TRUE(u >> pi);
    EXPECT_EQ(pi, 3.14159);
}

TEST(PmlTree, LeakCheckerKnowsNodesAndTheirMakers) {
    MemLeakChecker::enable(true);
    auto unit = std::make_unique<Unit>("n", "", "v");
    unit->addChild("a", "1");
    std::ostringstream live;
    MemLeakChecker::report(live);
    unit.reset();
    EXPECT_NE(live.str().find("src/yon/pml/ntv:"), std::string::npos) << live.str();
    EXPECT_NE(live.str().find("yon::pml::ntv::Unit::addChild"), std::string::npos) << live.str();
    EXPECT_EQ(MemLeakChecker::count(), 0u);
    MemLeakChecker::enable(false);
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
            switch (random() % 10) {
                case 0:
                case 1:
                case 2:
                    if (known != nullptr) {
                        EXPECT_EQ(refusal([&] { unit.addChild(key, "t", "v"); }), duplicated);
                        EXPECT_EQ(unit.numofChildren(), count);
                    } else {
                        refusal([&] { unit.addChild(key, "t", "v"); });
                    }
                    break;
                case 3:
                    if (!wild && !key.empty()) {
                        EXPECT_EQ(unit.updateChild(key, "u", "w"), known == nullptr);
                    }
                    break;
                case 4:
                    if (random() % 4 == 0) unit.setValue(name);
                    break;
                case 5:
                    if (random() % 4 == 0) delete unit.popValue();
                    break;
                case 6:
                    if (unit.parent() == nullptr || look(*unit.parent(), name.c_str()) == nullptr) unit.name() = name;
                    break;
                case 7:
                    if (sizeOf(root) < 200) unit << *place();
                    break;
                case 8:
                    if (count != 0 && sizeOf(root) < 200) refusal([&] { unit += unit; });
                    break;
                default:
                    if (unit.parent() == nullptr && count != 0 && random() % 8 == 0)
                        unit = std::move(*unit.at(count - 1));
            }
            ASSERT_EQ(linksAndKeys(root), "") << "round " << round << " step " << i;
        }
    }
}

}  // namespace
}  // namespace yon::pml
