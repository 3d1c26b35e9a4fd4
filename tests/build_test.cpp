// What the build promises to the sources.
#include <gtest/gtest.h>

namespace {

char const * caller(char const * file = __builtin_FILE()) { return file; }

TEST(Build, SourceLocationsAreRelativeToTheRepository) {
    EXPECT_STREQ(__FILE__, "tests/build_test.cpp");
    EXPECT_STREQ(caller(), "tests/build_test.cpp");
}

}  // namespace
