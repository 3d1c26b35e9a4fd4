// `yon::test`: test cases arranged in menus, run from the keyboard or unattended.
//
//     YON_TEST_CASE("strings/views", trims_blanks) {
//         YON_CHECK_EQ(yon::istr("  a ").trim(), "a");
//         YON_CHECK_THROWS(yon::OutOfRangeException, yon::Bytes().at(0));
//     }
//
//     int main(int argc, char ** argv) { return yon::test::runMain(argc, argv); }
//
// Run without options such a program shows its menus; `--run all`, `--run strings`, `--run
// strings/views/trims_blanks` run without asking, and the exit status is the number of cases that failed (at most
// 125). Checks may be made from every thread; a failed check fails the case that is running and does not end it, a
// failed YON_REQUIRE ends it (it raises; use it on the thread of the case only).
#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "yon/base/here.h"
#include "yon/log/dumper.h"
#include "yon/log/dumper_stl.h"
#include "yon/util/uow.h"

namespace yon::test {

/// A registered case. `menu` ("strings/views") and `name` are literals.
struct YON_API Case {
    Case(char const * caseMenu, char const * caseName, void (*caseBody)()) noexcept;

    /// "menu/name".
    String path() const;

    char const * menu;
    char const * name;
    void (*body)();
    Case * next;  ///< registered before this one
};

/// The test program as a unit of work. Reads `--list`, `--run NAME|all`, `--filter TEXT`, `--shuffle SEED`,
/// `--time-limit SECONDS` and `--junit FILE` from its command line or that of its root; without `--list` and `--run`
/// it asks for menu entries at the console until "q" or the end of input. A case fails by its checks, by an exception
/// that it lets out, and by located objects, library threads or timers that it leaves behind.
///
/// What is about to run is written before it begins, to the console and to the JUnit report, so that a crash leaves
/// both readable; a case that crashes or exceeds its time is named on standard error before the process ends.
class YON_API UowTest : public UnitOfWork {
public:
    explicit UowTest(char const * name = "test", UnitOfWork * parent = nullptr);
    ~UowTest() noexcept(false) override;

    void on_init() override;
    void on_loop() override;
    /// Runs what a path names: a case, all cases of a menu, or "all".
    void run(String const & path) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// A `UowMain` with one `UowTest`: the whole main function of a test program. Wrong options go to standard error with
/// status 2.
YON_API int runMain(int argc, char ** argv);

namespace detail {

/// Raised by YON_REQUIRE.
struct CaseEnded {};

/// Records a failed check of the running case; without one it only tells standard error.
YON_API void fail(diagnostics::Location const & where, istr expression, istr values) noexcept;

/// "raised was …", of the exception that is being handled.
YON_API String raisedText();

/// A value as a dump shows it; "?" for what has no text.
template <class T>
String shown(T const & value) {
    if constexpr (requires(dumper & d) { d << value; }) {
        dumper d(true);
        d << value;
        return d.str();
    } else {
        return "?";
    }
}

template <class A, class B, class Compare>
bool check(diagnostics::Location const & where, istr expression, A const & a, B const & b, Compare holds) {
    if (holds(a, b)) return true;
    fail(where, expression, shown(a) + " and " + shown(b));
    return false;
}

inline bool check(diagnostics::Location const & where, istr expression, bool holds) {
    if (!holds) fail(where, expression, "");
    return holds;
}

template <class X, class Call>
bool checkThrows(diagnostics::Location const & where, istr expression, Call call) {
    try {
        call();
        fail(where, expression, "nothing was raised");
        return false;
    } catch (X const &) {
        return true;
    } catch (...) {
        fail(where, expression, raisedText());
        return false;
    }
}

}  // namespace detail
}  // namespace yon::test

#define YON_TEST_CASE(menu, name)                                                          \
    static void yonTestCase_##name();                                                      \
    static ::yon::test::Case yonTestRegistration_##name(menu, #name, &yonTestCase_##name); \
    static void yonTestCase_##name()

/// Each gives whether it held.
#define YON_CHECK(condition) (::yon::test::detail::check(YON_HERE, #condition, static_cast<bool>(condition)))
#define YON_CHECK_EQ(a, b) YON_TEST_COMPARE_(a, ==, b)
#define YON_CHECK_NE(a, b) YON_TEST_COMPARE_(a, !=, b)
#define YON_CHECK_LT(a, b) YON_TEST_COMPARE_(a, <, b)
#define YON_CHECK_LE(a, b) YON_TEST_COMPARE_(a, <=, b)
#define YON_CHECK_THROWS(X, expression) \
    (::yon::test::detail::checkThrows<X>(YON_HERE, #expression " raises " #X, [&] { static_cast<void>(expression); }))
/// Ends the case when it does not hold.
#define YON_REQUIRE(condition)                                             \
    do {                                                                   \
        if (!YON_CHECK(condition)) throw ::yon::test::detail::CaseEnded{}; \
    } while (false)
#define YON_FAIL(message) (::yon::test::detail::fail(YON_HERE, message, ""))

#define YON_TEST_COMPARE_(a, op, b)            \
    (::yon::test::detail::check(               \
        YON_HERE, #a " " #op " " #b, (a), (b), \
        [](auto const & yonLeft_, auto const & yonRight_) { return yonLeft_ op yonRight_; }))
