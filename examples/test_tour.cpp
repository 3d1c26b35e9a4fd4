// A tour of the test framework: a whole test program. docs/application.md quotes it.
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
    yon::Bytes bytes("7");
    YON_REQUIRE(bytes.size() == 1);
    YON_CHECK_THROWS(yon::OutOfRangeException, bytes.at(1));
}

}  // namespace

int main(int argc, char ** argv) { return yon::test::runMain(argc, argv); }
