#include <gtest/gtest.h>

#include "yon/yon.h"

namespace yon {
namespace {

using namespace std::string_literals;
using Items = std::list<String>;

TEST(Filename, SplitsAtTheLastBackslash) {
    auto parts = [](istr full) {
        Filename const f(full);
        return f.dir() + '|' + f.file() + (f.full() == full ? "" : " and not what was set");
    };
    EXPECT_EQ(parts("c:\\dir\\sub\\a.txt"), "c:\\dir\\sub|a.txt");
    EXPECT_TRUE(parts("a.txt") == "|a.txt" && parts("a/b.txt") == "|a/b.txt" && parts("") == "|");
    EXPECT_TRUE(parts("c:\\") == "c:|" && parts("\\a") == "|a");
    EXPECT_EQ(Filename("c:\\d", "f").full(), "c:\\d\\f");
    Filename f("", "f");
    EXPECT_EQ(f.full(), "f");
    EXPECT_TRUE(f.dir("d").full() == "d\\f" && f.file("g").full() == "d\\g");
    f.full("x\\y");
    EXPECT_EQ(f.full(istr(f.full()).rightstr(1)).file(), "y") << "a part of itself";
    EXPECT_EQ(f.dir(f.full()).full(), "y\\y");
}

TEST(Funcname, SplitsAtTheLastScope) {
    auto parts = [](istr full) {
        Funcname const f(full);
        return std::string(f.ns()) + '|' + std::string(f.func()) + (f.full() == full ? "" : " and not what was set");
    };
    EXPECT_EQ(parts("yon::pml::File::read"), "yon::pml::File|read");
    EXPECT_TRUE(parts("main") == "|main" && parts("::f") == "|f" && parts("a:b") == "|a:b" && parts("") == "|");
    EXPECT_TRUE(parts("a:::b") == "a:|b" && parts("a::") == "a|");
    Funcname f("", "bar");
    EXPECT_EQ(f.full(), "::bar");
    EXPECT_TRUE(f.ns("foo").full() == "foo::bar" && f.func("baz").full() == "foo::baz");
    EXPECT_EQ(f.full(f.ns()).func(), "foo");
}

TEST(MultiString, SplitsAndJoins) {
    auto check = [](istr full, istr sep, Items const & items) {
        MultiString const m(full, sep);
        EXPECT_EQ(m.list(), items) << full;
        EXPECT_TRUE(sep.empty() || MultiString(items, sep).full() == full) << full;
    };
    check("a,,b,", ",", {"a", "", "b", ""});
    check(",", ",", {"", ""});
    check("", ",", {});
    check("a::b:c", "::", {"a", "b:c"});
    check("aaa", "aa", {"", "a"});
    check("ab", "", {"a", "b", istr("\0", 1)});
    check("a", "abc", {"a"});
    check(istr("a\0b", 3), istr("\0", 1), {"a", "b"});
    MultiString m("a,b", ",");
    EXPECT_EQ(m.separator(";").full(), "a;b");
    EXPECT_EQ(m.add("c;d").full(), "a;b;c;d");
    EXPECT_EQ(m.list().size(), 3u);
    EXPECT_EQ(m.split().list().size(), 4u);
    EXPECT_EQ(m.add(m.full()).full(), "a;b;c;d;a;b;c;d") << "a part of itself";
    EXPECT_EQ(m.list({"x", "y"}).list(m.list()).full(), "x;y");
    EXPECT_EQ(m.full("z").list(), Items{"z"});
    dumper d(true);
    d << m << Filename("y\\z") << Funcname("y::z");
    EXPECT_EQ(d.str(), "{\"z\", {\"z\"}, \";\"}{\"y\\z\", \"y\", \"z\"}{\"y::z\", \"y\", \"z\"}");
    EXPECT_EQ(m.clear().add("q").full(), "q");
}

}  // namespace
}  // namespace yon
