// A tour of the test framework: a whole test program. docs/application.md quotes it.
#include <sstream>

#include "yon/yon.h"

namespace {

yon::String slug(yon::istr title) {
    yon::String s(title);
    for (char & c : s) c = c == ' ' ? '-' : yon::CharToLower(c);
    return s;
}

YON_TEST_CASE("text/slug", replaces_blanks) { YON_CHECK_EQ(slug("Two Words"), "two-words"); }

YON_TEST_CASE("text/slug", keeps_the_rest) {
    for (yon::istr const title : {"", "a", "x.y"}) YON_CHECK_EQ(slug(title), title);
}

YON_TEST_CASE("numbers", refuses_what_is_no_number) {
    int limit = 7;
    yon::CmdOptions options("numbers");
    options.option("limit", limit, "N", "a number");
    char program[] = "numbers", argument[] = "--limit=many";
    char * words[] = {program, argument};
    std::ostringstream help;
    YON_CHECK_THROWS(yon::ArgumentException, options.parse(yon::CmdLine(2, words), help));
    YON_CHECK_EQ(limit, 7);
}

}  // namespace

int main(int argc, char ** argv) { return yon::test::runMain(argc, argv); }
