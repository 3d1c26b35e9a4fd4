#include "yon/pml/pml_stream.h"

#include <gtest/gtest.h>

#include <chrono>
#include <list>
#include <set>
#include <sstream>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "file_testing.h"
#include "raise_testing.h"

namespace yon::pml {
namespace {

/// One of everything that can be bound.
struct Settings {
    bool volatile on = false;
    ulong volatile size = 0;
    unsigned long volatile longSize = 0;
    std::atomic<int> level{0};
    char letter = 'a';
    double rate = 0;
    Bit bit;
    String text = "kept";
    std::string plain;
    Bytes bytes;
    Time time = Time(5);
    std::map<String, Bit> logs{{"old", false}};
    std::unordered_map<int, std::vector<String>> nested;
    std::vector<bool> flags;
    std::list<double> rates;
    std::set<int> numbers;
    Unit node;

    void codec(stream & s) {
        s & field("on", on) & field("size", size, "ulong") & field("longSize", longSize) & field("level", level) &
            field("letter", letter) & field("rate", rate) & field("bit", bit) & field("text", text) &
            field("plain", plain) & field("bytes", bytes) & field("time", time) & field("logs", logs) &
            field("nested", nested) & field("flags", flags) & field("rates", rates) & field("numbers", numbers) &
            field("node", node) & field(".", letter);
    }
};

TEST(PmlStream, FieldsAreWrittenAndReadBack) {
    Settings from;
    from.on = true;
    from.size = 32768;
    from.longSize = 32769;
    from.level = -3;
    from.letter = 'z';
    from.rate = 0.25;
    from.bit = true;
    from.text = "a (b)";
    from.bytes = Bytes(istr("\0x", 2));
    from.logs = {{"app", true}, {"net", false}, {"..", true}};
    from.nested = {{7, {"x", ""}}, {-1, {}}};
    from.flags = {true, false, true};
    from.rates = {0.5, 2};
    from.numbers = {3, 1, 2};
    from.node.addChild("k", "v");
    stream out;
    from.codec(out.name("s"));
    EXPECT_EQ(out["size"].type(), "ulong");
    EXPECT_EQ(out["logs"].str(ShowMode::COMPACT), "logs(..(1)app(1)net(0))");
    Settings to;
    stream in(out.str(ShowMode::FORMATTED), false);
    EXPECT_TRUE(in.isInputStream() && out.isOutputStream());
    to.codec(in);
    EXPECT_EQ(to.nested, from.nested);
    stream again;
    to.codec(again.name("s"));
    // Tables with a hash have no order that is kept.
    out.unit().updateChild("nested", "");
    again.unit().updateChild("nested", "");
    EXPECT_EQ(again.str(), out.str());
    EXPECT_THROW(from.codec(out), std::invalid_argument);
}

TEST(PmlStream, WhatIsMissingOrDoesNotConvertLeavesTheField) {
    Settings s;
    stream in("s(on(x) size() text((1)) time(x) logs(a(1) b(no)) nested(1((a)) 01((b))) flags(1) numbers)", false);
    String const before = in.str();
    s.codec(in);
    EXPECT_FALSE(s.on);
    EXPECT_TRUE(s.text == "kept" && s.time == Time(5) && s.logs.contains("old"));
    EXPECT_TRUE(s.nested.empty() && s.flags.empty());
    EXPECT_EQ(in.str(), before) << "reading adds no nodes";
    stream const & reading = in;
    EXPECT_EQ(&reading["filename"], &Unit::null());
    EXPECT_EQ(&reading["."], &Unit::null());
    EXPECT_EQ(in.unit().numofChildren(), 8u);
}

TEST(PmlStream, SourcesAndQuestions) {
    stream s("(a(1) l((x)) t())", true);
    EXPECT_TRUE(s.name().empty() && s.has("[0]") && !s.has("a"));
    s.from("n:t(a(1) l((x)) t() bare)", false);
    EXPECT_EQ(s.name() + ':' + s.type(), "n:t");
    EXPECT_TRUE(s.has("t") && !s.empty("a") && !s.empty("l") && s.empty("t") && s.empty("bare"));
    for (char const * name : {".", "..", "/", "", "none"}) EXPECT_TRUE(!s.has(name) && s.empty(name)) << name;
    s.setAsOutputStream();
    s.from("a(2) b(3)", true);
    EXPECT_TRUE(s.isOutputStream() && s.name().empty());
    EXPECT_EQ(s[name_id("b")].getStringValue(), "3");
    s["new"] << 4;
    std::ostringstream os;
    os << s;
    EXPECT_EQ(os.str(), "(a(2)b(3)new(4))");
    Unit unit("mine");
    unit << s;
    stream back;
    EXPECT_TRUE(unit >> back && back.str() == s.str() && unit.name() == "mine");
    EXPECT_THROW(s.from("a:x)", false), std::invalid_argument);
}

TEST(PmlStream, Combines) {
    struct {
        char const *left, *right, *result;
    } const rows[] = {
        {"r(a(1) b(2))", "o(b:t(3) c(4) a((x)))", "r(a((x))b:t(3)c(4))"},
        {"r((1))", "o((1) .(2) ..(3) /(4))", "r((1)(1).(2)..(3)/(4))"},
        {"r(text)", "o(a(1))", "r((text)a(1))"},
        {"r(a(1))", "o(text)", "r(a(1))"},
    };
    for (auto const & row : rows) {
        stream s(row.left);
        EXPECT_EQ(s.combine(stream(row.right)).str(ShowMode::COMPACT), row.result) << row.left;
    }
    stream self("r(a(1) (2))");
    EXPECT_EQ(self.combine(self).str(ShowMode::COMPACT), "r(a(1)(2)(2))");
    EXPECT_THROW(stream("r(.(1))").combine(stream("r(.(2))")), std::invalid_argument);
}

TEST(PmlStream, WideAndDeepTreesCombineInLinearTime) {
    stream wide, other;
    for (int i = 0; i < 20000; ++i) {
        String const number = std::to_string(i);
        (i % 2 != 0 ? wide : other).unit().addChild("n" + number, "1");
        other.unit().addChild("both" + number, "2");
        wide.unit().addChild("both" + number, "3");
    }
    auto const start = std::chrono::steady_clock::now();
    wide.combine(other).combine(other);
    EXPECT_EQ(wide.unit().numofChildren(), 40000u);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    String deep;
    for (int i = 0; i < 200000; ++i) deep += "a(";
    stream s(deep);
    stream const copy(s);
    s.combine(copy);
    EXPECT_EQ(s.str(ShowMode::COMPACT), copy.str(ShowMode::COMPACT));
}

TEST(PmlStream, FieldsStandInTheLeakCheckerByTheirSetter) {
    MemLeakChecker::enable(true);
    MemLeakChecker::clear();
    std::ostringstream live;
    {
        stream out;
        String text("x");
        std::map<String, Bit> map{{"a", true}};
        out & field("text", text) & field("map", map);
        EXPECT_THROW(out & field("text", text), std::invalid_argument);
        MemLeakChecker::report(live);
    }
    EXPECT_EQ(MemLeakChecker::count(), 0u);
    MemLeakChecker::enable(false);
    for (char const * place : {"include/yon/pml/pml_stream:141 yon::pml::Field__<class yon::String>::set: 1 blocks",
                               "include/yon/pml/ntv_stl:107 yon::pml::ntv::output_: 1 blocks"}) {
        EXPECT_NE(live.str().find(place), std::string::npos) << live.str();
    }
}

TEST(PmlStream, FilesAreLimitedAndNamedInErrors) {
    TemporaryDirectory const directory("pml-stream");
    std::string const path = directory.file("a.pml");
    writeFile(path, "\xEF\xBB\xBFr(a(1)\nb:x)");
    File const file{istr(path)};
    std::string const place = "not found value begin tag, token at " + path + ":2:3";
    EXPECT_EQ(raised([&] { stream(path, from_file()); }), place);
    Unit unit;
    String const text = file.load(15);
    EXPECT_EQ(raised([&] { ntvFromPml(unit, FileText{path, text}); }), place);
    EXPECT_EQ(text.size(), 14u);
    EXPECT_EQ(raised([&] { file.load(14); }), "nothing");
    EXPECT_NE(raised([&] { file.load(13); }).find(path + " is longer than 13 bytes"), std::string::npos);
    EXPECT_NE(raised([&] { File(istr(directory.file(""))).load(); }).find("is no regular file"), std::string::npos);
    writeFile(path, "a(1)");
    stream s(path, stream::from_file(), true);
    EXPECT_EQ(s["a"].getStringValue(), "1");
    std::filesystem::remove(path);
    EXPECT_FALSE(s.from(path, from_file()));
    EXPECT_NE(raised<std::system_error>([&] { file.load(); }), "nothing");
}

}  // namespace
}  // namespace yon::pml
