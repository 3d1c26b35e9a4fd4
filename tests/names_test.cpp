#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "yon/log/dumper.h"
#include "yon/string/filename.h"
#include "yon/string/funcname.h"
#include "yon/string/multi_string.h"

namespace yon {
namespace {

using namespace std::string_literals;
using Items = std::list<String>;

template <class T>
std::string dumped(T const & value) {
    std::ostringstream os;
    value.dump(os);
    dumper d;
    d << value;
    EXPECT_EQ(d.str(), os.str());
    return os.str();
}

TEST(Filename, SplitsAtTheLastBackslash) {
    for (auto const & [full, dir, file] :
         std::initializer_list<std::array<char const *, 3>>{{"c:\\dir\\sub\\a.txt", "c:\\dir\\sub", "a.txt"},
                                                            {"a.txt", "", "a.txt"},
                                                            {"a/b.txt", "", "a/b.txt"},
                                                            {"c:\\", "c:", ""},
                                                            {"\\a", "", "a"},
                                                            {"", "", ""}}) {
        Filename const f(full);
        EXPECT_TRUE(f.full() == full && f.dir() == dir && f.file() == file) << full;
    }
    EXPECT_EQ(Filename("c:\\d", "f").full(), "c:\\d\\f");
    Filename f("", "f");
    EXPECT_EQ(f.full(), "f");
    EXPECT_EQ(f.dir("d").full(), "d\\f");
    EXPECT_EQ(f.file("g").full(), "d\\g");
    EXPECT_EQ(f.full("x\\y").dir(), "x");
    EXPECT_EQ(f.full(istr(f.full()).rightstr(1)).file(), "y") << "a part of itself";
    EXPECT_EQ(f.dir(f.full()).full(), "y\\y");
    EXPECT_EQ(dumped(f), "@yon::Filename {\n    full_ = \"y\\y\"\n    dir_ = \"y\"\n    file_ = \"y\"\n}");
}

TEST(Funcname, SplitsAtTheLastScope) {
    for (auto const & [full, ns, func] :
         std::initializer_list<std::array<char const *, 3>>{{"yon::pml::File::read", "yon::pml::File", "read"},
                                                            {"main", "", "main"},
                                                            {"::f", "", "f"},
                                                            {"a:b", "", "a:b"},
                                                            {"a:::b", "a:", "b"},
                                                            {"a::", "a", ""},
                                                            {"", "", ""}}) {
        Funcname const f(full);
        EXPECT_TRUE(f.full() == full && f.ns() == ns && f.func() == func) << full;
    }
    Funcname f("", "bar");
    EXPECT_EQ(f.full(), "::bar");
    EXPECT_EQ(f.ns("foo").full(), "foo::bar");
    EXPECT_EQ(f.func("baz").full(), "foo::baz");
    EXPECT_EQ(f.full(f.ns()).func(), "foo");
    EXPECT_EQ(dumped(f), "@yon::Funcname {\n    full_ = \"foo\"\n    ns_ = \n    func_ = \"foo\"\n}");
}

TEST(MultiString, SplitsAndJoins) {
    struct Row {
        istr full;
        char const * sep;
        Items items;
    };
    for (Row const & row : std::initializer_list<Row>{{"a,,b,", ",", {"a", "", "b", ""}},
                                                      {",", ",", {"", ""}},
                                                      {"ab", ",", {"ab"}},
                                                      {"", ",", {}},
                                                      {"a::b:c", "::", {"a", "b:c"}},
                                                      {"aaa", "aa", {"", "a"}},
                                                      {"ab", "", {"a", "b", istr("\0", 1)}},
                                                      {"", "", {}},
                                                      {"a", "abc", {"a"}},
                                                      {istr("a\0b", 3), ",", {istr("a\0b", 3)}}}) {
        MultiString const m(row.full, row.sep);
        EXPECT_EQ(m.list(), row.items) << row.full;
        EXPECT_TRUE(*row.sep == '\0' || MultiString(m.list(), row.sep).full() == row.full) << row.full;
    }
    MultiString m("a,b", ",");
    EXPECT_EQ(m.separator(";").full(), "a;b");
    EXPECT_EQ(m.add("c;d").full(), "a;b;c;d");
    EXPECT_EQ(m.list().size(), 3u);
    EXPECT_EQ(m.split().list().size(), 4u);
    EXPECT_EQ(m.add(m.full()).full(), "a;b;c;d;a;b;c;d") << "a part of itself";
    EXPECT_EQ(m.list({"x", "y"}).full(), "x;y");
    EXPECT_EQ(m.list(m.list()).full(), "x;y");
    EXPECT_EQ(m.full("z").list(), Items{"z"});
    EXPECT_EQ(dumped(m),
              "@yon::MultiString {\n    full_ = \"z\"\n    list_ = @yon::list {\n        \"z\"\n    }\n"
              "    sep_ = \";\"\n}");
    EXPECT_TRUE(m.clear().list().empty() && m.full().empty() && m.separator() == ";");
    EXPECT_EQ(m.add("q").full(), "q");
}

}  // namespace
}  // namespace yon
