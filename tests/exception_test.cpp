#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <vector>

#include "raise_testing.h"
#include "record_testing.h"
#include "thread_testing.h"
#include "yon/base/throw.h"
#include "yon/mt/threadexception.h"

namespace app {
namespace {

/// As applications derive theirs: with a code, and a text of its own.
class CodeException : public yon::Exception {
public:
    CodeException(char const * file, unsigned int line, char const * func, int code)
        : yon::Exception(file, line, func, name_), code_(code) {}
    void yon_print(std::ostream & os) const override {
        yon::Exception::yon_print(os);
        os << "code " << std::dec << code_;
    }
    YON_EXCEPTION_DECLARE
    int code_;
};
YON_EXCEPTION_DEFINE(CodeException, "app::CodeException")

}  // namespace
}  // namespace app

namespace yon {
namespace {

using app::CodeException;

template <class T>
std::string printed(T const & value) {
    std::ostringstream os;
    os << std::hex << std::showbase << value;
    return os.str();
}

/// Stands in for the logging layer: notes what is thrown and provides a call stack.
class Recorder final : public Records {
public:
    void exceptionThrown(diagnostics::Location const & where, istr message) noexcept override {
        notes_.push_back(printed(Current(where)) + " throw " + std::string(message));
        // Reports made while reporting are dropped.
        diagnostics::exceptionThrown(where, "nested");
        nestedAnswers_ = diagnostics::categoryOn("any");
    }
    bool categoryOn(istr category) noexcept override { return category == "any"; }
    void callStack(CallStack & out) noexcept override { out = calls_; }

    CallStack calls_;
    std::vector<std::string> notes_;
    bool nestedAnswers_ = false;
};

TEST(Current, PrintsNameAndPlace) {
    std::pair<Current, std::string> const rows[] = {
        {{"util_func.src", 319, "yon::CharAt"}, "yon::CharAt(util_func.src:319)"},
        {{"c:\\dir\\a.cpp", 10, nullptr}, "(a.cpp:10)"},
        {{"src/yon/mt/cond", 25, "f"}, "f(src/yon/mt/cond:25)"},
        {{nullptr, 7, "yon::f"}, "yon::f"},
        {{}, ""}};
    for (auto const & [where, expected] : rows) {
        EXPECT_EQ(printed(where), expected);
        EXPECT_EQ(printed(Current(where).prefix("> ")), "> " + expected);
    }
}

CallStack twoCalls() {
    CallStack s;
    s.container().push({"app.src", 12, "yon::run"});
    s.container().push({"parser.src", 88, "yon::Parser::parse"});
    return s;
}

TEST(CallStack, PrintsTheLastCallFirst) {
    EXPECT_EQ(printed(CallStack()), "");
    CallStack const s = twoCalls();
    EXPECT_EQ(printed(s), "yon::Parser::parse(parser.src:88)\nyon::run(app.src:12)");
    EXPECT_EQ(s.container().begin()->prefix(), "\n") << "the decoration stays";
    s.container().top().prefix("top ");
    EXPECT_EQ(printed(CallStack(s.separator("; "))), "top yon::Parser::parse(parser.src:88); yon::run(app.src:12)");
}

TEST(Exception, PrintsMessagePlaceAndCalls) {
    Recorder log;
    OutOfRangeException const bare("a", 1, "f", "msg");
    EXPECT_EQ(printed(bare), "{\n EXCEPTION: msg\n        AT: f(a:1)\nCALL STACK: }\n");
    log.calls_ = twoCalls();
    OutOfRangeException const e("util_func.src", 319, "yon::CharAt",
                                "yon::OutOfRangeException: yon::OutOfRangeException");
    log.calls_ = {};
    std::string const expected =
        "{\n"
        " EXCEPTION: yon::OutOfRangeException: yon::OutOfRangeException\n"
        "        AT: yon::CharAt(util_func.src:319)\n"
        "CALL STACK: yon::Parser::parse(parser.src:88)\n"
        "            yon::run(app.src:12)}\n";
    EXPECT_EQ(printed(e), expected);
    EXPECT_EQ(printed(OutOfRangeException(e)), expected);
    EXPECT_EQ(e.info().prefix(), "\n        AT: ");
    EXPECT_EQ(e.stack().separator(), "\n            ");
    InThreads(4, [&](int) {
        for (int k = 0; k < 200; ++k) EXPECT_EQ(printed(e), expected);
    });
    std::string const func(120, 'x');
    std::string const text = printed(EmptyDataException(nullptr, 0, func.c_str(), "m"));
    EXPECT_NE(text.find("AT: " + func.substr(14) + "\n" + std::string(104, ' ') + func.substr(106) + "\nCALL"),
              text.npos);
    EXPECT_EQ(printed(static_cast<std::exception const &>(std::logic_error("x"))), "std::exception: x");
}

TEST(Exception, IsKeptAndRaisedAgainAsItself) {
    // The first throw brings up the log.
    EXPECT_THROW(YON_THROW(CodeException, 1), CodeException);
    MemLeakChecker::enable(true);
    std::size_t const before = MemLeakChecker::count();
    Exception * kept = nullptr;
    try {
        YON_THROW(CodeException, 42);
    } catch (Exception const & e) {
        EXPECT_EQ(e.yon_name(), "app::CodeException");
        EXPECT_STREQ(e.what(), "app::CodeException");
        EXPECT_TRUE(printed(e).ends_with("}\ncode 42"));
        kept = e.yon_clone();
    }
    EXPECT_EQ(MemLeakChecker::count(), before + 1);
    try {
        kept->yon_throw();
    } catch (CodeException const & e) {
        EXPECT_EQ(e.code_, 42);
        EXPECT_EQ(e.yon_line(), kept->line());
        EXPECT_STREQ(e.yon_file(), "tests/exception_test.cpp");
    }
    YON_DELETE(kept);
    EXPECT_EQ(MemLeakChecker::count(), before);
    MemLeakChecker::enable(false);
    std::unique_ptr<Exception> const handle(NullHandleException("f", 1, "g").yon_clone());
    EXPECT_EQ(raised<NullHandleException>([&] { handle->yon_throw(); }), "yon::NullHandleException");
}

TEST(Exception, OfASystemCallKeepsItsErrorWhenItIsRaisedAgain) {
    std::unique_ptr<Exception> const clone(ThreadSyscallException("a.cpp", 1, "f", 2).yon_clone());
    try {
        clone->yon_throw();
    } catch (ThreadSyscallException const & e) {
        EXPECT_EQ(e.error(), 2);
        EXPECT_FALSE(e.errorText().empty());
        EXPECT_NE(printed<Exception>(e).find("}\n:\nthread syscall exception: "), std::string::npos);
    }
    EXPECT_EQ(printed(ThreadSyscallException("a.cpp", 1, "f", 0)).find("syscall exception"), std::string::npos);
}

TEST(Throw, SpellsTheClassAndTellsTheLog) {
    struct Row {
        void (*raise)();
        char const *message, *note;
    };
    Recorder log;
    for (Row const & row : {
             Row{+[] { YON_THROW(yon::EmptyDataException); }, "yon::EmptyDataException: yon::EmptyDataException",
                 "throw yon::EmptyDataException: yon::EmptyDataException"},
             {+[] { YON_THROW(InvalidDataException, "no digits"); }, "InvalidDataException: no digits",
              "throw InvalidDataException: no digits"},
             {+[] { YON_THROW(ToBeDoneException, String("x") + "y"); }, "ToBeDoneException: xy", "throw ToBe"},
             {+[] { YON_THROW_AT(YON_LOCATION("a\\b", 7, "c"), NullPointerException, istr("dd", 1)); },
              "NullPointerException: d", "c(b:7) throw NullPointerException: d"},
             {+[] { YON_THROW(NullHandleException); }, "yon::NullHandleException",
              "throw NullHandleException: NullHandleException"},
             {+[] { YON_THROW(DuplicatedUnitException, ""); }, "DuplicatedUnitException: ", "throw Dup"},
         }) {
        log.notes_.clear();
        EXPECT_EQ(raised<ExceptionBase>(row.raise), row.message);
        ASSERT_EQ(log.notes_.size(), 1u) << "no report of a report";
        EXPECT_NE(log.notes_[0].find(row.note), std::string::npos) << log.notes_[0];
    }
    EXPECT_FALSE(log.nestedAnswers_);
}

TEST(Diagnostics, IsSilentWithoutASink) {
    diagnostics::Sink * const before = diagnostics::install(nullptr);
    EXPECT_THROW(YON_THROW(EmptyDataException), EmptyDataException);
    diagnostics::record(diagnostics::Level::info, "tag", YON_HERE, "text");
    diagnostics::enter(YON_HERE);
    diagnostics::leave(YON_HERE);
    EXPECT_FALSE(diagnostics::categoryOn("any"));
    diagnostics::install(before);
}

TEST(NullHandleDeathTest, AbortsOnRequest) {
    auto use = [] {
        nullHandleAbort = true;
        NullHandleException("f", 1, "g");
    };
    EXPECT_DEATH(use(), "");
}

// --- names of functions ---

TEST(FunctionName, IsQualifiedAndBare) {
    auto const lambda = [](auto) { return YON_FUNC; };
    EXPECT_STREQ(YON_FUNC, "yon::FunctionName_IsQualifiedAndBare_Test::TestBody");
    EXPECT_STREQ(lambda(1), "yon::FunctionName_IsQualifiedAndBare_Test::TestBody::<lambda>");
}

TEST(FunctionName, IsFoundInWhatEachCompilerSays) {
    for (auto const & [said, expected] : std::initializer_list<std::pair<std::string_view, char const *>>{
             {"int (& yon::ar(int))[3]", "yon::ar"},
             {"decltype ((t + u)) yon::sum(T, U) [with T = int; U = int]", "yon::sum"},
             {"<dependent type> yon::sum(T, U) [T = int, U = int]", "yon::sum"},
             {"std::enable_if_t<(N > 1), int> yon::Box<(N > 1), int>::f() [with int N = 2]",
              "yon::Box<(N > 1), int>::f"},
             {"void yon::(anonymous namespace)::S::g(int)", "yon::S::g"},
             {"std::string yon::f[abi:cxx11](int)", "yon::f"},
             {"bool yon::operator<(const X&, X&)", "yon::operator<"},
             {"yon::X::operator std::function<void(int)>() const", "yon::X::operator std::function<void(int)>"},
             {"long double yon::operator\"\"_ld(long double)", "yon::operator\"\"_ld"},
             {"void* yon::X::operator new [](size_t)", "yon::X::operator new []"},
             {"yon::X::lam() const::<lambda(int)> mutable::<lambda(auto:11)> [with auto:11 = int]",
              "yon::X::lam::<lambda>::<lambda>"},
             {"auto yon::X::lam()::(anonymous class)::operator()(int)::(anonymous class)::operator()(auto) const",
              "yon::X::lam::<lambda>::<lambda>"},
             {"((<", "<"},
         }) {
        std::string name(said.size(), '\0');
        name.resize(detail::FunctionNameScanner(said, name.data()).scan());
        EXPECT_EQ(name, expected) << said;
    }
}

}  // namespace
}  // namespace yon
